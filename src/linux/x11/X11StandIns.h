// Locked modifiers that stand for keys which a hand still holds.
#pragma once

#include <cstdint>
#include <memory>

#include "linux/x11/X11Connection.h"

namespace tarvix {

// While keyboards are grabbed one by one, and when these grabs end, the applications don't know of the modifiers that
// are held: those keys went down for somebody else. A stand-in counts as held for the applications until the hand lets
// go. Main thread.
class X11StandIns {
public:
    // The connection outlives them and has XInput.
    explicit X11StandIns(X11Connection& connection);
    ~X11StandIns();

    // Of the modifiers in `mask` those that are held now are set, and no others.
    void standIn(std::uint8_t mask);
    // Ends them all.
    void clear();
    // Ends them all, and there are none until resume(). A window manager may hold a click back for a moment, and the
    // application then gets it with the modifiers of that later time; so a click that is to have none needs none for a
    // while; those that are wanted meanwhile and still held come after a second.
    void suspend();
    void resume();

private:
    void check();
    void set(std::uint8_t modifiers);

    X11Connection& x_;
    std::uint8_t modifiers_ = 0;
    bool isSuspended_ = false;
    std::uint8_t wantedLater_ = 0;
    Subscription events_, keyReleases_, suspension_;
};

}  // namespace tarvix
