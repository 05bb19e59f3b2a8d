// A shortcut as the user chose it, and the name that a choice is kept under.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "platform/Modifiers.h"

namespace tarvix {

// Both numbers are in the carbon coding, the one in which a hot key is registered.
struct Shortcut {
    std::uint32_t carbonKeyCode = 0;
    std::uint32_t carbonModifiers = 0;

    // With modifiers in the coding of events; of these only command, shift, option and control survive.
    static constexpr Shortcut withEventFlags(std::uint32_t keyCode, std::uint64_t eventFlags) {
        return {keyCode, ModifierTransformer::carbonFlags(eventFlags)};
    }

    friend bool operator==(const Shortcut&, const Shortcut&) = default;
    friend bool operator<(const Shortcut& a, const Shortcut& b) {
        return std::tie(a.carbonKeyCode, a.carbonModifiers) < std::tie(b.carbonKeyCode, b.carbonModifiers);
    }
};

// The form in which a shortcut is stored: a JSON object of its two integers.
std::string encoded(const Shortcut& shortcut);
// Absent for any text that isn't such an object with numbers of 32 bits without sign; other members don't matter.
std::optional<Shortcut> decodedShortcut(std::string_view text);

// Names are told apart by `rawValue` alone.
struct ShortcutName {
    std::string rawValue;
    std::optional<Shortcut> defaultShortcut;

    friend bool operator==(const ShortcutName& a, const ShortcutName& b) { return a.rawValue == b.rawValue; }
    friend auto operator<=>(const ShortcutName& a, const ShortcutName& b) { return a.rawValue <=> b.rawValue; }
};

// The one name of the system, by default shift command space: brings up or dismisses The Input.
inline const ShortcutName toggleWith{"toggleWith", Shortcut::withEventFlags(49, eventFlag::shift | eventFlag::command)};

}  // namespace tarvix
