// A key that a desktop has taken for itself, as the desktop's own files tell it.
#pragma once

#include <cstdint>
#include <vector>

namespace tarvix {

struct DesktopShortcut {
    std::uint32_t keysym = 0;     // what the key types on the present layout; 0 where the key is told by its keycode
    std::uint8_t keycode = 0;     // of the X server; 0 where it is told by its keysym
    std::uint32_t modifiers = 0;  // carbon bits
    friend bool operator==(const DesktopShortcut&, const DesktopShortcut&) = default;
};

using DesktopShortcuts = std::vector<DesktopShortcut>;

}  // namespace tarvix
