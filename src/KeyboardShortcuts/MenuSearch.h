// Which item of a menu has a shortcut already.
#pragma once

#include <optional>
#include <string>

#include "KeyboardShortcuts/Shortcut.h"
#include "platform/Menu.h"

namespace tarvix {

// The first item, each before those of its submenu, whose key equivalent is the shortcut; null when there is none.
// `keyText` is what stands for the shortcut's key, not capitalised; a key without one is no item's.
const MenuItem* itemWithShortcut(const Menu& menu, const Shortcut& shortcut, const std::optional<std::string>& keyText);

}  // namespace tarvix
