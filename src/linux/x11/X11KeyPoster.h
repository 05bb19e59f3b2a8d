// Key events for the applications, with exactly the modifiers that were given for them.
#pragma once

#include <cstdint>
#include <vector>

#include "linux/x11/X11Connection.h"
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
    X11KeyPoster(X11Connection& connection, X11StandIns& standIns) : x_(connection), standIns_(standIns) {}

    void post(std::uint8_t eventType, std::uint8_t keycode, std::uint8_t wanted, NumLock numLock,
              const X11Modifiers& modifiers);

private:
    // What has been taken away from the applications.
    struct Lifted {
        std::vector<std::uint16_t> keyboards;  // grabbed
        std::uint8_t modifiers = 0;            // of these keyboards
        std::vector<std::uint8_t> posted;      // the keys of it that a program holds
    };

    Lifted lift(std::uint8_t unwanted, const X11Modifiers& modifiers);
    void grab(Lifted& lifted, const std::vector<std::uint16_t>& keyboards, std::uint8_t unwanted);
    void putBack(const Lifted& lifted);
    void tap(std::uint8_t keycode);
    void fake(std::uint8_t eventType, std::uint8_t keycode);

    X11Connection& x_;
    X11StandIns& standIns_;
};

}  // namespace tarvix
