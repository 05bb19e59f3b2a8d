#include "linux/x11/X11TrayWindow.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>
#include <utility>

namespace tarvix {

using Handled = X11Connection::Handled;

namespace {

constexpr std::uint16_t kSize = 22;  // what trays make room for that don't give every window the same size
constexpr int kLargest = 256;
constexpr std::uint32_t kRequestDock = 0;
constexpr std::uint32_t kEmbedVersion = 0, kMapped = 1;
constexpr std::uint8_t kTransparentDepth = 32;
constexpr int kBytes = 4;  // for a pixel of any depth that there is a picture in
// How long a panel takes to paint itself anew around a window that has come into it.
constexpr std::chrono::milliseconds kUntilPainted{250};

// A picture over a ground without transparency.
std::uint32_t over(std::uint32_t picture, std::uint32_t ground) {
    const std::uint32_t through = 255 - (picture >> 24);
    std::uint32_t result = 0;
    for (const int shift : {0, 8, 16}) {
        const std::uint32_t below = (ground >> shift & 0xff) * through / 255;
        result |= std::min<std::uint32_t>(255, (picture >> shift & 0xff) + below) << shift;
    }
    return result;
}

Color colorOf(std::uint32_t pixel) {
    const auto part = [pixel](int shift) { return static_cast<double>(pixel >> shift & 0xff) / 255; };
    return {part(16), part(8), part(0), 1};
}

// The pictures leave the corners free, so that it is the ground that shows there.
std::optional<Color> groundOf(const std::vector<std::uint32_t>& pixels, int width) {
    if (pixels.empty()) return std::nullopt;
    const auto row = static_cast<std::size_t>(width);
    const std::array corners{pixels.front(), pixels[row - 1], pixels[pixels.size() - row], pixels.back()};
    Color sum{0, 0, 0, 1};
    for (const std::uint32_t each : corners) {
        const Color color = colorOf(each);
        sum = {sum.red + color.red / 4, sum.green + color.green / 4, sum.blue + color.blue / 4, 1};
    }
    return sum;
}

}  // namespace

X11TrayWindow::X11TrayWindow(X11Connection& connection, TrayWindowUse use)
    : x_(connection),
      use_(std::move(use)),
      selection_("_NET_SYSTEM_TRAY_S" + std::to_string(connection.screenNumber())) {
    x_.intern({selection_, "MANAGER", "_NET_SYSTEM_TRAY_OPCODE", "_NET_SYSTEM_TRAY_VISUAL", "_XEMBED_INFO"});
    x_.selectOnRoot(XCB_EVENT_MASK_STRUCTURE_NOTIFY);  // a tray that starts tells the root window
    events_ = x_.onEvent([this](const xcb_generic_event_t& event) { return handle(event); });
    findTray();
}

X11TrayWindow::~X11TrayWindow() {
    remove();
    x_.deselectOnRoot(XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    x_.flush();
}

void X11TrayWindow::redraw() { paint(); }

Handled X11TrayWindow::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
        case XCB_CLIENT_MESSAGE: {
            const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
            if (message.type == x_.atom("MANAGER") && message.data.data32[1] == x_.atom(selection_)) findTray();
            break;
        }
        case XCB_DESTROY_NOTIFY: {
            const auto gone = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
            if (gone == XCB_WINDOW_NONE) break;
            if (gone == window_) window_ = XCB_WINDOW_NONE;  // with a tray that had not saved it
            if (gone == tray_) findTray();
            break;
        }
        default:
            if (window_ != XCB_WINDOW_NONE) handleOwn(event);
    }
    return Handled::no;
}

