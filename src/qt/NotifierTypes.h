// What the interface of status items on the session bus has for types.
#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>

namespace tarvix {

struct NotifierPixmap {  // (iiay)
    int width = 0, height = 0;
    QByteArray pixels;  // row by row; of each the transparency, red, green, blue
};

using NotifierPixmaps = QList<NotifierPixmap>;

struct NotifierToolTip {  // (sa(iiay)ss)
    QString icon;
    NotifierPixmaps pixmaps;
    QString title, text;
};

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& toolTip);

// To be called before any of them goes over the bus.
void registerNotifierTypes();

}  // namespace tarvix

Q_DECLARE_METATYPE(tarvix::NotifierPixmap)
Q_DECLARE_METATYPE(tarvix::NotifierToolTip)
