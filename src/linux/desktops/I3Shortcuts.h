// The shortcuts of i3.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "linux/desktops/DesktopShortcut.h"

namespace tarvix {

// From i3's configuration. `include` gives the texts of the files that a pattern names, as it stands in the file. Keys
// of a mode other than the usual one are not among them.
using I3Include = std::function<std::vector<std::string>(const std::string& pattern)>;
DesktopShortcuts i3Shortcuts(std::string_view text, const I3Include& include);

}  // namespace tarvix
