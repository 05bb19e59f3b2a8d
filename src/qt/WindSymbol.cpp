#include "qt/WindSymbol.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <array>

namespace tarvix {

namespace {

constexpr double kGrid = 16;  // units across the picture
constexpr double kThickness = 1.5;
constexpr double kEdge = 0.75;  // beside the lines

// A line from the left that goes round a circle at its end, up or down.
struct Gust {
    double left, y, turn, radius;  // `turn` is where the circle begins
    bool isUp;
};
constexpr std::array kGusts{Gust{1.75, 5.25, 6, 1.75, true}, Gust{1.75, 8.25, 11.75, 2.25, true},
                            Gust{1.75, 11.25, 8.5, 1.75, false}};
constexpr double kTurn = 245;  // degrees

QPainterPath wind() {
    QPainterPath path;
    for (const Gust& gust : kGusts) {
        const double side = gust.isUp ? 1 : -1;
        path.moveTo(gust.left, gust.y);
        path.lineTo(gust.turn, gust.y);
        const QPointF centre(gust.turn, gust.y - side * gust.radius);
        const QRectF circle(centre.x() - gust.radius, centre.y() - gust.radius, 2 * gust.radius, 2 * gust.radius);
        path.arcTo(circle, -90 * side, kTurn * side);
    }
    return path;
}

void draw(QPainter& painter, const QColor& color, double thickness) {
    painter.strokePath(wind(), QPen(color, thickness, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

const QColor kDark(0x2e, 0x34, 0x36), kLight(0xf4, 0xf4, 0xf4);

}  // namespace

bool isDark(const QColor& ground) {
    constexpr int middle = 140;  // as light as dark and light lines stand out alike
    return qGray(ground.rgb()) < middle;
}

SymbolColors symbolColors(bool isOnDark) {
    SymbolColors colors{isOnDark ? kLight : kDark, isOnDark ? kDark : kLight};
    colors.edge.setAlphaF(0.75F);
    return colors;
}

QImage windSymbol(int size, const SymbolColors& colors) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / kGrid, size / kGrid);
    draw(painter, colors.edge, kThickness + 2 * kEdge);
    draw(painter, colors.lines, kThickness);
    return image;
}

}  // namespace tarvix
