// Menus as values: what they say, and what their entries do.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/Events.h"

namespace tarvix {

// One entry. An entry without an action that has no submenu shows disabled.
struct MenuItem {
    std::string title = {};          // empty: a separator
    std::string keyEquivalent = {};  // what the key types; an upper case letter means Shift besides. Empty: none
    std::uint64_t keyEquivalentModifierMask = eventFlag::command;
    std::function<void()> action = nullptr;
    std::vector<MenuItem> submenu = {};
};

using Menu = std::vector<MenuItem>;

}  // namespace tarvix
