#include "linux/x11/X11Stacking.h"

#include <cstdint>

#include "linux/x11/X11WindowTree.h"

namespace tarvix {

void X11Stacking::stackBelow(xcb_window_t window, xcb_window_t sibling) {
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
