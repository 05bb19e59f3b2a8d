#include "qt/QtNotificationCenter.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include "qt/QtText.h"
#include "qt/SessionBus.h"

namespace tarvix {

QtNotificationCenter::QtNotificationCenter() {
    if (haveSessionBus()) QDBusConnection::sessionBus();
}

void QtNotificationCenter::post(std::string_view name) {
    if (!haveSessionBus()) return;
    const QString member = textOf(name);
    QDBusConnection::sessionBus().send(QDBusMessage::createSignal("/org/tarvix/Tarvix", "org.tarvix.Tarvix", member));
}

}  // namespace tarvix
