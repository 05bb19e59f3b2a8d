// What the keys and modifiers of shortcuts are called in the files of desktops.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "linux/desktops/DesktopShortcut.h"

namespace tarvix {

// A modifier by a name of some desktop; the rows of one desktop are a table.
struct ModifierName {
    std::string_view name;
    std::uint32_t carbon;
};

// By its name, small or capital; absent for a name that isn't in the table, such as that of a modifier that hot keys
// don't have.
std::optional<std::uint32_t> modifierOf(std::string_view name, std::span<const ModifierName> names);

// The key alone: a keysym's name in the X server's list, or a keycode such as 0x41. Absent for anything else.
std::optional<DesktopShortcut> keyNamed(std::string_view name);

// A shortcut whose parts stand between separators, the key last: "Mod4+Shift+space". A key may be the separator itself:
// "Mod4++". Absent when a part isn't known.
std::optional<DesktopShortcut> shortcutOfParts(std::string_view text, char separator,
                                               std::span<const ModifierName> names);

// The way of GTK: "<Primary><Alt>t".
std::optional<DesktopShortcut> gtkAccelerator(std::string_view text);

// Shared by the readers of text files.
std::string_view trimmed(std::string_view text);
std::vector<std::string_view> linesOf(std::string_view text);
std::vector<std::string_view> wordsOf(std::string_view text);

}  // namespace tarvix
