#include "linux/x11/X11Covering.h"

#include <xcb/randr.h>

#include <algorithm>
#include <vector>

namespace tarvix {

namespace {

struct Box {
    int left = 0, top = 0, right = 0, bottom = 0;
    bool covers(const Box& other) const {
        return left <= other.left && top <= other.top && right >= other.right && bottom >= other.bottom;
    }
};

bool hasMonitors(X11Connection& x) {
    if (!x.extension(xcb_randr_id)) return false;
    const auto version = x.reply<xcb_randr_query_version_reply>(xcb_randr_query_version(x.get(), 1, 5));
    return version && (version->major_version > 1 || version->minor_version >= 5);
}

// The root window's own box where the server knows of no monitors.
std::vector<Box> screensOf(X11Connection& x) {
    std::vector<Box> screens;
    if (hasMonitors(x)) {
        const auto monitors =
            x.reply<xcb_randr_get_monitors_reply>(xcb_randr_get_monitors(x.get(), x.root(), /*only active ones*/ 1));
        for (auto left = monitors ? xcb_randr_get_monitors_monitors_iterator(monitors.get())
                                  : xcb_randr_monitor_info_iterator_t{};
             left.rem > 0; xcb_randr_monitor_info_next(&left))
            screens.push_back(
                {left.data->x, left.data->y, left.data->x + left.data->width, left.data->y + left.data->height});
    }
    if (!screens.empty()) return screens;
    const auto root = x.reply<xcb_get_geometry_reply>(xcb_get_geometry(x.get(), x.root()));
    if (root) screens.push_back({0, 0, root->width, root->height});
    return screens;
}

// The server gives each connection a range of numbers for its windows.
bool areOfOneConnection(X11Connection& x, xcb_window_t a, xcb_window_t b) {
    const std::uint32_t own = xcb_get_setup(x.get())->resource_id_mask;
    return (a & ~own) == (b & ~own);
}

}  // namespace

bool coversAScreen(X11Connection& connection, const xcb_map_notify_event_t& mapped, xcb_window_t ours) {
    const xcb_window_t window = mapped.window;
    if (!mapped.override_redirect || areOfOneConnection(connection, window, ours) ||
        areOfOneConnection(connection, window, xcb_get_setup(connection.get())->resource_id_base))
        return false;
    const auto attributesAsked = xcb_get_window_attributes(connection.get(), window);
    const auto placeAsked = xcb_get_geometry(connection.get(), window);
    const auto attributes = connection.reply<xcb_get_window_attributes_reply>(attributesAsked);
    const auto place = connection.reply<xcb_get_geometry_reply>(placeAsked);
    if (!attributes || !place || attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY) return false;
    const Box box{place->x, place->y, place->x + place->width, place->y + place->height};
    return std::ranges::any_of(screensOf(connection), [&](const Box& screen) { return box.covers(screen); });
}

}  // namespace tarvix
