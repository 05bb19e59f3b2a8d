// Which desktop this is, and what it says of its shortcuts.
#pragma once

#include <optional>
#include <string>

#include "linux/desktops/DesktopShortcut.h"

namespace tarvix {

struct DesktopNames {
    std::string currentDesktop;  // the value of XDG_CURRENT_DESKTOP: names, with colons between
    std::string windowManager;   // by its own name
};

// Reads the files of every desktop that goes by one of the names; for GNOME it runs a program. Absent when none of them
// is known here. Blocks for a few milliseconds, for GNOME up to some seconds.
std::optional<DesktopShortcuts> readDesktopShortcuts(const DesktopNames& names);

}  // namespace tarvix
