// The inspector's floating view.
#pragma once

#include <memory>

#include "qt/PanelServices.h"

namespace tarvix {

// Main thread. The services outlive the panel.
std::unique_ptr<InspectorPanel> makeQtInspectorPanel(const PanelServices& services);

}  // namespace tarvix
