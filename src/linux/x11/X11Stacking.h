// The places of windows of ours in the stack of windows.
#pragma once

#include <xcb/xcb.h>

#include "linux/x11/X11Connection.h"

namespace tarvix {

// Main thread.
class X11Stacking {
public:
    explicit X11Stacking(X11Connection& connection) : x_(connection) {}

    // Directly below another window, its frame included; nothing happens when that one has gone.
    void stackBelow(xcb_window_t window, xcb_window_t sibling);
    void stackOnTop(xcb_window_t window);

private:
    X11Connection& x_;
};

}  // namespace tarvix
