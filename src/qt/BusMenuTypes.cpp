#include "qt/BusMenuTypes.h"

#include <QDBusMetaType>

#include "qt/BusStructure.h"

namespace tarvix {

QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuLayout& layout) {
    return writeStructure(argument, layout.id, layout.properties, layout.children);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuLayout& layout) {
    return readStructure(argument, layout.id, layout.properties, layout.children);
}
QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuProperties& properties) {
    return writeStructure(argument, properties.id, properties.properties);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuProperties& properties) {
    return readStructure(argument, properties.id, properties.properties);
}
QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuNames& names) {
    return writeStructure(argument, names.id, names.names);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuNames& names) {
    return readStructure(argument, names.id, names.names);
}
QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuEvent& event) {
    return writeStructure(argument, event.id, event.what, event.data, event.time);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuEvent& event) {
    return readStructure(argument, event.id, event.what, event.data, event.time);
}

void registerBusMenuTypes() {
    qDBusRegisterMetaType<QList<QDBusVariant>>();
    qDBusRegisterMetaType<QList<QStringList>>();
    qDBusRegisterMetaType<BusMenuLayout>();
    qDBusRegisterMetaType<BusMenuProperties>();
    qDBusRegisterMetaType<QList<BusMenuProperties>>();
    qDBusRegisterMetaType<BusMenuNames>();
    qDBusRegisterMetaType<QList<BusMenuNames>>();
    qDBusRegisterMetaType<BusMenuEvent>();
    qDBusRegisterMetaType<QList<BusMenuEvent>>();
}

}  // namespace tarvix
