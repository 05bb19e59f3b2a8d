// What an application gets when it has become active.
#pragma once

#include "ax/AXEngine2.h"
#include "ax/AppCatalog.h"
#include "platform/Workspace.h"

namespace tarvix {

// Throws the switch that the application needs to show its tree, so that the tree is there at a later search. Most
// applications need none. Main thread.
void anAppHasBeenActivated(const RunningApplication& application, const AXEngine2& axEngine,
                           const AppCatalog& catalog = AppCatalog::shared());

}  // namespace tarvix
