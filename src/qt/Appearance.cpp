#include "qt/Appearance.h"

#include <QGuiApplication>
#include <QScreen>

namespace tarvix {

namespace {

constexpr int kMeasuredDpi = 96;  // a point is a pixel at this resolution

}  // namespace

double desktopScale() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->logicalDotsPerInchY() / kMeasuredDpi : 1;
}

}  // namespace tarvix