void X11TrayWindow::handleOwn(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
        case XCB_EXPOSE:
            if (reinterpret_cast<const xcb_expose_event_t&>(event).window == window_) paintWhenAtRest();
            break;
        case XCB_CONFIGURE_NOTIFY: {
            const auto& changed = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
            if (changed.window != window_) break;
            width_ = changed.width;
            height_ = changed.height;
            paintWhenAtRest();
            break;
        }
        case XCB_BUTTON_RELEASE: {
            const auto& click = reinterpret_cast<const xcb_button_release_event_t&>(event);
            const auto at = click.event == window_ ? place() : std::nullopt;
            const bool isInside =
                click.event_x >= 0 && click.event_y >= 0 && click.event_x < width_ && click.event_y < height_;
            if (at && isInside && click.detail <= 3) use_.clicked(click.detail, *at);
            break;
        }
        case XCB_ENTER_NOTIFY:
        case XCB_LEAVE_NOTIFY: {
            const auto& crossing = reinterpret_cast<const xcb_enter_notify_event_t&>(event);
            const bool isOnto = crossing.response_type == XCB_ENTER_NOTIFY;
            if (crossing.event == window_) use_.pointed(isOnto ? place() : std::nullopt);
            break;
        }
        default:
            break;
    }
}

void X11TrayWindow::findTray() {
    remove();
    const auto owner = x_.reply<xcb_get_selection_owner_reply>(xcb_get_selection_owner(x_.get(), x_.atom(selection_)));
    tray_ = owner ? owner->owner : xcb_window_t{XCB_WINDOW_NONE};
    if (tray_ == XCB_WINDOW_NONE) return;
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    // One that has gone meanwhile would tell of its end no more.
    if (x_.errorOf(xcb_change_window_attributes_checked(x_.get(), tray_, XCB_CW_EVENT_MASK, &mask)) != 0) {
        tray_ = XCB_WINDOW_NONE;
        return;
    }
    make();
    describe();
    askForPlace();
}

// Of the tray's own kind of pixels, as the tray wishes.
void X11TrayWindow::make() {
    const auto wished = x_.items(tray_, "_NET_SYSTEM_TRAY_VISUAL");
    const xcb_screen_t& screen = x_.screen();
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0; xcb_depth_next(&depth)) {
        if (depth.data->depth != kTransparentDepth) continue;
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0; xcb_visualtype_next(&visual))
            if (!wished.empty() && visual.data->visual_id == wished.front())
                return makeWith(wished.front(), kTransparentDepth, true);
    }
    makeWith(screen.root_visual, screen.root_depth, false);
}

void X11TrayWindow::makeWith(xcb_visualid_t visual, std::uint8_t depth, bool isTransparent) {
    depth_ = depth;
    isTransparent_ = isTransparent;
    width_ = height_ = kSize;
    const std::uint32_t events = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                 XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                 XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW;
    colormap_ = xcb_generate_id(x_.get());
    xcb_create_colormap(x_.get(), XCB_COLORMAP_ALLOC_NONE, colormap_, x_.root(), visual);
    window_ = xcb_generate_id(x_.get());
    // A parent of another depth has no pixels to share.
    const std::uint32_t mask = (isTransparent ? XCB_CW_BACK_PIXEL : XCB_CW_BACK_PIXMAP) | XCB_CW_BORDER_PIXEL |
                               XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
    const std::uint32_t ground = isTransparent ? 0U : std::uint32_t{XCB_BACK_PIXMAP_NONE};
    const std::array values{ground, std::uint32_t{0}, events, std::uint32_t{colormap_}};
    xcb_create_window(x_.get(), depth, window_, x_.root(), -100, -100, kSize, kSize, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      visual, mask, values.data());
}

void X11TrayWindow::describe() {
    const auto set = [this](const char* name, const char* type, std::uint8_t format, std::uint32_t count,
                            const void* value) {
        xcb_change_property(x_.get(), XCB_PROP_MODE_REPLACE, window_, x_.atom(name), x_.atom(type), format, count,
                            value);
    };
    const auto size = static_cast<std::uint32_t>(use_.title.size());
    set("WM_NAME", "STRING", 8, size, use_.title.data());
    set("_NET_WM_NAME", "UTF8_STRING", 8, size, use_.title.data());
    constexpr std::string_view programClass{"tarvix\0Tarvix", 14};  // instance and class, each with its end
    set("WM_CLASS", "STRING", 8, programClass.size(), programClass.data());
    const auto process = static_cast<std::uint32_t>(getpid());
    set("_NET_WM_PID", "CARDINAL", 32, 1, &process);
    std::array<std::uint32_t, 18> hints{};
    constexpr std::size_t least = 5;  // width and height
    constexpr std::uint32_t hasLeast = 1 << 4;
    hints[0] = hasLeast;
    hints[least] = hints[least + 1] = kSize;
    set("WM_NORMAL_HINTS", "WM_SIZE_HINTS", 32, hints.size(), hints.data());
    constexpr std::array embed{kEmbedVersion, kMapped};
    set("_XEMBED_INFO", "_XEMBED_INFO", 32, embed.size(), embed.data());
}

