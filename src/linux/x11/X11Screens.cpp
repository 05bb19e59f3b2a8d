#include "linux/x11/X11Screens.h"

#include <xcb/randr.h>

#include <algorithm>

#include "linux/x11/X11WindowTree.h"

namespace tarvix {

namespace {

double overlap(AxRect a, AxRect b) {
    const double width = std::min(a.maxX(), b.maxX()) - std::max(a.minX(), b.minX());
    const double height = std::min(a.maxY(), b.maxY()) - std::max(a.minY(), b.minY());
    return width > 0 && height > 0 ? width * height : 0;
}

bool holds(AxRect r, AxPoint p) { return p.x >= r.minX() && p.x < r.maxX() && p.y >= r.minY() && p.y < r.maxY(); }

// The window that has the keyboard where no window manager says which one is active.
std::optional<AxRect> activeWindow(X11Connection& x) {
    xcb_window_t window = XCB_WINDOW_NONE;
    if (hasWindowManager(x)) {
        const auto active = x.items(x.root(), "_NET_ACTIVE_WINDOW");
        if (!active.empty()) window = active.front();
    } else if (const auto focus = x.reply<xcb_get_input_focus_reply>(xcb_get_input_focus(x.get()))) {
        const bool isWindow = focus->focus > XCB_INPUT_FOCUS_POINTER_ROOT && focus->focus != x.root();
        if (isWindow) window = childrenOfRoot(x, {focus->focus}).front();
    }
    if (window == XCB_WINDOW_NONE) return std::nullopt;
    const auto geometryAsked = xcb_get_geometry(x.get(), window);
    const auto originAsked = xcb_translate_coordinates(x.get(), window, x.root(), 0, 0);
    const auto geometry = x.reply<xcb_get_geometry_reply>(geometryAsked);
    const auto origin = x.reply<xcb_translate_coordinates_reply>(originAsked);
    if (!geometry || !origin) return std::nullopt;
    return AxRect{{double(origin->dst_x), double(origin->dst_y)}, {double(geometry->width), double(geometry->height)}};
}

AxPoint pointer(X11Connection& x) {
    const auto answer = x.reply<xcb_query_pointer_reply>(xcb_query_pointer(x.get(), x.root()));
    return answer ? AxPoint{double(answer->root_x), double(answer->root_y)} : AxPoint{};
}

// The monitor with most of the active window, else with the pointer; absent without any monitor.
std::optional<PanelRect> mainOf(const std::vector<AxRect>& all, X11Connection& x) {
    if (all.empty()) return std::nullopt;
    auto main = all.end();
    if (const auto window = activeWindow(x)) {
        main = std::ranges::max_element(all, {}, [&](const AxRect& m) { return overlap(m, *window); });
        if (overlap(*main, *window) == 0) main = all.end();
    }
    if (main == all.end()) main = std::ranges::find_if(all, [p = pointer(x)](const AxRect& m) { return holds(m, p); });
    if (main == all.end()) main = all.begin();
    return flip(*main, all.front().height());
}

}  // namespace

Outcome<std::unique_ptr<X11Screens>> X11Screens::open(X11Connection& connection) {
    if (!connection.isAlive()) return Fault{"the X server has gone"};
    bool hasMonitors = false;
    if (connection.extension(xcb_randr_id)) {
        const auto version =
            connection.reply<xcb_randr_query_version_reply>(xcb_randr_query_version(connection.get(), 1, 5));
        hasMonitors = version && version->major_version * 100 + version->minor_version >= 105;
    }
    return std::unique_ptr<X11Screens>(new X11Screens(connection, hasMonitors));
}

X11Screens::X11Screens(X11Connection& connection, bool hasMonitors) : x_(connection), hasMonitors_(hasMonitors) {
    // What a user defines as a monitor is told of as a change of the root window alone.
    x_.selectOnRoot(XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    if (hasMonitors_) {
        firstEvent_ = x_.extension(xcb_randr_id)->first_event;
        xcb_randr_select_input(x_.get(), x_.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE | XCB_RANDR_NOTIFY_MASK_RESOURCE_CHANGE);
    }
    changes_ = x_.onEvent([this](const xcb_generic_event_t& event) {
        if (tellsOfMonitors(event)) monitors_.clear();
        return X11Connection::Handled::no;
    });
    x_.flush();
}

bool X11Screens::tellsOfMonitors(const xcb_generic_event_t& event) const {
    const int type = event.response_type & 0x7f;
    if (type == XCB_CONFIGURE_NOTIFY)
        return reinterpret_cast<const xcb_configure_notify_event_t&>(event).window == x_.root();
    return hasMonitors_ &&
           (type == firstEvent_ + XCB_RANDR_SCREEN_CHANGE_NOTIFY || type == firstEvent_ + XCB_RANDR_NOTIFY);
}

// An event that waits to be handed out has made the list a thing of the past already.
std::vector<AxRect> X11Screens::monitors() {
    if (x_.hasArrived([this](const xcb_generic_event_t& event) { return tellsOfMonitors(event); })) monitors_.clear();
    if (monitors_.empty()) monitors_ = readMonitors(x_);
    return monitors_;
}

std::vector<AxRect> X11Screens::readMonitors(X11Connection& x) const {
    std::vector<AxRect> found;
    if (hasMonitors_) {
        const auto answer = x.reply<xcb_randr_get_monitors_reply>(xcb_randr_get_monitors(x.get(), x.root(), 1));
        if (answer)
            for (auto m = xcb_randr_get_monitors_monitors_iterator(answer.get()); m.rem > 0;
                 xcb_randr_monitor_info_next(&m)) {
                const AxRect frame{{double(m.data->x), double(m.data->y)},
                                   {double(m.data->width), double(m.data->height)}};
                if (!frame.isEmpty()) found.insert(m.data->primary ? found.begin() : found.end(), frame);
            }
    }
    if (!found.empty()) return found;
    const auto root = x.reply<xcb_get_geometry_reply>(xcb_get_geometry(x.get(), x.root()));
    if (root) found.push_back({{0, 0}, {double(root->width), double(root->height)}});
    return found;
}

std::vector<PanelRect> X11Screens::frames() {
    std::vector<PanelRect> frames;
    const auto all = monitors();
    frames.reserve(all.size());
    for (const AxRect& monitor : all) frames.push_back(flip(monitor, all.front().height()));
    return frames;
}

std::optional<PanelRect> X11Screens::mainFrame() {
    return std::this_thread::get_id() == mainThread_ ? mainOf(monitors(), x_) : mainFrameElsewhere();
}

std::optional<PanelRect> X11Screens::mainFrameElsewhere() {
    const std::lock_guard lock(mutex_);
    if (!elsewhere_) {
        auto opened = X11Connection::open();
        if (!opened) return std::nullopt;
        elsewhere_ = std::move(opened.value());
    }
    return mainOf(readMonitors(*elsewhere_), *elsewhere_);
}

PanelPoint X11Screens::mouseLocation() {
    const auto all = monitors();
    return flip(pointer(x_), all.empty() ? 0 : all.front().height());
}

}  // namespace tarvix
