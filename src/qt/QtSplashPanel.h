// The splash panel as a Qt window.
#pragma once

#include <memory>

#include "platform/SplashPanel.h"

namespace tarvix {

// Main thread.
std::unique_ptr<SplashPanel> makeQtSplashPanel();

}  // namespace tarvix
