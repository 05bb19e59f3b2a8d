#include "linux/x11/X11PanelEvents.h"

namespace tarvix {

namespace {

// With an empty mask the event goes to the client that made the window.
template <class Event>
void send(X11Connection& connection, xcb_window_t window, const Event& event) {
    static_assert(sizeof(Event) <= 32);
    char bytes[32] = {};
    *reinterpret_cast<Event*>(bytes) = event;
    xcb_send_event(connection.get(), 0, window, XCB_EVENT_MASK_NO_EVENT, bytes);
}

}  // namespace

void sendKey(X11Connection& connection, xcb_window_t panel, const X11KeyEvent& key, std::uint8_t modifiers,
             std::uint8_t group) {
    xcb_key_press_event_t event{};
    event.response_type = key.isPress ? XCB_KEY_PRESS : XCB_KEY_RELEASE;
    event.detail = key.keycode;
    event.time = key.time;
    event.root = connection.root();
    event.event = panel;
    event.root_x = event.event_x = key.rootX;
    event.root_y = event.event_y = key.rootY;
    event.state = static_cast<std::uint16_t>(modifiers | (group & 3) << 13);
    event.same_screen = 1;
    send(connection, panel, event);
}

void sendFocus(X11Connection& connection, xcb_window_t panel, PanelFocus focus) {
    xcb_focus_in_event_t event{};
    event.response_type = focus == PanelFocus::in ? XCB_FOCUS_IN : XCB_FOCUS_OUT;
    event.detail = XCB_NOTIFY_DETAIL_NONLINEAR;
    event.event = panel;
    event.mode = XCB_NOTIFY_MODE_NORMAL;
    send(connection, panel, event);
}

}  // namespace tarvix
