#include "qt/ProgramIcon.h"

#include <QPainter>
#include <QSvgRenderer>

// In a library the linker would leave it out; and this can't stand in a namespace.
static void keepResource() { Q_INIT_RESOURCE(ProgramIcon); }

namespace tarvix {

QPixmap programIcon(int pixels) {
    keepResource();
    QPixmap icon(pixels, pixels);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    QSvgRenderer(QString(":/org.tarvix.Tarvix.svg")).render(&painter);
    return icon;
}

QIcon programIcon() {
    QIcon icon;
    for (const int pixels : {16, 24, 32, 48, 128}) icon.addPixmap(programIcon(pixels));
    return icon;
}

}  // namespace tarvix
