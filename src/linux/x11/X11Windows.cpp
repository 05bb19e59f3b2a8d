#include "linux/x11/X11Windows.h"

#include <xcb/res.h>
#include <xcb/shape.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <string_view>
#include <utility>

#include "linux/x11/X11Connection.h"
#include "linux/x11/X11WindowTree.h"

namespace tarvix {

namespace {

constexpr std::uint32_t kIconicState = 3;  // of WM_STATE
constexpr std::string_view kTypePrefix = "_NET_WM_WINDOW_TYPE_";
constexpr std::size_t kMostWithin = 2'000;  // windows looked at below one

// The requests about where a window stands.
struct AskedPlace {
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t origin;
};

// The requests about one window, all on their way before the first reply is read.
struct Asked {
    xcb_window_t number;
    AskedPlace place;
    xcb_get_property_cookie_t netName, name, windowClass, gtkExtents, extents, type, state, wmState, pid,
        gtkApplicationId, iconGeometry;
    xcb_res_query_client_ids_cookie_t clientIds;
};

struct Seen {
    X11Window window;
    bool isViewable = false;
    bool isInputOnly = false;
};

std::optional<X11Window::Extents> extentsOf(const std::vector<std::uint32_t>& items) {
    if (items.size() < 4) return std::nullopt;
    const auto at = [&](std::size_t i) { return static_cast<double>(items[i]); };
    return X11Window::Extents{at(0), at(1), at(2), at(3)};
}

std::optional<AxRect> boxOf(const std::vector<std::uint32_t>& items) {
    if (items.size() < 4) return std::nullopt;
    const auto at = [&](std::size_t i) { return static_cast<double>(static_cast<std::int32_t>(items[i])); };
    return AxRect{{at(0), at(1)}, {at(2), at(3)}};
}

// What was read of the active window stays until an event says that it has changed. The server sends an event before it
// answers what is asked later, so one round trip brings all that has happened by then.
class Reader final : public X11Windows {
public:
    explicit Reader(std::unique_ptr<X11Connection> connection) : x_(std::move(connection)) {
        x_->intern({"_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST_STACKING", "_NET_CLIENT_LIST", "_NET_SUPPORTING_WM_CHECK",
                    "_NET_WM_NAME", "WM_NAME", "WM_CLASS", "_GTK_FRAME_EXTENTS", "_NET_FRAME_EXTENTS",
                    "_NET_WM_WINDOW_TYPE", "_NET_WM_STATE", "WM_STATE", "_NET_WM_PID", "_NET_WM_STATE_FULLSCREEN",
                    "_NET_WM_STATE_HIDDEN", "_GTK_APPLICATION_ID", "_NET_WM_ICON_GEOMETRY"});
        hasShapes_ = x_->extension(xcb_shape_id) != nullptr;
        if (!x_->extension(xcb_res_id)) return;
        const auto version = x_->reply<xcb_res_query_version_reply>(xcb_res_query_version(x_->get(), 1, 2));
        hasClientIds_ = version && version->server_major * 100 + version->server_minor >= 102;
        events_ = x_->onEvent([this](const xcb_generic_event_t& event) {
            forgetWhatChanged(event);
            return X11Connection::Handled::no;
        });
        x_->selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE);
    }

    std::optional<X11Window> active() override {
        const std::lock_guard lock(mutex_);
        const auto asked = x_->askProperty(x_->root(), "_NET_ACTIVE_WINDOW");
        const auto place = askPlace(kept_.window.number);
        const auto active = x_->items(asked);
        const auto keptNow = takeKept(place);
        if (!isManaged()) return activeByFocus();
        if (active.empty() || active.front() == XCB_WINDOW_NONE) return std::nullopt;
        // A window manager may go on naming a window that has been withdrawn.
        auto seen = keptNow && active.front() == keptNow->window.number ? keptNow : readAndKeep(active.front());
        if (!seen || !seen->isViewable) return std::nullopt;
        return std::move(seen->window);
    }

