#include "qt/NotifierTypes.h"

#include <QDBusMetaType>

#include "qt/BusStructure.h"

namespace tarvix {

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierPixmap& pixmap) {
    return writeStructure(argument, pixmap.width, pixmap.height, pixmap.pixels);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierPixmap& pixmap) {
    return readStructure(argument, pixmap.width, pixmap.height, pixmap.pixels);
}
QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& toolTip) {
    return writeStructure(argument, toolTip.icon, toolTip.pixmaps, toolTip.title, toolTip.text);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& toolTip) {
    return readStructure(argument, toolTip.icon, toolTip.pixmaps, toolTip.title, toolTip.text);
}

void registerNotifierTypes() {
    qDBusRegisterMetaType<NotifierPixmap>();
    qDBusRegisterMetaType<NotifierPixmaps>();
    qDBusRegisterMetaType<NotifierToolTip>();
}

}  // namespace tarvix
