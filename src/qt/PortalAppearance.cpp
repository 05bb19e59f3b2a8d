#include "qt/PortalAppearance.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QMap>
#include <QStringList>
#include <utility>

#include "qt/SessionBus.h"

namespace tarvix {

namespace {

constexpr auto kPortal = "org.freedesktop.portal.Desktop";
constexpr auto kPath = "/org/freedesktop/portal/desktop";
constexpr auto kSettings = "org.freedesktop.portal.Settings";
const QString kGroup = "org.freedesktop.appearance";
const QString kScheme = "color-scheme";
const QString kAccent = "accent-color";

// No preference is none that is told.
std::optional<bool> darknessOf(const QVariant& scheme) {
    constexpr uint dark = 1, light = 2;
    if (scheme.typeId() != QMetaType::UInt) return std::nullopt;
    if (scheme.toUInt() == dark) return true;
    if (scheme.toUInt() == light) return false;
    return std::nullopt;
}

// A colour out of range is the portal's way to say that there is none.
std::optional<Color> accentOf(const QVariant& accent) {
    if (accent.typeId() != qMetaTypeId<QDBusArgument>()) return std::nullopt;
    const auto structure = accent.value<QDBusArgument>();
    if (structure.currentSignature() != "(ddd)") return std::nullopt;
    Color color;
    structure.beginStructure();
    structure >> color.red >> color.green >> color.blue;
    structure.endStructure();
    for (const double part : {color.red, color.green, color.blue})
        if (!(part >= 0 && part <= 1)) return std::nullopt;
    return color;
}

}  // namespace

PortalAppearance::PortalAppearance() {
    if (!haveSessionBus()) return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    portal_.setConnection(bus);
    portal_.addWatchedService(kPortal);
    connect(&portal_, &QDBusServiceWatcher::serviceRegistered, this, [this] { ask(); });
    connect(&portal_, &QDBusServiceWatcher::serviceUnregistered, this, [this] { take({}); });
    bus.connect(kPortal, kPath, kSettings, "SettingChanged", this, SLOT(settingChanged(QDBusMessage)));
    ask();
}

void PortalAppearance::ask() {
    QDBusMessage read = QDBusMessage::createMethodCall(kPortal, kPath, kSettings, "ReadAll");
    read << QStringList{kGroup};
    read.setAutoStartService(false);
    auto* answered = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(read), this);
    connect(answered, &QDBusPendingCallWatcher::finished, this, [this, answered] {
        answered->deleteLater();
        const QDBusMessage reply = answered->reply();
        if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != "a{sa{sv}}") return;
        const auto groups = qdbus_cast<QMap<QString, QVariantMap>>(reply.arguments().constFirst());
        const QVariantMap settings = groups.value(kGroup);
        take({.isDark = darknessOf(settings.value(kScheme)),
              .accent = accentOf(settings.value(kAccent)),
              .selection = {}});
    });
}

void PortalAppearance::settingChanged(const QDBusMessage& signal) {
    if (signal.signature() != "ssv") return;
    const QVariantList arguments = signal.arguments();
    const QString group = arguments[0].toString(), key = arguments[1].toString();
    const auto value = arguments[2].value<QDBusVariant>();
    if (group != kGroup) return;
    AppearanceTold told = told_;
    if (key == kScheme) told.isDark = darknessOf(value.variant());
    if (key == kAccent) told.accent = accentOf(value.variant());
    take(told);
}

void PortalAppearance::take(const AppearanceTold& told) {
    if (told == told_) return;
    told_ = told;
    changed_();
}

}  // namespace tarvix
