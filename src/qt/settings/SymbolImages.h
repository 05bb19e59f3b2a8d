// The symbol images of the settings window.
#pragma once

#include <QColor>
#include <QIcon>
#include <QPainter>
#include <QRectF>
#include <string_view>

namespace tarvix {

// Draws one by its name: "gearshape", "magnifyingglass", "mouth", "mappin", "wand.and.stars", "xmark.circle.fill".
// False, and nothing is drawn, for any other name.
bool drawSymbol(QPainter& painter, std::string_view name, const QRectF& square, const QColor& color);

QIcon symbolIcon(std::string_view name, int size, const QColor& color);

}  // namespace tarvix
