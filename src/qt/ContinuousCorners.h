// Rounded rectangles whose edges run into their corners without a sudden change of curvature.
#pragma once

#include <QPainterPath>
#include <QRectF>

namespace tarvix {

// The corners are as round as circles of the radius, but begin earlier and gently; where the rectangle has no room for
// that they are circles again, of at most half its shorter side.
QPainterPath continuousRoundedRect(const QRectF& rect, double radius);

}  // namespace tarvix
