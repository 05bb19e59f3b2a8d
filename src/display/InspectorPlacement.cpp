#include "display/InspectorPlacement.h"

#include <algorithm>
#include <cmath>

namespace tarvix {

namespace {

constexpr double kGap = 6;            // between the marker and the view
constexpr double kMargin = 4;         // between the view and the screen's edges
constexpr double kPointerReach = 24;  // the pointer's picture around the place that it points to
constexpr double kLeastWidth = 320;

// Within the screen's margins; a stretch that is too long for them begins at the lower one.
double kept(double origin, double length, double least, double most) {
    return std::max(std::min(origin, most - kMargin - length), least + kMargin);
}

PanelRect partOnScreen(PanelRect marker, const Screen& screen) {
    const double left = std::clamp(marker.minX(), screen.minX(), screen.maxX());
    const double right = std::clamp(marker.maxX(), screen.minX(), screen.maxX());
    const double bottom = std::clamp(marker.minY(), screen.minY(), screen.maxY());
    const double top = std::clamp(marker.maxY(), screen.minY(), screen.maxY());
    return {{left, bottom}, {right - left, top - bottom}};
}

bool isNear(PanelPoint pointer, PanelRect frame) {
    return pointer.x > frame.minX() - kPointerReach && pointer.x < frame.maxX() + kPointerReach &&
           pointer.y > frame.minY() - kPointerReach && pointer.y < frame.maxY() + kPointerReach;
}

}  // namespace

Size inspectorRoom(const Screen& screen) {
    // Half of the height, less what keeps the pointer off: then a view at the lower edge or one at the upper edge is
    // always free of it.
    return {std::min(std::max(screen.width() / 4, kLeastWidth), screen.width() - 2 * kMargin),
            screen.height() / 2 - kMargin - kPointerReach};
}

Screen inspectorScreen(const std::vector<Screen>& screens, PanelPoint pointer) {
    const auto found =
        std::find_if(screens.begin(), screens.end(), [&](const Screen& screen) { return screen.contains(pointer); });
    return found == screens.end() ? screens.front() : *found;
}

PanelRect inspectorFrame(PanelRect marker, Size size, const Screen& screen, PanelPoint pointer) {
    const PanelRect beside = partOnScreen(marker, screen);
    const double centredX =
        kept((beside.minX() + beside.maxX() - size.width) / 2, size.width, screen.minX(), screen.maxX());
    const double centredY =
        kept((beside.minY() + beside.maxY() - size.height) / 2, size.height, screen.minY(), screen.maxY());
    const auto whole = [&](double x, double y) { return PanelRect{{std::round(x), std::round(y)}, size}; };

    const double below = beside.minY() - kGap - size.height, above = beside.maxY() + kGap;
    const double right = beside.maxX() + kGap, left = beside.minX() - kGap - size.width;
    if (below >= screen.minY() + kMargin) return whole(centredX, below);
    if (above + size.height <= screen.maxY() - kMargin) return whole(centredX, above);
    if (right + size.width <= screen.maxX() - kMargin) return whole(right, centredY);
    if (left >= screen.minX() + kMargin) return whole(left, centredY);

    const PanelRect atLowerEdge = whole(centredX, screen.minY() + kMargin);
    const PanelRect atUpperEdge = whole(centredX, screen.maxY() - kMargin - size.height);
    return isNear(pointer, atLowerEdge) ? atUpperEdge : atLowerEdge;
}

}  // namespace tarvix
