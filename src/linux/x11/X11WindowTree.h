// Where a window stands in the tree of windows.
#pragma once

#include <xcb/xcb.h>

#include <string>
#include <vector>

#include "linux/x11/X11Connection.h"

namespace tarvix {

// For each window the child of the root that holds it: itself, or the window manager's frame around it. 0 for one that
// has gone. As many round trips as the deepest of them has ancestors.
std::vector<xcb_window_t> childrenOfRoot(X11Connection& connection, const std::vector<xcb_window_t>& windows);

// The children of the root, bottom to top.
std::vector<xcb_window_t> rootStack(X11Connection& connection);

// Whether a window manager that keeps the common hints is there.
bool hasWindowManager(X11Connection& connection);

// What it calls itself; empty where there is none.
std::string windowManagerName(X11Connection& connection);

}  // namespace tarvix
