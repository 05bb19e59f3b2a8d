// Many markers onto one surface, in little time.
#pragma once

#include <QImage>
#include <QRectF>
#include <QRegion>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "platform/Panels.h"

namespace tarvix {

// Paints what paintMarker() paints. All that markers of one look differ in is, most times, the length of their edges:
// so their corners and a cross-section of each edge are painted once, as a stamp, and kept as long as the painter
// lives.
class MarkerPainter {
public:
    // What can be painted on.
    static bool suits(const QImage& surface) { return surface.format() == QImage::Format_ARGB32_Premultiplied; }

    // From now on paints on this surface, and there nothing but `exposed`, which is in pixels. The surface outlives
    // that. Its device pixel ratio is the scale.
    void begin(QImage& surface, const QRegion& exposed);
    // Paints one marker over `bounds`, its frame in the surface's coordinates before scaling.
    void paint(const MarkerDrawing& marker, const QRectF& bounds);

private:
    struct Look {
        double scale = 1;
        MarkerDrawing drawing;  // its frame apart
        int reach = 0;          // as many pixels as corners and strokes reach into the marker
    };
    struct StampKey {
        std::size_t look = 0;
        double x = 0, y = 0;           // where in its pixel the upper left corner lies
        double width = 0, height = 0;  // without what repeats
        auto operator<=>(const StampKey&) const = default;
    };
    // Of one row the pixels with anything in them: those before the column that repeats, and those after it.
    struct Row {
        int from = 0, to = 0;
        int fromBehind = 0, toBehind = 0;
    };
    struct Stamp {
        QSize size;
        std::vector<std::uint32_t> pixels, through;  // what it shows, and how much of what lies below shows through
        QPoint repeats;  // the column and the row that stand for all between the corners; behind the last one: nothing
        std::vector<Row> rows;
    };

    std::size_t lookOf(const MarkerDrawing& marker);
    const Stamp& stampFor(std::size_t look, const QRectF& bounds, const QRect& place);
    void put(const Stamp& stamp, const QRect& place, const QRect& part);

    uchar* bits_ = nullptr;
    qsizetype bytesPerLine_ = 0;
    double scale_ = 1;
    QRegion exposed_;
    std::vector<Look> looks_;
    std::map<StampKey, Stamp> stamps_;
};

}  // namespace tarvix
