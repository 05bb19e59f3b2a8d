// One marker as painted pixels, in the two ways that there are.
#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>
#include <QRegion>

#include "platform/Panels.h"

namespace tarvix {

QColor toQColor(Color color);

// Paints a marker over `bounds`, its frame in the painter's coordinates, which may be scaled. An edge on a pixel
// boundary is exact to the pixel; one between two boundaries covers the pixel in part.
void paintMarker(QPainter& painter, const MarkerDrawing& marker, const QRectF& bounds);

// The same for a window that can't be translucent: in whole pixels, opaque, with square corners, and a fill of rows
// between which the application shows.
void paintOpaqueMarker(QPainter& painter, const MarkerDrawing& marker, const QRectF& bounds);

// Exactly the pixels that paintOpaqueMarker() paints.
QRegion markerOutline(const MarkerDrawing& marker, const QRectF& bounds);

}  // namespace tarvix
