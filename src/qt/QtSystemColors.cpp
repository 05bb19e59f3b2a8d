#include "qt/QtSystemColors.h"

#include <QGuiApplication>
#include <QPalette>

namespace tarvix {

namespace {

Color toColor(const QColor& color) { return {color.redF(), color.greenF(), color.blueF(), 1}; }

Color mix(Color a, Color b) { return {(a.red + b.red) / 2, (a.green + b.green) / 2, (a.blue + b.blue) / 2, 1}; }

}  // namespace

// No desktop has a colour for found text, so it is ours: the yellow of a marker pen, which stands out on light and on
// dark windows and from every accent colour in use.
Color QtSystemColors::findHighlight() { return {1, 1, 0, 1}; }

Color QtSystemColors::controlAccent() { return toColor(QGuiApplication::palette().color(QPalette::Highlight)); }

// The pale tint of a selected control: half accent, half the ground that it lies on.
Color QtSystemColors::selectedControl() {
    return mix(controlAccent(), toColor(QGuiApplication::palette().color(QPalette::Base)));
}

}  // namespace tarvix
