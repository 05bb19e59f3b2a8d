// The content of the settings window.
#pragma once

#include <vector>

#include "shell/preferences/Controls.h"

namespace tarvix {

// The tabs in their order.
std::vector<Tab> settingsView();

Pane generalPane();
Pane searchPane();
Pane looksPane();
Pane positionPane();
Pane extraPane();

}  // namespace tarvix
