#include "qt/ContinuousCorners.h"

#include <QTransform>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarvix {

namespace {

constexpr double kSmoothing = 0.6;  // the share of a corner's quarter turn that its two gentle ends take up
constexpr double kRightAngle = 90;

double radians(double degrees) { return degrees * std::numbers::pi / 180; }

// The top right corner, with its tip at the origin: from the upper edge over a gentle curve into the arc of a circle,
// and the same way out to the right edge.
struct Corner {
    Corner(double room, double wanted) : radius(std::min(wanted, room)) {
        const double smoothing = radius > 0 ? std::min(kSmoothing, room / radius - 1) : 0;
        reach = (1 + smoothing) * radius;
        arcAngle = kRightAngle * (1 - smoothing);
        arc = std::sin(radians(arcAngle / 2)) * radius * std::numbers::sqrt2;
        const double turn = radians((kRightAngle - arcAngle) / 2);
        near = radius * std::tan(turn / 2) * std::cos(turn);
        drop = near * std::tan(turn);
        far = (reach - arc - near - drop) / 3;
    }

    // From the place where the upper edge ends.
    void addTo(QPainterPath& path, const QTransform& place) const {
        const auto at = [&](double x, double y) { return place.map(QPointF(x, y)); };
        path.lineTo(at(-reach, 0));
        path.cubicTo(at(-reach + 2 * far, 0), at(-reach + 3 * far, 0), at(-reach + 3 * far + near, drop));
        // The arc as one curve: less than a quarter of a circle.
        const double handle = 4.0 / 3 * std::tan(radians(arcAngle) / 4) * radius;
        const double turn = radians((kRightAngle - arcAngle) / 2);
        const QPointF begin(-drop - arc, drop), end(-drop, drop + arc);
        path.cubicTo(place.map(begin + QPointF(handle * std::cos(turn), handle * std::sin(turn))),
                     place.map(end - QPointF(handle * std::sin(turn), handle * std::cos(turn))), place.map(end));
        path.cubicTo(at(0, reach - 3 * far), at(0, reach - 2 * far), at(0, reach));
    }

    double radius, reach = 0, arcAngle = 0, arc = 0, near = 0, drop = 0, far = 0;
};

}  // namespace

QPainterPath continuousRoundedRect(const QRectF& rect, double radius) {
    const double room = std::min(rect.width(), rect.height()) / 2;
    const Corner corner(std::max(0.0, room), std::max(0.0, radius));
    QPainterPath path(QPointF(rect.left() + corner.reach, rect.top()));
    const QPointF tips[] = {rect.topRight(), rect.bottomRight(), rect.bottomLeft(), rect.topLeft()};
    double turned = 0;
    for (const QPointF& tip : tips) {
        corner.addTo(path, QTransform().translate(tip.x(), tip.y()).rotate(turned));
        turned += kRightAngle;
    }
    path.closeSubpath();
    return path;
}

}  // namespace tarvix
