#include "linux/x11/X11Stacking.h"

#include <cstdint>

#include "linux/x11/X11WindowTree.h"

namespace tarvix {

namespace {

// What a pager sends, whose wishes window managers follow.
void askWindowManager(X11Connection& x, xcb_window_t window, xcb_window_t sibling) {
    constexpr std::uint32_t pager = 2;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = x.atom("_NET_RESTACK_WINDOW");
    message.data.data32[0] = pager;
    message.data.data32[1] = sibling;
    message.data.data32[2] = XCB_STACK_MODE_BELOW;
    xcb_send_event(x.get(), 0, x.root(), XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
}

}  // namespace

void X11Stacking::stackBelow(xcb_window_t window, xcb_window_t sibling, By by) {
    if (by == By::windowManager) {
        askWindowManager(x_, window, sibling);
        x_.flush();
        return;
    }
    // Only siblings can be stacked against each other: the window manager has put the other one into a frame.
    const auto tops = childrenOfRoot(x_, {window, sibling});
    if (tops[0] == XCB_WINDOW_NONE || tops[1] == XCB_WINDOW_NONE || tops[0] == tops[1]) return;
    const std::uint32_t values[] = {tops[1], XCB_STACK_MODE_BELOW};
    xcb_configure_window(x_.get(), tops[0], XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values);
    x_.flush();
}

void X11Stacking::stackOnTop(xcb_window_t window) {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(x_.get(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    x_.flush();
}

}  // namespace tarvix
