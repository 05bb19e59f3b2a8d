// One screen of the desktop.
#pragma once

#include "base/Geometry.h"

namespace tarvix {

struct Screen {
    PanelRect frame;

    double minX() const { return frame.minX(); }
    double minY() const { return frame.minY(); }
    double width() const { return frame.width(); }
    double height() const { return frame.height(); }
    double maxX() const { return frame.maxX(); }
    double maxY() const { return frame.maxY(); }
    bool contains(PanelPoint point) const { return mouseInRect(point, frame); }
    friend bool operator==(const Screen&, const Screen&) = default;
};

}  // namespace tarvix