    std::optional<X11Window> window(std::uint32_t number) override {
        const std::lock_guard lock(mutex_);
        if (isKept_ && number == kept_.window.number)
            if (auto seen = takeKept(askPlace(number))) return std::move(seen->window);
        return readOne(number);
    }

    std::vector<X11Window> onScreen() override {
        const std::lock_guard lock(mutex_);
        std::vector<X11Window> windows = frontToBack();
        addClickable(windows);
        return windows;
    }

    std::vector<X11Window> clients() override {
        const std::lock_guard lock(mutex_);
        if (!isManagedNow()) return {};
        std::vector<X11Window> result;
        for (auto& seen : readAll(x_->items(x_->root(), "_NET_CLIENT_LIST")))
            if (seen) result.push_back(std::move(seen->window));
        return result;
    }

    std::vector<X11Window> embeddedIn(std::uint32_t number) override {
        const std::lock_guard lock(mutex_);
        const std::vector<xcb_window_t> foreign = foreignBelow(number);
        std::vector<xcb_get_property_cookie_t> paths;
        for (const xcb_window_t each : foreign) paths.push_back(x_->askProperty(each, "_XEMBED_AT_SPI_PATH"));
        auto all = readAll(foreign);
        std::vector<X11Window> result;
        for (std::size_t i = 0; i < all.size(); ++i) {
            const auto path = x_->text(paths[i]);
            if (!all[i] || !all[i]->isViewable || all[i]->isInputOnly) continue;
            all[i]->window.accessiblePath = path.value_or("");
            result.push_back(std::move(all[i]->window));
        }
        return result;
    }

private:
    AskedPlace askPlace(xcb_window_t number) {
        xcb_connection_t* c = x_->get();
        return {xcb_get_window_attributes(c, number), xcb_get_geometry(c, number),
                xcb_translate_coordinates(c, number, x_->root(), 0, 0)};
    }

