// Key events for the applications, with exactly the modifiers that were given for them.
#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "linux/x11/X11Connection.h"
#include "linux/x11/X11KeyState.h"
#include "linux/x11/X11Modifiers.h"
#include "linux/x11/X11StandIns.h"

namespace tarvix {

// Modifiers that nobody holds are locked for the moment of the event. Those that are held and not wanted go up for the
// applications, and locks stand in for them from then on until the hand lets go. Caps Lock plays no part in what is
// typed, nor does any other lock but Num Lock. Main thread.
class X11KeyPoster {
public:
    enum class NumLock { asItIs, on };

    // Both outlive it. The connection has XInput.
    X11KeyPoster(X11Connection& connection, X11StandIns& standIns);
    X11KeyPoster(const X11KeyPoster&) = delete;
    X11KeyPoster& operator=(const X11KeyPoster&) = delete;

    void post(std::uint8_t eventType, std::uint8_t keycode, std::uint8_t wanted, NumLock numLock,
              const X11Modifiers& modifiers);

private:
    // What the applications are to see going up.
    struct Unwanted {
        Keycodes keys;
        std::vector<std::uint16_t> keyboards;  // on which hands hold them
        std::vector<std::uint8_t> posted;      // those of the keys that a program holds
        bool isMenuKey = false;
    };
    // The moment in which keyboards were kept away from the applications.
    struct Window {
        std::uint32_t first, last;  // sequence numbers
        std::vector<std::uint16_t> keyboards;
        Keycodes pressed;
    };

    Unwanted find(std::uint8_t unwanted, const X11Modifiers& modifiers);
    void lift(const Unwanted& unwanted, const X11Modifiers& modifiers);
    void putBack(const Unwanted& unwanted);
    X11Connection::Handled handle(const xcb_generic_event_t& event);
    void tap(std::uint8_t keycode);
    void fake(std::uint8_t eventType, std::uint8_t keycode);

    X11Connection& x_;
    X11StandIns& standIns_;
    std::deque<Window> windows_;
    Subscription events_;
};

}  // namespace tarvix
