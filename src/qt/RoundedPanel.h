// What the panels with plain round corners share, the inspector and the splash panel. Lengths in pixels.
#pragma once

#include <QFont>
#include <QRectF>
#include <QWidget>

namespace tarvix {

// The program's font, at least one pixel high.
QFont panelFont(double pixels, QFont::Weight weight);

// Gives the panel the shape of the box with its border. Without a compositor the corners would show as black.
void maskRounded(QWidget& panel, const QRectF& box, double radius, double border);

}  // namespace tarvix
