// The menu bar of a window.
#pragma once

#include <optional>

#include "linux/atspi/Node.h"

namespace tarvix::atspi {

// The menu bar that shows, as an index in the window's tree; absent where the window has none.
std::optional<int> menuBarIn(const NodeTree& nodes, Toolkit toolkit);

}  // namespace tarvix::atspi
