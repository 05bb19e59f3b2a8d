// The hot keys of the desktop on this X server, by positions of the keyboard.
#pragma once

#include <optional>
#include <vector>

#include "linux/x11/X11Connection.h"
#include "platform/HotKeys.h"

namespace tarvix {

// Those that the desktop's own files name; the key is absent where no key of the present layout types what is named, or
// where it has no position, as media keys have none. Absent on a desktop that isn't known. Blocks as
// readDesktopShortcuts() does.
std::optional<std::vector<SymbolicHotKey>> readSymbolicHotKeys(X11Connection& connection);

}  // namespace tarvix
