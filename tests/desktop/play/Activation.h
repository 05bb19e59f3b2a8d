// Which window is active, and having another one become it.
#pragma once

#include <xcb/xcb.h>

#include <chrono>

#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Windows.h"
#include "tests/desktop/play/Await.h"

namespace tarvix {

// Asks the window manager as a pager or a task bar does.
inline void askForActivation(X11Connection& x, xcb_window_t window) {
    xcb_client_message_event_t wish{};
    wish.response_type = XCB_CLIENT_MESSAGE;
    wish.format = 32;
    wish.window = window;
    wish.type = x.atom("_NET_ACTIVE_WINDOW");
    wish.data.data32[0] = 2;
    xcb_send_event(x.get(), 0, x.root(), XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&wish));
}

inline bool becomesActive(X11Windows& windows, xcb_window_t window) {
    return await(std::chrono::seconds(10), [&] {
        const auto active = windows.active();
        return active && active->number == window;
    });
}

}  // namespace tarvix
