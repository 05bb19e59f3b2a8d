#include "qt/MarkerPainting.h"

#include <QImage>
#include <QPainterPath>
#include <QTransform>
#include <algorithm>
#include <cmath>
#include <vector>

namespace tarvix {

namespace {

constexpr double kDegrees = 180.0 / M_PI;

// `bounds` inset on each side, cut to the rounded corners of `bounds` itself. The corner circle has its centre at
// (radius, radius); the inset edge crosses it where the angle's cosine is (radius - inset) / radius, and leaves it
// alone once the inset corner lies inside the circle.
void addClippedRect(QPainterPath& path, const QRectF& bounds, double inset, double cornerRadius) {
    const QRectF rect = bounds.adjusted(inset, inset, -inset, -inset);
    if (rect.width() <= 0 || rect.height() <= 0) return;
    const double radius = std::min({cornerRadius, bounds.width() / 2, bounds.height() / 2});
    if (inset >= radius * (1 - M_SQRT1_2)) {
        path.addRect(rect);
        return;
    }
    const double start = std::acos(std::min(1.0, (radius - inset) / radius)) * kDegrees;
    const double sweep = 90 - 2 * start;
    const double side = 2 * radius;
    const auto corner = [&](double x, double y) { return QRectF(x, y, side, side); };
    const auto arc = [&](const QRectF& circle, double from) { path.arcTo(circle, from, -sweep); };
    const QRectF topLeft = corner(bounds.left(), bounds.top());
    path.arcMoveTo(topLeft, 180 - start);
    arc(topLeft, 180 - start);
    arc(corner(bounds.right() - side, bounds.top()), 90 - start);
    arc(corner(bounds.right() - side, bounds.bottom() - side), 0 - start);
    arc(corner(bounds.left(), bounds.bottom() - side), 270 - start);
    path.closeSubpath();
}

// Insetting has used up the rectangle along which the stroke would go.
bool isUsedUp(const MarkerShape& shape, const QRectF& bounds) {
    return bounds.width() < 2 * shape.inset || bounds.height() < 2 * shape.inset;
}

// A stroke is the area between its two edges.
QPainterPath pathOf(const MarkerShape& shape, const QRectF& bounds, double cornerRadius) {
    QPainterPath path;
    if (isUsedUp(shape, bounds)) return path;
    path.setFillRule(Qt::OddEvenFill);
    const double half = shape.lineWidth / 2;
    addClippedRect(path, bounds, shape.inset - half, cornerRadius);
    if (half > 0) addClippedRect(path, bounds, shape.inset + half, cornerRadius);
    return path;
}

void paintShapes(QPainter& painter, const MarkerDrawing& marker, const QRectF& bounds) {
    painter.setRenderHint(QPainter::Antialiasing);
    for (const MarkerShape& shape : marker.shapes)
        painter.fillPath(pathOf(shape, bounds, marker.cornerRadius), toQColor(shape.color));
}

// A rim, and every second row within: what lies below can still be read, and the marker still stands out as a block.
QRegion blind(const QRect& rect) {
    constexpr int kRim = 2;
    const QRect inner = rect.adjusted(kRim, kRim, -kRim, -kRim);
    if (inner.isEmpty()) return rect;
    std::vector<QRect> rows;
    for (int y = inner.y(); y < inner.y() + inner.height(); y += 2) rows.emplace_back(rect.x(), y, rect.width(), 1);
    QRegion region;
    region.setRects(rows.data(), static_cast<int>(rows.size()));
    return region + (QRegion(rect) - inner);
}

// The whole pixels that come closest to a shape.
QRegion pixelsOfShape(const MarkerShape& shape, const QRectF& bounds) {
    if (isUsedUp(shape, bounds)) return {};
    const auto inset = [&](double by) {
        const QRectF rect = bounds.adjusted(by, by, -by, -by);
        const int left = qRound(rect.left()), top = qRound(rect.top());
        return QRect(left, top, qRound(rect.right()) - left, qRound(rect.bottom()) - top);
    };
    const double half = shape.lineWidth / 2;
    if (half == 0) return blind(inset(shape.inset));
    return QRegion(inset(shape.inset - half)) - QRegion(inset(shape.inset + half));
}

}  // namespace

QColor toQColor(Color color) {
    const auto part = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
    return QColor::fromRgbF(part(color.red), part(color.green), part(color.blue), part(color.alpha));
}

void paintMarker(QPainter& painter, const MarkerDrawing& marker, const QRectF& bounds) {
    if (bounds.isEmpty()) return;
    painter.save();
    painter.setOpacity(marker.alpha);
    if (marker.shapes.size() <= 1) {
        paintShapes(painter, marker, bounds);
    } else {
        // Shapes that lie over each other become translucent together, so they meet on a surface of their own first.
        const QTransform toDevice = painter.deviceTransform();
        const QRect pixels = toDevice.mapRect(bounds).toAlignedRect();
        QImage group(pixels.size(), QImage::Format_ARGB32_Premultiplied);
        group.fill(Qt::transparent);
        QPainter inner(&group);
        inner.setTransform(toDevice * QTransform::fromTranslate(-pixels.x(), -pixels.y()));
        paintShapes(inner, marker, bounds);
        inner.end();
        painter.drawImage(toDevice.inverted().mapRect(QRectF(pixels)), group);
    }
    painter.restore();
}

void paintOpaqueMarker(QPainter& painter, const MarkerDrawing& marker, const QRectF& bounds) {
    for (const MarkerShape& shape : marker.shapes)
        for (const QRect& rect : pixelsOfShape(shape, bounds)) painter.fillRect(rect, toQColor(shape.color));
}

QRegion markerOutline(const MarkerDrawing& marker, const QRectF& bounds) {
    QRegion outline;
    for (const MarkerShape& shape : marker.shapes) outline += pixelsOfShape(shape, bounds);
    return outline;
}

}  // namespace tarvix
