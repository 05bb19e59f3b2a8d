// Windows that lie over a whole screen without any window manager, as those of screen locks do.
#pragma once

#include <xcb/xcb.h>

#include "linux/x11/X11Connection.h"

namespace tarvix {

// Whether a window that was just mapped is another program's, and covers all of a monitor by itself. `ours` is any
// window of this program's toolkit, whose connection isn't this one.
bool coversAScreen(X11Connection& connection, const xcb_map_notify_event_t& mapped, xcb_window_t ours);

}  // namespace tarvix
