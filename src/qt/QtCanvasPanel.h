// The canvas: one click-through window that paints every marker.
#pragma once

#include <memory>

#include "qt/PanelServices.h"

namespace tarvix {

// Main thread. `drawn` is the milestone of its content on the screen. The services outlive the panel. Without a
// compositor the window has the shape of the markers, so that it covers nothing else, and they are painted opaque; a
// compositor that comes or goes counts from the next ordering to the front on.
std::unique_ptr<CanvasPanel> makeQtCanvasPanel(const PanelServices& services, std::string_view drawn);

}  // namespace tarvix
