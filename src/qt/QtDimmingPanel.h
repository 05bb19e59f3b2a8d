// The panel that dims one screen.
#pragma once

#include <memory>

#include "qt/PanelServices.h"

namespace tarvix {

// Main thread. The services outlive the panel. Without a compositor it stays away entirely: nothing can be translucent
// then, and the panel would black out the screen. A panel with alpha 0 isn't mapped, so that it costs a compositor
// nothing between searches.
std::unique_ptr<DimmingPanel> makeQtDimmingPanel(const PanelServices& services);

}  // namespace tarvix
