#include "qt/settings/SymbolImages.h"

#include <QPainterPath>
#include <array>
#include <cmath>
#include <numbers>

namespace tarvix {

namespace {

constexpr double kGrid = 24;  // units across each symbol
constexpr double kLine = 1.6;

struct Strokes {
    QPainterPath drawn, filled;
};

// Around the middle; `turn` is in full circles.
QPointF around(double radius, double turn) {
    const double angle = 2 * std::numbers::pi * turn;
    return {kGrid / 2 + radius * std::sin(angle), kGrid / 2 - radius * std::cos(angle)};
}

Strokes gear() {
    constexpr int teeth = 8;
    constexpr double outer = 10, inner = 7.4, hole = 3.2;
    constexpr double atTop = 0.20, atFoot = 0.32;  // where a tooth's corners lie, in teeth
    Strokes gear;
    for (int tooth = 0; tooth < teeth; ++tooth) {
        for (const auto& [radius, at] :
             {std::pair{inner, -atFoot}, std::pair{outer, -atTop}, std::pair{outer, atTop}, std::pair{inner, atFoot}}) {
            const QPointF corner = around(radius, (tooth + at) / teeth);
            if (gear.drawn.elementCount() == 0)
                gear.drawn.moveTo(corner);
            else
                gear.drawn.lineTo(corner);
        }
    }
    gear.drawn.closeSubpath();
    gear.drawn.addEllipse(QPointF(kGrid / 2, kGrid / 2), hole, hole);
    return gear;
}

Strokes magnifyingGlass() {
    Strokes glass;
    glass.drawn.addEllipse(QPointF(10, 10), 6.6, 6.6);
    glass.drawn.moveTo(14.9, 14.9);
    glass.drawn.lineTo(20.8, 20.8);
    return glass;
}

Strokes mouth() {
    Strokes mouth;
    QPainterPath& lips = mouth.drawn;
    lips.moveTo(1.8, 11.4);
    lips.cubicTo(4.6, 8.6, 7.4, 6.4, 9.4, 6.4);
    lips.cubicTo(10.6, 6.4, 11.2, 7.2, 12, 7.2);
    lips.cubicTo(12.8, 7.2, 13.4, 6.4, 14.6, 6.4);
    lips.cubicTo(16.6, 6.4, 19.4, 8.6, 22.2, 11.4);
    lips.cubicTo(19.6, 15.8, 16, 18.2, 12, 18.2);
    lips.cubicTo(8, 18.2, 4.4, 15.8, 1.8, 11.4);
    lips.closeSubpath();
    lips.moveTo(1.8, 11.4);
    lips.cubicTo(6, 11.4, 8.6, 10.7, 10, 10.7);
    lips.cubicTo(11, 10.7, 11.3, 11.2, 12, 11.2);
    lips.cubicTo(12.7, 11.2, 13, 10.7, 14, 10.7);
    lips.cubicTo(15.4, 10.7, 18, 11.4, 22.2, 11.4);
    return mouth;
}

Strokes pin() {
    Strokes pin;
    pin.filled.addEllipse(QPointF(12, 6.6), 4.6, 4.6);
    pin.drawn.moveTo(12, 11);
    pin.drawn.lineTo(12, 21.4);
    return pin;
}

// A star of four points.
void addStar(QPainterPath& path, QPointF centre, double radius) {
    const auto tip = [&](double x, double y) { return centre + QPointF(x, y) * radius; };
    path.moveTo(tip(0, -1));
    path.quadTo(centre, tip(1, 0));
    path.quadTo(centre, tip(0, 1));
    path.quadTo(centre, tip(-1, 0));
    path.quadTo(centre, tip(0, -1));
}

Strokes wand() {
    Strokes wand;
    wand.drawn.moveTo(3.2, 20.8);
    wand.drawn.lineTo(13.6, 10.4);
    wand.drawn.moveTo(10.5, 10.9);
    wand.drawn.lineTo(13.1, 13.5);
    addStar(wand.filled, {18.2, 5.8}, 4.2);
    addStar(wand.filled, {8.8, 5}, 2.8);
    addStar(wand.filled, {19.4, 15.4}, 2.8);
    return wand;
}

// Meant for small sizes, so that it fills the square; the cross is left out of the disc.
Strokes crossInDisc() {
    constexpr double arm = 3.6;
    const QPointF middle(kGrid / 2, kGrid / 2);
    QPainterPath cross;
    for (const double side : {-1.0, 1.0}) {
        cross.moveTo(middle - QPointF(arm, side * arm));
        cross.lineTo(middle + QPointF(arm, side * arm));
    }
    QPainterPathStroker pen(QPen(Qt::black, 2.4, Qt::SolidLine, Qt::RoundCap));
    Strokes symbol;
    symbol.filled.addEllipse(middle, 10.4, 10.4);
    symbol.filled -= pen.createStroke(cross);
    return symbol;
}

struct SymbolRow {
    std::string_view name;
    Strokes (*strokes)();
};

constexpr auto kSymbols = std::to_array<SymbolRow>({
    {"gearshape", gear},
    {"magnifyingglass", magnifyingGlass},
    {"mouth", mouth},
    {"mappin", pin},
    {"wand.and.stars", wand},
    {"xmark.circle.fill", crossInDisc},
});

}  // namespace

QIcon symbolIcon(std::string_view name, int size, const QColor& color) {
    QPixmap picture(size, size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    drawSymbol(painter, name, picture.rect(), color);
    painter.end();
    return QIcon(picture);
}

bool drawSymbol(QPainter& painter, std::string_view name, const QRectF& square, const QColor& color) {
    for (const SymbolRow& row : kSymbols) {
        if (row.name != name) continue;
        const Strokes strokes = row.strokes();
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(square.topLeft());
        painter.scale(square.width() / kGrid, square.height() / kGrid);
        painter.strokePath(strokes.drawn, QPen(color, kLine, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.fillPath(strokes.filled, color);
        painter.restore();
        return true;
    }
    return false;
}

}  // namespace tarvix
