// The top-level windows of the X server: which is active, whose they are, where they stand.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Geometry.h"
#include "base/Outcome.h"

namespace tarvix {

// A client's top-level window, or an override-redirect one (a popup), in root pixels.
struct X11Window {
    std::uint32_t number = 0;    // the client's own window, not the window manager's frame
    std::int32_t pid = -1;       // by the X server's own book-keeping (XRes), _NET_WM_PID only where that says nothing
    std::string title;           // _NET_WM_NAME, else WM_NAME
    std::string windowClass;     // the class part of WM_CLASS
    std::string windowInstance;  // the instance part of WM_CLASS
    std::string gtkApplicationId;  // _GTK_APPLICATION_ID, a desktop file's id; empty where not set
    AxRect client;                 // the client window with the shadow that the client draws itself
    struct Extents {
        double left = 0, right = 0, top = 0, bottom = 0;
        friend bool operator==(const Extents&, const Extents&) = default;
    };
    std::optional<Extents> gtkFrameExtents;  // the width of that shadow (_GTK_FRAME_EXTENTS); absent where not set
    std::optional<Extents> frameExtents;     // the window manager's decoration (_NET_FRAME_EXTENTS)
    std::vector<std::string> types;  // _NET_WM_WINDOW_TYPE by name, "DOCK", "NORMAL", ..., in the client's order
    bool isFullScreen = false;
    bool isMinimized = false;
    bool isOverrideRedirect = false;
    std::optional<AxRect> iconGeometry;  // where a panel shows the button of this window (_NET_WM_ICON_GEOMETRY)
    // Only of a window of the type DOCK, and only in onScreen(): the box around what of it takes clicks and is on the
    // screen; null where nothing is. Docks let the clicks through where they show nothing.
    AxRect clickable = AxRect::null();
    // Only in embeddedIn(): the accessible object that a window of GTK stands for, as "name:path" of the accessibility
    // bus (_XEMBED_AT_SPI_PATH); empty where not set.
    std::string accessiblePath;

    bool hasType(std::string_view type) const { return std::ranges::count(types, type) > 0; }

    // What the user sees as the window: the client without its own shadow.
    AxRect visible() const {
        if (!gtkFrameExtents) return client;
        return {{client.origin.x + gtkFrameExtents->left, client.origin.y + gtkFrameExtents->top},
                {client.size.width - gtkFrameExtents->left - gtkFrameExtents->right,
                 client.size.height - gtkFrameExtents->top - gtkFrameExtents->bottom}};
    }
};

// Any thread: it has a connection of its own. Each call is a few round trips to the X server and never waits for an
// application.
class X11Windows {
public:
    static Outcome<std::unique_ptr<X11Windows>> open();
    virtual ~X11Windows() = default;

    // The active window by the window manager's word (_NET_ACTIVE_WINDOW). Without a window manager, the top-level
    // window that has the keyboard, or the one under the pointer where the keyboard follows the pointer.
    virtual std::optional<X11Window> active() = 0;
    virtual std::optional<X11Window> window(std::uint32_t number) = 0;
    // All viewable client windows and viewable override-redirect windows, front to back.
    virtual std::vector<X11Window> onScreen() = 0;
    // All client windows, those that are minimised or on another workspace too, in the order in which they came. Empty
    // without a window manager.
    virtual std::vector<X11Window> clients() = 0;
    // The viewable windows of other clients that live somewhere within a window, such as the icons of a tray; each
    // before those within itself.
    virtual std::vector<X11Window> embeddedIn(std::uint32_t number) = 0;
};

}  // namespace tarvix
