#include "linux/x11/X11WindowServer.h"

#include <algorithm>

#include "linux/x11/Panels.h"
#include "linux/x11/ProcessFiles.h"

namespace tarvix {

namespace {

constexpr int kOrdinaryLayer = 0;
constexpr int kDockLayer = 20;
constexpr int kStatusLayer = 25;
constexpr const char* kDockOwner = "Dock";

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
    const auto panels = panelsThatShow(windows);
    const auto dock = panels.empty() ? std::nullopt : dockProcess(windows, windows_.clients());

    std::vector<WindowInfo> result;
    for (const X11Window& w : windows) {
        if (w.hasType("DESKTOP")) continue;
        WindowInfo info{w.number, w.pid, w.windowClass.empty() ? programName(w.pid) : w.windowClass, kOrdinaryLayer,
                        boundsOf(w)};
        if (isPanel(w)) {
            if (std::ranges::count(panels, w.number, &X11Window::number) == 0) continue;
            info.layer = isDockProgram(w) ? kDockLayer : kStatusLayer;
            if (w.pid == dock) info.ownerName = kDockOwner;
        }
        result.push_back(std::move(info));
    }
    return result;
}

}  // namespace tarvix
