// The shortcuts of GNOME.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "linux/desktops/DesktopShortcut.h"

namespace tarvix {

// From what `gsettings list-recursively` prints of the schemas with key bindings: a line for each key, of schema, key
// and value.
DesktopShortcuts gnomeShortcuts(std::string_view listing);

// The paths of the user's own shortcuts in such a listing, each a settings object by itself.
std::vector<std::string> gnomeCustomPaths(std::string_view listing);

}  // namespace tarvix
