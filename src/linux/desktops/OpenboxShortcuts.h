// The shortcuts of Openbox.
#pragma once

#include <string_view>

#include "linux/desktops/DesktopShortcut.h"

namespace tarvix {

// From a file rc.xml. Of a chain of keys the first one is taken.
DesktopShortcuts openboxShortcuts(std::string_view xml);

}  // namespace tarvix
