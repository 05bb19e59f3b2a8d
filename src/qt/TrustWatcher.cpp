#include "qt/TrustWatcher.h"

#include <QDBusConnection>

#include "qt/SessionBus.h"

namespace tarvix {

namespace {

constexpr auto kLauncher = "org.a11y.Bus";
constexpr auto kEnabled = "IsEnabled";

}  // namespace

TrustWatcher::TrustWatcher(std::function<void()> noted) : noted_(std::move(noted)) {
    if (!haveSessionBus()) return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    launcher_.setConnection(bus);
    launcher_.addWatchedService(kLauncher);
    connect(&launcher_, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { noted_(); });
    bus.connect(kLauncher, "/org/a11y/bus", "org.freedesktop.DBus.Properties", "PropertiesChanged", this,
                SLOT(statusChanged(QString, QVariantMap, QStringList)));
}

void TrustWatcher::statusChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated) {
    if (interface == "org.a11y.Status" && (changed.contains(kEnabled) || invalidated.contains(kEnabled))) noted_();
}

}  // namespace tarvix
