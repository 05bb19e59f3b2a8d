// The program that blends translucent windows, if there is one.
#pragma once

#include <xcb/xcb.h>

#include <functional>

#include "linux/x11/X11Connection.h"

namespace tarvix {

bool isComposited(X11Connection& connection);

// Calls back whenever a compositor has ended; on the loop that watches the connection. Never on a server that can't
// tell.
[[nodiscard]] Subscription onCompositorGone(X11Connection& connection, std::function<void()> gone);

}  // namespace tarvix
