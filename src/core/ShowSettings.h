// The way to the settings, for everyone who offers it.
#pragma once

#include "platform/Platform.h"

namespace tarvix {

// Brings the settings window to the front. Main thread; it returns before the window shows.
void showSettings(const Platform& platform);

}  // namespace tarvix
