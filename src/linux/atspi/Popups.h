// What a window has open in windows of its own: menus, lists, popovers.
#pragma once

#include <vector>

#include "base/Geometry.h"
#include "linux/atspi/Node.h"

namespace tarvix::atspi {

// A window of its own in the tree of another: its parent's box says nothing of it.
bool isSurface(const Node& node);
// The same of GTK 4, which has no role for it.
bool isPopover(Toolkit toolkit, const Node& node);
// Under which there may be a menu or a list in a window of its own.
bool opensPopup(const Node& node);

// For each node whether it is in a popup.
std::vector<bool> inPopups(const NodeTree& nodes, Toolkit toolkit);

// Whether something of an open popup shows outside of its window's rectangle.
bool hangsOut(const NodeTree& nodes, Toolkit toolkit, AxRect visible);

// The window's rectangle and those of `popups`, the open popups' windows, that hang out of it, together. A walk that is
// bounded by that meets nothing that it wouldn't have met within the window alone but what is in those popups: the rest
// doesn't show any more. To be called where something hangs out.
AxRect letHangOut(NodeTree& nodes, Toolkit toolkit, AxRect visible, const std::vector<AxRect>& popups);

}  // namespace tarvix::atspi
