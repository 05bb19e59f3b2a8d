// Shortcuts as a person reads them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "KeyboardShortcuts/Shortcut.h"
#include "platform/InputSources.h"

namespace tarvix {

// What stands for a key, as it is: a sign or name of its own, else what the current ASCII-capable layout types with it.
// Absent for a key that types nothing there.
std::optional<std::string> keyText(std::uint32_t keyCode, InputSources& inputSources);

// The modifiers in their fixed order, ⌃⌥⇧⌘ and the globe of the function key.
std::string modifiersText(std::uint64_t eventFlags);

// The modifiers and the key, capitalised: "⇧⌘Space". A key without text shows as U+FFFD.
std::string displayText(const Shortcut& shortcut, InputSources& inputSources);

// The same to be read aloud, in the names that the keys of a PC have: "Shift+Super+Space".
std::string spokenText(const Shortcut& shortcut, InputSources& inputSources);

}  // namespace tarvix
