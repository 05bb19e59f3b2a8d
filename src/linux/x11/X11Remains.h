// What a connection has done to the X server that doesn't end with it.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace tarvix {

class X11Connection;

// Grabs and windows end with a connection; a locked modifier, a posted key or button that is down and the input focus
// don't. Each is noted before it is asked of the server and crossed out once the server has ended it, since it drops
// what it hasn't read of a client that is killed. So whoever reads this at any moment, from another process too, knows
// all that might stand. One thread writes.
struct X11Remains {
    std::atomic<std::uint32_t> client = 0;             // where the connection's resource numbers begin
    std::atomic<std::uint32_t> lockedModifiers = 0;    // on the master, in the server's bits
    std::array<std::atomic<std::uint64_t>, 4> keys{};  // that were posted as pressed, a bit for each keycode
    std::atomic<std::uint32_t> buttons = 0;            // likewise, a bit for each button's number
    std::atomic<std::uint32_t> focus = 0;              // the window that had the focus before a window of ours got it

    void noteKey(std::uint8_t keycode, bool isDown) {
        auto& word = keys[keycode / 64];
        const std::uint64_t bit = std::uint64_t{1} << keycode % 64;
        word = isDown ? word | bit : word & ~bit;
    }
    bool hasKey(std::size_t keycode) const { return (keys[keycode / 64] >> keycode % 64 & 1) != 0; }

    void noteButton(std::uint8_t button, bool isDown) {
        const std::uint32_t bit = 1u << button % 32;
        buttons = isDown ? buttons | bit : buttons & ~bit;
    }
};

// Ends what is noted, on a connection of the caller's own, once the noting one is gone or a second has passed. Keys too
// that are down for the applications and on no keyboard: they went up while a grab kept that from the applications.
void undo(X11Connection& connection, const X11Remains& remains);

}  // namespace tarvix
