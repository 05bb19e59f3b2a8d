// The shortcuts of Xfce: its commands and its window manager's.
#pragma once

#include <string_view>

#include "linux/desktops/DesktopShortcut.h"

namespace tarvix {

// From the channel xfce4-keyboard-shortcuts, the user's file over the system's; either may be empty or broken. Keys
// that count only while a window is being moved are not among them.
DesktopShortcuts xfceShortcuts(std::string_view userXml, std::string_view systemXml);

}  // namespace tarvix
