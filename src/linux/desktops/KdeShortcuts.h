// The shortcuts of KDE Plasma.
#pragma once

#include <string_view>

#include "linux/desktops/DesktopShortcut.h"

namespace tarvix {

// From the file kglobalshortcutsrc.
DesktopShortcuts kdeShortcuts(std::string_view text);

}  // namespace tarvix
