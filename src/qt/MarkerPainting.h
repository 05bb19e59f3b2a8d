// From markers as values to painted pixels.
#pragma once

#include <QImage>
#include <QPainter>
#include <QRectF>
#include <QRegion>
#include <unordered_map>
#include <vector>

#include "platform/Panels.h"

namespace tarvix {

// Paints one marker over `bounds`, its frame in the painter's coordinates. An edge on a pixel boundary is exact to the
// pixel; one between two boundaries covers the pixel in part.
void paintMarker(QPainter& painter, const MarkerDrawing& marker, const QRectF& bounds);

// Paints markers one after the other; small ones that look alike are painted twice at most, and copied from then on.
class MarkerPainter {
public:
    explicit MarkerPainter(QPainter& painter) : painter_(painter) {}
    void paint(const MarkerDrawing& marker, const QRectF& bounds);

private:
    struct Seen {
        QSizeF size;
        QPointF inPixel;  // where in its pixel the upper left corner lies
        MarkerDrawing marker;
        QImage image;
        bool looksLike(const MarkerDrawing& other, const QRectF& bounds) const;
    };

    QPainter& painter_;
    std::unordered_map<std::size_t, Seen> seen_;
};

// The same for a window that can't be translucent: in whole pixels, opaque, with square corners.
void paintOpaqueMarker(QPainter& painter, const MarkerDrawing& marker, const QRectF& bounds);

// Exactly the pixels that paintOpaqueMarker() paints.
QRegion markerOutline(const MarkerDrawing& marker, const QRectF& bounds);

// The union of many regions. Two and two, since adding them one by one to a growing region takes quadratic time.
QRegion unite(std::vector<QRegion> regions);

// Which markers are in one list and not in the other, as indices into each: what must be painted anew to come from
// `shown` to `next`. Markers that changed their order among each other count as different.
struct MarkerChanges {
    std::vector<std::size_t> gone;  // indices into shown
    std::vector<std::size_t> come;  // indices into next
};
MarkerChanges markerChanges(const std::vector<MarkerDrawing>& shown, const std::vector<MarkerDrawing>& next);

QColor toQColor(Color color);

}  // namespace tarvix
