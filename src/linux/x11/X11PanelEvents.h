// Events sent to a window of ours as if the server had made them.
#pragma once

#include <cstdint>

#include "linux/x11/X11Connection.h"
#include "linux/x11/X11KeyEvent.h"

namespace tarvix {

// A key event with these modifiers and this layout group, whatever the event itself tells of them.
void sendKey(X11Connection& connection, xcb_window_t panel, const X11KeyEvent& key, std::uint8_t modifiers,
             std::uint8_t group);

enum class PanelFocus { in, out };
// Tells a window that it has got or lost the keyboard, so that it shows its caret and routes keys to its field.
void sendFocus(X11Connection& connection, xcb_window_t panel, PanelFocus focus);

}  // namespace tarvix
