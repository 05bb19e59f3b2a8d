#include "linux/x11/X11HazeSurface.h"

#include <xcb/shape.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>

#include "linux/x11/X11Compositor.h"
#include "linux/x11/X11WindowTree.h"

namespace tarvix {

namespace {

// Where windows that no manager manages are drawn above all others, wherever they stand in the server's stack.
constexpr std::array<std::string_view, 1> kManagersWithFreeWindowsOnTop{"KWin"};

constexpr std::uint32_t kSizeAndPositionAreGiven = 1 | 2, kSizeIsFixed = 16 | 32;  // of WM_NORMAL_HINTS
constexpr std::uint32_t kInputHint = 1, kGroupHint = 64;                           // of WM_HINTS
constexpr std::uint32_t kDecorationsHint = 2;                                      // of _MOTIF_WM_HINTS

std::uint32_t length(double value) { return static_cast<std::uint32_t>(std::max(1.0, std::round(value))); }

std::uint32_t coordinate(double value) { return static_cast<std::uint32_t>(static_cast<std::int32_t>(value)); }

}  // namespace

X11HazeSurface::X11HazeSurface(X11Connection& connection, X11StackKeeper& keeper)
    : x_(connection), keeper_(keeper), compositorGone_(onCompositorGone(connection, [this] { hide(); })) {
    create(free_);
}

X11HazeSurface::~X11HazeSurface() {
    hide();
    for (const Sheet& sheet : {free_, managed_})
        if (sheet.window != XCB_WINDOW_NONE) xcb_destroy_window(x_.get(), sheet.window);
    x_.flush();
}

void X11HazeSurface::setFrame(AxRect frame) {
    frame_ = frame;
    if (shown_) place(*shown_);
}

void X11HazeSurface::setAlpha(double alpha) {
    alpha_ = std::clamp(alpha, 0.0, 1.0);
    if (!shown_) return;
    announce(shown_->window);
    x_.flush();
}

// The last window of this program, which it is to be below, may be itself; then it is in its place.
// The place is given before mapping, lest it flash over the window, and after it, as compositors lose a place given to
// a window that isn't mapped.
void X11HazeSurface::showBelow(std::uint32_t window) {
    if (!isComposited(x_)) return hide();
    if (shown_ && shown_->window == window) return;
    Sheet& sheet = sheetFor(whoPlaces());
    if (sheet.placedBy == By::us) keeper_.keepBelow(sheet.window, window, By::us);
    map(sheet);
    keeper_.keepBelow(sheet.window, window, sheet.placedBy);
}

void X11HazeSurface::showOverApplications() {
    if (!isComposited(x_)) return hide();
    keeper_.keepUnderThose(free_.window);
    map(free_);
    keeper_.keepUnderThose(free_.window);
}

void X11HazeSurface::hide() {
    if (!shown_) return;
    const xcb_window_t window = shown_->window;
    shown_ = nullptr;
    keeper_.letGo(window);
    xcb_unmap_window(x_.get(), window);
    x_.flush();
}

X11Stacking::By X11HazeSurface::whoPlaces() {
    const std::string manager = windowManagerName(x_);
    return std::ranges::count(kManagersWithFreeWindowsOnTop, manager) > 0 ? By::windowManager : By::us;
}

void X11HazeSurface::create(Sheet& sheet) {
    sheet.window = xcb_generate_id(x_.get());
    const std::uint32_t values[] = {x_.screen().black_pixel, sheet.placedBy == By::us};
    xcb_create_window(x_.get(), XCB_COPY_FROM_PARENT, sheet.window, x_.root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT,
                      values);
    if (x_.extension(xcb_shape_id))
        xcb_shape_rectangles(x_.get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED, sheet.window,
                             0, 0, 0, nullptr);
    constexpr std::string_view title = "Tarvix", names("tarvix\0Tarvix\0", 14);
    for (const auto& [property, text] : {std::pair{XCB_ATOM_WM_NAME, title}, std::pair{XCB_ATOM_WM_CLASS, names}})
        xcb_change_property(x_.get(), XCB_PROP_MODE_REPLACE, sheet.window, property, XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
    // An animated appearance is for windows of other types, and a shadow would fall onto the next monitor.
    setProperty(sheet.window, "_NET_WM_WINDOW_TYPE", "ATOM", {x_.atom("_NET_WM_WINDOW_TYPE_UTILITY")});
    setProperty(sheet.window, "_COMPTON_SHADOW", "CARDINAL", {0});
    if (sheet.placedBy == By::us) return;
    // Nobody's utility: those of a program that isn't the active one may be hidden. And it never becomes active.
    setProperty(sheet.window, "WM_HINTS", "WM_HINTS", {kInputHint | kGroupHint, 0, 0, 0, 0, 0, 0, 0, sheet.window});
    setProperty(sheet.window, "_NET_WM_USER_TIME", "CARDINAL", {0});
    setProperty(sheet.window, "_MOTIF_WM_HINTS", "_MOTIF_WM_HINTS", {kDecorationsHint, 0, 0, 0, 0});
}

// A fixed size, as a window that may be smaller is kept out of the room that the desktop's panels have taken.
void X11HazeSurface::place(const Sheet& sheet) {
    const std::uint32_t x = coordinate(frame_.minX()), y = coordinate(frame_.minY());
    const std::uint32_t width = length(frame_.width()), height = length(frame_.height());
    if (sheet.placedBy == By::windowManager) {
        std::vector<std::uint32_t> hints{kSizeAndPositionAreGiven | kSizeIsFixed, x, y, width, height};
        hints.insert(hints.end(), {width, height, width, height});
        hints.resize(18);
        setProperty(sheet.window, "WM_NORMAL_HINTS", "WM_SIZE_HINTS", hints);
    }
    const std::uint32_t values[] = {x, y, width, height};
    xcb_configure_window(x_.get(), sheet.window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         values);
}

void X11HazeSurface::map(Sheet& sheet) {
    if (shown_ == &sheet) return;
    hide();
    if (sheet.window == XCB_WINDOW_NONE) create(sheet);
    announce(sheet.window);
    place(sheet);
    if (sheet.placedBy == By::windowManager)  // it takes them off when the window goes
        setProperty(sheet.window, "_NET_WM_STATE", "ATOM",
                    {x_.atom("_NET_WM_STATE_SKIP_TASKBAR"), x_.atom("_NET_WM_STATE_SKIP_PAGER"),
                     x_.atom("_KDE_NET_WM_STATE_SKIP_SWITCHER")});
    xcb_map_window(x_.get(), sheet.window);
    // It may have kept it out of the desktop's panels all the same.
    if (sheet.placedBy == By::windowManager) place(sheet);
    x_.sync();
    shown_ = &sheet;
}

void X11HazeSurface::announce(xcb_window_t window) {
    constexpr double opaque = 0xffffffff;
    setProperty(window, "_NET_WM_WINDOW_OPACITY", "CARDINAL", {static_cast<std::uint32_t>(alpha_ * opaque)});
}

void X11HazeSurface::setProperty(xcb_window_t window, std::string_view name, std::string_view type,
                                 const std::vector<std::uint32_t>& items) {
    xcb_change_property(x_.get(), XCB_PROP_MODE_REPLACE, window, x_.atom(name), x_.atom(type), 32,
                        static_cast<std::uint32_t>(items.size()), items.data());
}

}  // namespace tarvix
