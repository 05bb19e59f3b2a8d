#include "qt/PaletteAppearance.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

namespace tarvix {

namespace {

Color toColor(const QColor& color) { return {color.redF(), color.greenF(), color.blueF(), 1}; }

}  // namespace

PaletteAppearance::PaletteAppearance() { qApp->installEventFilter(this); }

// Qt of these versions has no accent apart from the ground of what is selected.
AppearanceTold PaletteAppearance::told() const {
    const QPalette palette = QGuiApplication::palette();
    const Color highlight = toColor(palette.color(QPalette::Highlight));
    return {.isDark = palette.color(QPalette::WindowText).lightnessF() > palette.color(QPalette::Window).lightnessF(),
            .accent = highlight,
            .selection = highlight};
}

bool PaletteAppearance::eventFilter(QObject* object, QEvent* event) {
    if (object == qApp && event->type() == QEvent::ApplicationPaletteChange) changed_();
    return false;
}

}  // namespace tarvix
