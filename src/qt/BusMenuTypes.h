// What the interface of menus on the session bus has for types.
#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QStringList>
#include <QVariantMap>

namespace tarvix {

struct BusMenuLayout {  // (ia{sv}av)
    int id = 0;
    QVariantMap properties;
    QList<QDBusVariant> children;
};

struct BusMenuProperties {  // (ia{sv})
    int id = 0;
    QVariantMap properties;
};

struct BusMenuNames {  // (ias)
    int id = 0;
    QStringList names;
};

struct BusMenuEvent {  // (isvu)
    int id = 0;
    QString what;
    QDBusVariant data;
    uint time = 0;
};

QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuProperties& properties);
const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuProperties& properties);
QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuNames& names);
const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuNames& names);
QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuEvent& event);

// To be called before any of them goes over the bus.
void registerBusMenuTypes();

}  // namespace tarvix

Q_DECLARE_METATYPE(tarvix::BusMenuLayout)
Q_DECLARE_METATYPE(tarvix::BusMenuProperties)
Q_DECLARE_METATYPE(tarvix::BusMenuNames)
Q_DECLARE_METATYPE(tarvix::BusMenuEvent)