    Asked ask(xcb_window_t number) {
        xcb_connection_t* c = x_->get();
        const xcb_res_client_id_spec_t whose{number, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        return {number,
                askPlace(number),
                x_->askProperty(number, "_NET_WM_NAME"),
                x_->askProperty(number, "WM_NAME"),
                x_->askProperty(number, "WM_CLASS"),
                x_->askProperty(number, "_GTK_FRAME_EXTENTS"),
                x_->askProperty(number, "_NET_FRAME_EXTENTS"),
                x_->askProperty(number, "_NET_WM_WINDOW_TYPE"),
                x_->askProperty(number, "_NET_WM_STATE"),
                x_->askProperty(number, "WM_STATE"),
                x_->askProperty(number, "_NET_WM_PID"),
                x_->askProperty(number, "_GTK_APPLICATION_ID"),
                x_->askProperty(number, "_NET_WM_ICON_GEOMETRY"),
                hasClientIds_ ? xcb_res_query_client_ids(c, 1, &whose) : xcb_res_query_client_ids_cookie_t{0}};
    }

    // Every reply is taken, also those about a window that has gone.
    std::optional<Seen> take(const Asked& asked) {
        Seen seen;
        const bool isThere = takePlace(asked.place, seen);
        X11Window& w = seen.window;
        w.number = asked.number;
        const auto netName = x_->text(asked.netName);
        const auto name = x_->text(asked.name);
        w.title = netName ? *netName : name.value_or("");
        takeClass(x_->text(asked.windowClass).value_or(""), w);
        w.gtkApplicationId = x_->text(asked.gtkApplicationId).value_or("");
        w.gtkFrameExtents = extentsOf(x_->items(asked.gtkExtents));
        w.frameExtents = extentsOf(x_->items(asked.extents));
        w.iconGeometry = boxOf(x_->items(asked.iconGeometry));
        for (const xcb_atom_t type : x_->items(asked.type)) w.types.push_back(typeName(type));
        takeState(x_->items(asked.state), x_->items(asked.wmState), w);
        w.pid = takePid(asked);
        return isThere ? std::optional(std::move(seen)) : std::nullopt;
    }

    // False when the window has gone.
    bool takePlace(const AskedPlace& asked, Seen& seen) {
        const auto attributes = x_->reply<xcb_get_window_attributes_reply>(asked.attributes);
        const auto geometry = x_->reply<xcb_get_geometry_reply>(asked.geometry);
        const auto origin = x_->reply<xcb_translate_coordinates_reply>(asked.origin);
        if (!attributes || !geometry || !origin) return false;
        seen.window.client = {{static_cast<double>(origin->dst_x), static_cast<double>(origin->dst_y)},
                              {static_cast<double>(geometry->width), static_cast<double>(geometry->height)}};
        seen.window.isOverrideRedirect = attributes->override_redirect != 0;
        seen.isViewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
        seen.isInputOnly = attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY;
        return true;
    }

    // The kept window with its place anew; absent when what is kept doesn't hold any more.
    std::optional<Seen> takeKept(const AskedPlace& asked) {
        Seen now = kept_;
        const bool isThere = takePlace(asked, now);
        x_->handOutArrived();
        if (!isThere) isKept_ = false;
        return isKept_ ? std::optional(std::move(now)) : std::nullopt;
    }

    std::optional<Seen> readAndKeep(xcb_window_t number) {
        if (kept_.window.number != number) {
            selectOn(kept_.window.number, XCB_EVENT_MASK_NO_EVENT);
            selectOn(number, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        }
        auto seen = take(ask(number));
        kept_ = seen.value_or(Seen{});
        isKept_ = seen.has_value();
        // Only now: a window that went while it was read would be kept for ever, and its number may come to stand for
        // another program's.
        x_->handOutArrived();
        return seen;
    }

    void selectOn(xcb_window_t window, std::uint32_t mask) {
        if (window != XCB_WINDOW_NONE) xcb_change_window_attributes(x_->get(), window, XCB_CW_EVENT_MASK, &mask);
    }

    void forgetWhatChanged(const xcb_generic_event_t& event) {
        const int type = event.response_type & 0x7f;
        if (type == XCB_PROPERTY_NOTIFY) {
            const auto& changed = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            if (changed.window == kept_.window.number) isKept_ = false;
            if (changed.atom == x_->atom("_NET_SUPPORTING_WM_CHECK")) isManaged_.reset();
        } else if (type == XCB_DESTROY_NOTIFY) {
            const xcb_window_t gone = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
            if (gone == kept_.window.number)
                kept_ = Seen{}, isKept_ = false;  // the number may come to stand for another
            if (gone == managersWindow_) isManaged_.reset();
        }
    }

    bool isManagedNow() {
        x_->sync();
        x_->handOutArrived();
        return isManaged();
    }

    // Whether a window manager is there; looked up again when its window has gone or its property has changed.
    bool isManaged() {
        if (isManaged_) return *isManaged_;
        const auto check = x_->items(x_->root(), "_NET_SUPPORTING_WM_CHECK");
        managersWindow_ = check.empty() ? xcb_window_t{XCB_WINDOW_NONE} : check.front();
        selectOn(managersWindow_, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        isManaged_ = hasWindowManager(*x_);
        return *isManaged_;
    }

    static void takeClass(const std::string& property, X11Window& w) {
        const std::size_t end = property.find('\0');
        w.windowInstance = property.substr(0, end);
        if (end == std::string::npos) return;
        const std::string rest = property.substr(end + 1);
        w.windowClass = rest.substr(0, rest.find('\0'));
    }

    std::string typeName(xcb_atom_t type) {
        const std::string& name = x_->atomName(type);
        return name.starts_with(kTypePrefix) ? name.substr(kTypePrefix.size()) : name;
    }

    void takeState(const std::vector<std::uint32_t>& state, const std::vector<std::uint32_t>& wmState, X11Window& w) {
        const auto holds = [&](std::string_view name) { return std::ranges::count(state, x_->atom(name)) > 0; };
        w.isFullScreen = holds("_NET_WM_STATE_FULLSCREEN");
        w.isMinimized = holds("_NET_WM_STATE_HIDDEN") || (!wmState.empty() && wmState.front() == kIconicState);
    }

    std::int32_t takePid(const Asked& asked) {
        const auto claimed = x_->items(asked.pid);
        if (hasClientIds_)
            if (const auto ids = x_->reply<xcb_res_query_client_ids_reply>(asked.clientIds))
                for (auto id = xcb_res_query_client_ids_ids_iterator(ids.get()); id.rem > 0;
                     xcb_res_client_id_value_next(&id))
                    if ((id.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 && id.data->length >= 4)
                        return static_cast<std::int32_t>(*xcb_res_client_id_value_value(id.data));
        return claimed.empty() ? -1 : static_cast<std::int32_t>(claimed.front());
    }

    std::optional<X11Window> readOne(xcb_window_t number) {
        auto seen = take(ask(number));
        if (!seen) return std::nullopt;
        return std::move(seen->window);
    }

    std::vector<std::optional<Seen>> readAll(const std::vector<xcb_window_t>& numbers) {
        std::vector<Asked> asked;
        asked.reserve(numbers.size());
        for (const xcb_window_t number : numbers) asked.push_back(ask(number));
        std::vector<std::optional<Seen>> seen;
        seen.reserve(numbers.size());
        for (const Asked& one : asked) seen.push_back(take(one));
        return seen;
    }

    std::vector<xcb_window_t> clientWindows() {
        auto clients = x_->items(x_->root(), "_NET_CLIENT_LIST_STACKING");
        return clients.empty() ? x_->items(x_->root(), "_NET_CLIENT_LIST") : clients;
    }

    // The windows below one that another client has made than their parent, level by level.
    std::vector<xcb_window_t> foreignBelow(xcb_window_t top) {
        const std::uint32_t clientBits = ~xcb_get_setup(x_->get())->resource_id_mask;
        std::vector<xcb_window_t> foreign, level{top};
        for (std::size_t looked = 0; !level.empty() && looked < kMostWithin; looked += level.size()) {
            std::vector<xcb_query_tree_cookie_t> asked;
            asked.reserve(level.size());
            for (const xcb_window_t each : level) asked.push_back(xcb_query_tree(x_->get(), each));
            std::vector<xcb_window_t> below;
            for (std::size_t i = 0; i < level.size(); ++i) {
                const auto tree = x_->reply<xcb_query_tree_reply>(asked[i]);
                if (!tree) continue;
                const xcb_window_t* children = xcb_query_tree_children(tree.get());
                for (int c = 0; c < xcb_query_tree_children_length(tree.get()); ++c) {
                    below.push_back(children[c]);
                    if ((children[c] & clientBits) != (level[i] & clientBits)) foreign.push_back(children[c]);
                }
            }
            level = std::move(below);
        }
        return foreign;
    }

    AxRect rootBox() const {
        return {{0, 0}, {double(x_->screen().width_in_pixels), double(x_->screen().height_in_pixels)}};
    }

    void addClickable(std::vector<X11Window>& windows) {
        std::vector<X11Window*> panels;
        for (X11Window& each : windows)
            if (each.hasType("DOCK")) panels.push_back(&each);
        std::vector<xcb_shape_get_rectangles_cookie_t> asked;
        for (const X11Window* each : panels)
            if (hasShapes_) asked.push_back(xcb_shape_get_rectangles(x_->get(), each->number, XCB_SHAPE_SK_INPUT));
        for (std::size_t i = 0; i < panels.size(); ++i) {
            X11Window& panel = *panels[i];
            AxRect takesClicks = panel.client;
            if (hasShapes_)
                if (const auto shape = x_->reply<xcb_shape_get_rectangles_reply>(asked[i]))
                    takesClicks = intersection(panel.client, boxAround(*shape, panel.client.origin));
            panel.clickable = intersection(takesClicks, rootBox());
        }
    }

    static AxRect boxAround(const xcb_shape_get_rectangles_reply_t& shape, AxPoint origin) {
        const xcb_rectangle_t* rectangles = xcb_shape_get_rectangles_rectangles(&shape);
        double left = 0, top = 0, right = 0, bottom = 0;
        for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(&shape); ++i) {
            const xcb_rectangle_t& r = rectangles[i];
            left = i == 0 ? r.x : std::min(left, double(r.x));
            top = i == 0 ? r.y : std::min(top, double(r.y));
            right = i == 0 ? r.x + r.width : std::max(right, double(r.x + r.width));
            bottom = i == 0 ? r.y + r.height : std::max(bottom, double(r.y + r.height));
        }
        return {{origin.x + left, origin.y + top}, {right - left, bottom - top}};
    }

    // The server makes windows of its own, such as the overlay of a compositor; they show nothing of an application.
    bool isServers(xcb_window_t number) const { return (number & ~xcb_get_setup(x_->get())->resource_id_mask) == 0; }

    bool touchesRoot(const X11Window& w) const { return intersects(w.client, rootBox()); }

    std::vector<X11Window> frontToBack() {
        const auto clients = isManagedNow() ? clientWindows() : std::vector<xcb_window_t>{};
        const auto frames = childrenOfRoot(*x_, clients);
        std::multimap<xcb_window_t, xcb_window_t> clientsOf;
        for (std::size_t i = 0; i < clients.size(); ++i) clientsOf.emplace(frames[i], clients[i]);

        auto stack = rootStack(*x_);
        std::ranges::reverse(stack);
        std::vector<xcb_window_t> candidates;
        for (const xcb_window_t child : stack) {
            const auto [first, last] = clientsOf.equal_range(child);
            if (first == last && !isServers(child)) candidates.push_back(child);
            for (auto client = first; client != last; ++client) candidates.push_back(client->second);
        }

        std::vector<X11Window> result;
        for (auto& seen : readAll(candidates))
            if (seen && seen->isViewable && !seen->isInputOnly && touchesRoot(seen->window))
                result.push_back(std::move(seen->window));
        return result;
    }

    // Without a window manager's word.
    std::optional<X11Window> activeByFocus() {
        const auto focus = x_->reply<xcb_get_input_focus_reply>(xcb_get_input_focus(x_->get()));
        if (!focus || focus->focus == XCB_INPUT_FOCUS_NONE) return std::nullopt;
        if (focus->focus == XCB_INPUT_FOCUS_POINTER_ROOT || focus->focus == x_->root()) return underPointer();
        const xcb_window_t top = childrenOfRoot(*x_, {focus->focus}).front();
        return top == XCB_WINDOW_NONE ? std::nullopt : readOne(top);
    }

    // Popups don't count: panels of ours are such, and a menu belongs to a window below it.
    std::optional<X11Window> underPointer() {
        const auto pointer = x_->reply<xcb_query_pointer_reply>(xcb_query_pointer(x_->get(), x_->root()));
        if (!pointer) return std::nullopt;
        const double x = pointer->root_x, y = pointer->root_y;
        for (X11Window& w : frontToBack()) {
            const bool holdsIt =
                x >= w.client.minX() && x < w.client.maxX() && y >= w.client.minY() && y < w.client.maxY();
            if (holdsIt && !w.isOverrideRedirect) return std::move(w);
        }
        return std::nullopt;
    }

    std::mutex mutex_;
    std::unique_ptr<X11Connection> x_;
    bool hasClientIds_ = false;
    bool hasShapes_ = false;
    Seen kept_;
    bool isKept_ = false;
    std::optional<bool> isManaged_;
    xcb_window_t managersWindow_ = XCB_WINDOW_NONE;
    Subscription events_;
};

}  // namespace

Outcome<std::unique_ptr<X11Windows>> X11Windows::open() {
    auto connection = X11Connection::open();
    if (!connection) return Fault{connection.reason()};
    return std::unique_ptr<X11Windows>(std::make_unique<Reader>(std::move(connection.value())));
}

}  // namespace tarvix
