#include "qt/QtNotificationCenter.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFileInfo>

namespace tarvix {

namespace {

// Asked before connecting: where there is no bus, connecting would start one through a helper program and wait for it.
bool haveSessionBus() {
    return !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
           QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + "/bus");
}

}  // namespace

QtNotificationCenter::QtNotificationCenter() {
    if (haveSessionBus()) QDBusConnection::sessionBus();
}

void QtNotificationCenter::post(std::string_view name) {
    if (!haveSessionBus()) return;
    const QString member = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    QDBusConnection::sessionBus().send(QDBusMessage::createSignal("/org/tarvix/Tarvix", "org.tarvix.Tarvix", member));
}

}  // namespace tarvix
