#include "qt/QtNotificationCenter.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include "qt/SessionBus.h"

namespace tarvix {

QtNotificationCenter::QtNotificationCenter() {
    if (haveSessionBus()) QDBusConnection::sessionBus();
}

void QtNotificationCenter::post(std::string_view name) {
    if (!haveSessionBus()) return;
    const QString member = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    QDBusConnection::sessionBus().send(QDBusMessage::createSignal("/org/tarvix/Tarvix", "org.tarvix.Tarvix", member));
}

}  // namespace tarvix
