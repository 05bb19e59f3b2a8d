// The splash panel as a Qt window.
#pragma once

#include <memory>

#include "platform/SplashPanel.h"
#include "qt/PanelServices.h"

namespace tarvix {

// A window like others for the window manager, but above them, on every desktop, and one that can't be closed. Main
// thread.
std::unique_ptr<SplashPanel> makeQtSplashPanel(const PanelServices& services);

}  // namespace tarvix
