#include "qt/MarkerPainting.h"

#include <QImage>
#include <QPainterPath>
#include <cmath>
#include <cstdint>
#include <functional>
#include <unordered_map>

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

// A stroke is the area between its two edges.
QPainterPath pathOf(const MarkerShape& shape, const QRectF& bounds, double cornerRadius) {
    QPainterPath path;
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

// The whole pixels that come closest to a shape.
QRegion pixelsOfShape(const MarkerShape& shape, const QRectF& bounds) {
    const auto inset = [&](double by) {
        const QRectF rect = bounds.adjusted(by, by, -by, -by);
        const int left = qRound(rect.left()), top = qRound(rect.top());
        return QRect(left, top, qRound(rect.right()) - left, qRound(rect.bottom()) - top);
    };
    const double half = shape.lineWidth / 2;
    const QRegion area(inset(shape.inset - half));
    return half > 0 ? area - QRegion(inset(shape.inset + half)) : area;
}

std::size_t hashOf(const MarkerDrawing& marker) {
    std::size_t hash = 0;
    const PanelRect& frame = marker.frame;
    for (const double number : {frame.origin.x, frame.origin.y, frame.size.width, frame.size.height, marker.alpha})
        hash = hash * 1000003 + std::hash<double>{}(number);
    return hash;
}

}  // namespace

namespace {

constexpr double kMostCopied = 256;  // a side, in pixels

QPointF inPixelOf(const QRectF& bounds) {
    return {bounds.left() - std::floor(bounds.left()), bounds.top() - std::floor(bounds.top())};
}

std::size_t hashOfLook(const MarkerDrawing& marker, const QRectF& bounds) {
    const QPointF inPixel = inPixelOf(bounds);
    std::size_t hash = marker.shapes.size();
    for (const double number :
         {bounds.width(), bounds.height(), inPixel.x(), inPixel.y(), marker.alpha, marker.cornerRadius})
        hash = hash * 1000003 + std::hash<double>{}(number);
    return hash;
}

}  // namespace

QColor toQColor(Color color) {
    const auto part = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
    return QColor::fromRgbF(part(color.red), part(color.green), part(color.blue), part(color.alpha));
}

void paintMarker(QPainter& painter, const MarkerDrawing& marker, const QRectF& bounds) {
    painter.save();
    painter.setOpacity(marker.alpha);
    if (marker.shapes.size() <= 1) {
        paintShapes(painter, marker, bounds);
    } else {
        // Shapes that lie over each other become translucent together, so they meet on a surface of their own first.
        const QRect pixels = bounds.toAlignedRect();
        QImage group(pixels.size(), QImage::Format_ARGB32_Premultiplied);
        group.fill(Qt::transparent);
        QPainter inner(&group);
        inner.translate(-pixels.topLeft());
        paintShapes(inner, marker, bounds);
        inner.end();
        painter.drawImage(pixels.topLeft(), group);
    }
    painter.restore();
}

bool MarkerPainter::Seen::looksLike(const MarkerDrawing& other, const QRectF& bounds) const {
    return size == bounds.size() && inPixel == inPixelOf(bounds) && marker.alpha == other.alpha &&
           marker.cornerRadius == other.cornerRadius && marker.shapes == other.shapes;
}

// The first of a look is painted in its place, since most looks are seen but once.
void MarkerPainter::paint(const MarkerDrawing& marker, const QRectF& bounds) {
    if (bounds.width() > kMostCopied || bounds.height() > kMostCopied) return paintMarker(painter_, marker, bounds);
    const auto [entry, isNew] = seen_.try_emplace(hashOfLook(marker, bounds));
    Seen& seen = entry->second;
    if (isNew) seen = {bounds.size(), inPixelOf(bounds), marker, QImage()};
    if (isNew || !seen.looksLike(marker, bounds)) return paintMarker(painter_, marker, bounds);
    const QRect pixels = bounds.toAlignedRect();
    if (seen.image.isNull()) {
        seen.image = QImage(pixels.size(), QImage::Format_ARGB32_Premultiplied);
        seen.image.fill(Qt::transparent);
        QPainter inner(&seen.image);
        inner.translate(-pixels.topLeft());
        paintMarker(inner, marker, bounds);
    }
    painter_.drawImage(pixels.topLeft(), seen.image);
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

QRegion unite(std::vector<QRegion> regions) {
    if (regions.empty()) return {};
    for (std::size_t step = 1; step < regions.size(); step *= 2)
        for (std::size_t i = 0; i + step < regions.size(); i += 2 * step) regions[i] += regions[i + step];
    return regions.front();
}

MarkerChanges markerChanges(const std::vector<MarkerDrawing>& shown, const std::vector<MarkerDrawing>& next) {
    std::unordered_multimap<std::size_t, std::size_t> places;
    for (std::size_t i = 0; i < shown.size(); ++i) places.emplace(hashOf(shown[i]), i);

    // A marker stays where it is found again behind the last one that stayed: so those that stay keep their order.
    MarkerChanges changes;
    std::vector<bool> stays(shown.size(), false);
    std::size_t from = 0;
    for (std::size_t i = 0; i < next.size(); ++i) {
        std::size_t found = shown.size();
        const auto [first, last] = places.equal_range(hashOf(next[i]));
        for (auto place = first; place != last; ++place)
            if (place->second >= from && place->second < found && shown[place->second] == next[i])
                found = place->second;
        if (found == shown.size()) {
            changes.come.push_back(i);
        } else {
            stays[found] = true;
            from = found + 1;
        }
    }
    for (std::size_t i = 0; i < shown.size(); ++i)
        if (!stays[i]) changes.gone.push_back(i);
    return changes;
}

}  // namespace tarvix
