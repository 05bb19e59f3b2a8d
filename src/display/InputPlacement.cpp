#include "display/InputPlacement.h"

#include <algorithm>

namespace tarvix {

namespace {

PanelPoint nearestOrigin(PanelRect panel, const Screen& screen) {
    const double lastX = std::max(screen.minX(), screen.maxX() - panel.width());
    const double lastY = screen.maxY() - panel.height();
    return {std::clamp(panel.minX(), screen.minX(), lastX),
            std::clamp(panel.minY(), std::min(screen.minY(), lastY), lastY)};
}

double squaredDistance(PanelPoint a, PanelPoint b) {
    const double x = a.x - b.x, y = a.y - b.y;
    return x * x + y * y;
}

}  // namespace

PanelPoint clampedOrigin(PanelPoint objectTopLeft, Size panel, const Screen& screen) {
    const double right = screen.minX() + screen.width();
    const double top = screen.minY() + screen.height();
    const bool fits = objectTopLeft.x + panel.width < right;
    return {objectTopLeft.x < screen.minX() ? screen.minX()
            : fits                          ? objectTopLeft.x
                                            : right - panel.width,
            top < objectTopLeft.y + panel.height ? top - panel.height : objectTopLeft.y};
}

PanelPoint visibleOrigin(PanelRect panel, const std::vector<Screen>& screens) {
    const PanelPoint origin{panel.minX(), panel.minY()};
    const PanelPoint middle{origin.x + panel.width() / 2, origin.y + panel.height() / 2};
    const bool isSeen =
        std::any_of(screens.begin(), screens.end(), [&](const Screen& screen) { return screen.contains(middle); });
    if (isSeen || screens.empty()) return origin;
    const auto way = [&](const Screen& screen) { return squaredDistance(origin, nearestOrigin(panel, screen)); };
    const auto nearest = std::min_element(screens.begin(), screens.end(),
                                          [&](const Screen& a, const Screen& b) { return way(a) < way(b); });
    return nearestOrigin(panel, *nearest);
}

}  // namespace tarvix
