// The places of windows of ours in the stack of windows.
#pragma once

#include <xcb/xcb.h>

#include "linux/x11/X11Connection.h"

namespace tarvix {

// Main thread.
class X11Stacking {
public:
    // Who gives a window its place: we do, or, for one that is managed as an application's is, the window manager.
    enum class By { us, windowManager };

    explicit X11Stacking(X11Connection& connection) : x_(connection) {}

    // Directly below another window, its frame included; nothing happens when that one has gone.
    void stackBelow(xcb_window_t window, xcb_window_t sibling, By by = By::us);
    void stackOnTop(xcb_window_t window);

private:
    X11Connection& x_;
};

}  // namespace tarvix
