// Which bits of the X server's eight modifiers mean what on this keyboard, and which keys set them.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "linux/x11/X11Connection.h"

namespace tarvix {

struct X11Modifiers {
    std::uint8_t shift = 0x01, capsLock = 0x02, control = 0x04;
    std::uint8_t option = 0x08;   // Alt
    std::uint8_t command = 0x40;  // Super
    std::uint8_t numLock = 0x10;
    // The keys of each of the eight bits, by keycode.
    std::array<std::vector<std::uint8_t>, 8> keys;
    // A key that types nothing and does nothing.
    std::optional<std::uint8_t> silentKey;

    // Reads the modifier map. What the map doesn't tell stays at the usual bit.
    static X11Modifiers read(X11Connection& connection);

    // The bits that a key sets; 0 for one that is no modifier.
    std::uint8_t maskOfKey(std::uint8_t keycode) const;
    // A key that sets the modifier of one bit.
    std::optional<std::uint8_t> keyOf(std::uint8_t bit) const;

    // The four modifiers of events; every other bit is dropped.
    std::uint8_t four() const { return static_cast<std::uint8_t>(shift | control | option | command); }
    std::uint8_t locks() const { return static_cast<std::uint8_t>(capsLock | numLock); }
    std::uint64_t eventFlags(std::uint32_t mask) const;
    std::uint8_t maskOfEventFlags(std::uint64_t flags) const;
    std::uint8_t maskOfCarbon(std::uint32_t modifiers) const;

    friend bool operator==(const X11Modifiers&, const X11Modifiers&) = default;
};

}  // namespace tarvix
