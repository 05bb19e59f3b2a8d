// Locked modifiers that stand for keys which a hand still holds.
#pragma once

#include <cstdint>
#include <memory>

#include "linux/x11/X11Connection.h"

namespace tarvix {

// When grabs of single keyboards end, the applications don't know of the modifiers that are held: those keys went down
// for somebody else. From here on they count as held until the hand lets go of them. Main thread.
class X11StandIns {
public:
    // The connection outlives them and has XInput.
    explicit X11StandIns(X11Connection& connection);
    ~X11StandIns();

    // The keyboards have just been given back. Of the modifiers in `mask` those that are held are set.
    void standIn(std::uint8_t mask);
    void clear();

private:
    void check();
    void set(std::uint8_t modifiers);

    X11Connection& x_;
    std::uint16_t master_ = 0;  // whose raw events are selected
    std::uint8_t modifiers_ = 0;
    Subscription events_;
};

}  // namespace tarvix
