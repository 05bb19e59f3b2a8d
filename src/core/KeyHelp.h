// The keys of a search, as the user reads them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "keys/KeyCombination.h"

namespace tarvix {

struct KeyHelpRow {
    std::string keys;  // "Down, Tab, Ctrl+N"
    std::string_view help;
};

// One row for each action, with all its combinations, in the order of the key table.
std::vector<KeyHelpRow> keyHelp();

// Of a combination that the key table has; its modifiers are those of the keyboard's own labels: "Ctrl+Alt+Super+C".
std::string keyName(const KeyCombination& keyCombination);

}  // namespace tarvix
