#include "qt/QtScreenReader.h"

#include <QAccessible>
#include <QApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QStringList>
#include <QWidget>
#include <algorithm>
#include <utility>

#include "qt/QtText.h"
#include "qt/SessionBus.h"

namespace tarvix {

namespace {

constexpr auto kLauncher = "org.a11y.Bus";
constexpr auto kLauncherPath = "/org/a11y/bus";
constexpr auto kStatus = "org.a11y.Status";
constexpr auto kScreenReaderEnabled = "ScreenReaderEnabled";
constexpr auto kProperties = "org.freedesktop.DBus.Properties";

constexpr auto kBridge = "a11y";  // Qt's name for its own connection to the accessibility bus
constexpr auto kRegistry = "org.a11y.atspi.Registry";
constexpr auto kRegistryPath = "/org/a11y/atspi/registry";
const QString kAccessible = "/org/a11y/atspi/accessible/";

constexpr int kPolite = 1, kAssertive = 2;
constexpr int kHighPriority = 90;

// The object in whose name is spoken: readers heed what has the focus.
QString speaker() {
    QObject* focused = QGuiApplication::focusObject();
    for (const QWidget* window : QApplication::topLevelWidgets())
        if (!focused && window->isVisible()) focused = window->focusWidget();  // Qt may learn of it a moment later
    QAccessibleInterface* interface = focused ? QAccessible::queryAccessibleInterface(focused) : nullptr;
    return kAccessible + (interface ? QString::number(QAccessible::uniqueId(interface)) : "root");
}

QDBusMessage objectEvent(const QString& from, const char* member, const QString& detail, int detail1,
                         const QString& text) {
    QDBusMessage signal = QDBusMessage::createSignal(from, "org.a11y.atspi.Event.Object", member);
    signal << detail << detail1 << 0 << QVariant::fromValue(QDBusVariant(text)) << QVariantMap();
    return signal;
}

// The names of the events that somebody on the bus listens to.
QStringList eventsHeard(const QDBusMessage& reply) {
    QStringList events;
    if (reply.signature() != "a(ss)") return events;
    const auto pairs = reply.arguments().constFirst().value<QDBusArgument>();
    pairs.beginArray();
    while (!pairs.atEnd()) {
        QString listener, name;
        pairs.beginStructure();
        pairs >> listener >> name;
        pairs.endStructure();
        events << name;
    }
    pairs.endArray();
    return events;
}

// A listener to "Object:" hears whatever begins so.
bool isHeard(const QString& event, const QStringList& heard) {
    return std::ranges::any_of(heard, [&](QString name) {
        while (name.endsWith(':')) name.chop(1);
        return event == name || event.startsWith(name + ':');
    });
}

}  // namespace

QtScreenReader::QtScreenReader() {
    if (!haveSessionBus()) return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    launcher_.setConnection(bus);
    launcher_.addWatchedService(kLauncher);
    connect(&launcher_, &QDBusServiceWatcher::serviceUnregistered, this, [this] { isRunning_ = false; });
    connect(&launcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] { readStatus(); });
    bus.connect(kLauncher, kLauncherPath, kProperties, "PropertiesChanged", this,
                SLOT(statusChanged(QString, QVariantMap)));
    readStatus();
}

void QtScreenReader::readStatus() {
    QDBusMessage get = QDBusMessage::createMethodCall(kLauncher, kLauncherPath, kProperties, "Get");
    get << kStatus << kScreenReaderEnabled;
    get.setAutoStartService(false);
    auto* answered = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(get), this);
    connect(answered, &QDBusPendingCallWatcher::finished, this, [this, answered] {
        answered->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *answered;
        isRunning_ = reply.isValid() && reply.value().variant().toBool();
    });
}

void QtScreenReader::statusChanged(const QString& interface, const QVariantMap& changed) {
    if (interface != kStatus || !changed.contains(kScreenReaderEnabled)) return;
    isRunning_ = changed.value(kScreenReaderEnabled).toBool();
}

void QtScreenReader::announce(std::string_view text, int priority) {
    const QString said = textOf(text);
    unsaid_.push_back({speaker(), said, priority >= kHighPriority ? kAssertive : kPolite});
    if (unsaid_.size() == 1) askWhatIsHeard();
}

// Asked each time, since a reader listens to more or less as its user goes from program to program. One question at a
// time: answers to several come in any order.
void QtScreenReader::askWhatIsHeard() {
    const QDBusMessage ask = QDBusMessage::createMethodCall(kRegistry, kRegistryPath, kRegistry, "GetRegisteredEvents");
    auto* answered = new QDBusPendingCallWatcher(QDBusConnection(kBridge).asyncCall(ask), this);
    connect(answered, &QDBusPendingCallWatcher::finished, this, [this, answered] {
        answered->deleteLater();
        sayTo(eventsHeard(answered->reply()));
    });
}

// Readers of before the announcements' time speak a changed description of what has the focus, and those of after it
// speak both; so they get the one that they listen to.
void QtScreenReader::sayTo(const QStringList& heard) {
    const bool onlyDescriptions =
        !isHeard("Object:Announcement", heard) && isHeard("Object:PropertyChange:AccessibleDescription", heard);
    QDBusConnection bus(kBridge);
    for (const auto& [from, text, politeness] : std::exchange(unsaid_, {}))
        bus.send(onlyDescriptions ? objectEvent(from, "PropertyChange", "accessible-description", 0, text)
                                  : objectEvent(from, "Announcement", {}, politeness, text));
}

}  // namespace tarvix
