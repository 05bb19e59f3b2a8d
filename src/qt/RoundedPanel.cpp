#include "qt/RoundedPanel.h"

#include <QBitmap>
#include <QGuiApplication>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace tarvix {

QFont panelFont(double pixels, QFont::Weight weight) {
    QFont font = QGuiApplication::font();
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(pixels))));
    font.setWeight(weight);
    return font;
}

void maskRounded(QWidget& panel, const QRectF& box, double radius, double border) {
    QBitmap shape(panel.size());
    shape.clear();
    QPainter painter(&shape);
    painter.setBrush(Qt::color1);
    painter.setPen(QPen(Qt::color1, border));
    painter.drawRoundedRect(box, radius, radius);
    painter.end();
    panel.setMask(shape);
}

}  // namespace tarvix