void X11TrayWindow::askForPlace() {
    xcb_client_message_event_t request{};
    request.response_type = XCB_CLIENT_MESSAGE;
    request.format = 32;
    request.window = tray_;
    request.type = x_.atom("_NET_SYSTEM_TRAY_OPCODE");
    request.data.data32[0] = XCB_CURRENT_TIME;
    request.data.data32[1] = kRequestDock;
    request.data.data32[2] = window_;
    xcb_send_event(x_.get(), 0, tray_, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&request));
    x_.flush();
}

// Also one that a tray has left behind in the root window at its end.
void X11TrayWindow::remove() {
    painting_.reset();
    if (window_ != XCB_WINDOW_NONE) {
        xcb_destroy_window(x_.get(), window_);
        xcb_free_colormap(x_.get(), colormap_);
        use_.pointed(std::nullopt);
    }
    window_ = tray_ = XCB_WINDOW_NONE;
    x_.flush();
}

std::optional<AxRect> X11TrayWindow::place() {
    const auto at =
        x_.reply<xcb_translate_coordinates_reply>(xcb_translate_coordinates(x_.get(), window_, x_.root(), 0, 0));
    if (!at) return std::nullopt;
    return AxRect{{double(at->dst_x), double(at->dst_y)}, {double(width_), double(height_)}};
}

void X11TrayWindow::paintWhenAtRest() {
    paint();
    painting_ = x_.after(kUntilPainted, [this] { paint(); });
}

void X11TrayWindow::paint() {
    const auto isUsual = [](int size) { return size > 0 && size <= kLargest; };
    if (window_ == XCB_WINDOW_NONE || !isUsual(width_) || !isUsual(height_)) return;
    const auto at = place();
    if (!at) return;
    if (isTransparent_) {
        const auto ground = pixels(x_.root(), static_cast<int>(at->minX()), static_cast<int>(at->minY()));
        return put(use_.draw(width_, height_, groundOf(ground, width_)));
    }
    const std::uint32_t parents = XCB_BACK_PIXMAP_PARENT_RELATIVE;
    xcb_change_window_attributes(x_.get(), window_, XCB_CW_BACK_PIXMAP, &parents);
    xcb_clear_area(x_.get(), 0, window_, 0, 0, 0, 0);
    const auto ground = pixels(window_, 0, 0);
    if (ground.empty()) return;  // it doesn't show yet
    TrayPicture picture = use_.draw(width_, height_, groundOf(ground, width_));
    std::ranges::transform(picture, ground, picture.begin(), over);
    put(picture);
}

std::vector<std::uint32_t> X11TrayWindow::pixels(xcb_drawable_t of, int x, int y) {
    const auto width = static_cast<std::uint16_t>(width_), height = static_cast<std::uint16_t>(height_);
    const auto image = x_.reply<xcb_get_image_reply>(xcb_get_image(x_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, of,
                                                                   static_cast<std::int16_t>(x),
                                                                   static_cast<std::int16_t>(y), width, height, ~0U));
    const std::size_t count = std::size_t{width} * height;
    if (!image || static_cast<std::size_t>(xcb_get_image_data_length(image.get())) < count * kBytes) return {};
    const auto* first = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(image.get()));
    return {first, first + count};
}

void X11TrayWindow::put(const TrayPicture& picture) {
    const xcb_gcontext_t context = xcb_generate_id(x_.get());
    xcb_create_gc(x_.get(), context, window_, 0, nullptr);
    xcb_put_image(x_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window_, context, static_cast<std::uint16_t>(width_),
                  static_cast<std::uint16_t>(height_), 0, 0, 0, depth_,
                  static_cast<std::uint32_t>(picture.size() * kBytes),
                  reinterpret_cast<const std::uint8_t*>(picture.data()));
    xcb_free_gc(x_.get(), context);
    x_.flush();
}

}  // namespace tarvix
