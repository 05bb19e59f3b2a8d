#include "linux/x11/X11WindowServer.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <string_view>

#include "linux/x11/ProcessFiles.h"

namespace tarvix {

namespace {

constexpr int kOrdinaryLayer = 0;
constexpr int kDockLayer = 20;
constexpr int kStatusLayer = 25;
constexpr const char* kDockOwner = "Dock";

// Programs that are a dock and host no status items.
constexpr std::array<std::string_view, 4> kDocks{"plank", "cairo-dock", "docky", "latte-dock"};

bool hasType(const X11Window& window, std::string_view type) { return std::ranges::count(window.types, type) > 0; }

bool isDock(const X11Window& window) {
    std::string name = window.windowClass;
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return std::ranges::count(kDocks, name) > 0;
}

bool contains(AxRect outer, AxRect inner) {
    return outer.minX() <= inner.minX() && outer.maxX() >= inner.maxX() && outer.minY() <= inner.minY() &&
           outer.maxY() >= inner.maxY();
}

AxRect boundsOf(const X11Window& window) {
    const AxRect visible = window.visible();
    if (!window.frameExtents) return visible;
    const X11Window::Extents& frame = *window.frameExtents;
    return {{visible.origin.x - frame.left, visible.origin.y - frame.top},
            {visible.size.width + frame.left + frame.right, visible.size.height + frame.top + frame.bottom}};
}

}  // namespace

Outcome<std::unique_ptr<X11WindowServer>> X11WindowServer::open(X11Windows& windows) {
    return std::unique_ptr<X11WindowServer>(new X11WindowServer(windows));
}

std::optional<std::vector<WindowInfo>> X11WindowServer::onScreenWindows() {
    const auto windows = windows_.onScreen();
    const auto isPanel = [](const X11Window& w) { return hasType(w, "DOCK"); };
    const bool hasDock = std::ranges::any_of(windows, [&](const X11Window& w) { return isPanel(w) && isDock(w); });

    std::vector<WindowInfo> result;
    std::vector<AxRect> fullScreen;  // so far, that is, in front
    for (const X11Window& w : windows) {
        if (hasType(w, "DESKTOP")) continue;
        if (w.isFullScreen) fullScreen.push_back(w.client);
        WindowInfo info{w.number, w.pid, w.windowClass.empty() ? programName(w.pid) : w.windowClass, kOrdinaryLayer,
                        boundsOf(w)};
        if (isPanel(w)) {
            if (std::ranges::any_of(fullScreen, [&](const AxRect& f) { return contains(f, w.client); })) continue;
            info.layer = isDock(w) ? kDockLayer : kStatusLayer;
            if (isDock(w) || !hasDock) info.ownerName = kDockOwner;
        }
        result.push_back(std::move(info));
    }
    return result;
}

}  // namespace tarvix
