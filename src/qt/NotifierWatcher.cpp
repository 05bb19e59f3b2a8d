#include "qt/NotifierWatcher.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <chrono>

#include "qt/SessionBus.h"

namespace tarvix {

namespace {

constexpr auto kName = "org.kde.StatusNotifierWatcher";
constexpr auto kPath = "/StatusNotifierWatcher";
constexpr std::chrono::milliseconds kLimit{1000};

QDBusMessage call(const char* interface, const char* method) {
    QDBusMessage message = QDBusMessage::createMethodCall(kName, kPath, interface, method);
    message.setAutoStartService(false);
    return message;
}

void send(QObject* owner, const QDBusMessage& message, std::function<void(const QDBusMessage&)> answered) {
    auto* pending = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), owner);
    QObject::connect(pending, &QDBusPendingCallWatcher::finished, owner, [pending, answered = std::move(answered)] {
        pending->deleteLater();
        answered(pending->reply());
    });
}

}  // namespace

NotifierWatcher::NotifierWatcher(std::function<void()> changed) : changed_(std::move(changed)) {
    if (!haveSessionBus()) return;
    host_ = NotifierHost::unknown;
    limit_.setSingleShot(true);
    connect(&limit_, &QTimer::timeout, this, [this] { take(NotifierHost::absent); });
    QDBusConnection bus = QDBusConnection::sessionBus();
    owner_.setConnection(bus);
    owner_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    owner_.addWatchedService(kName);
    connect(&owner_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) { ownerIsChanged(!owner.isEmpty()); });
    for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        bus.connect(kName, kPath, kName, signal, this, SLOT(hostIsChanged(QDBusMessage)));
    ask();
}

void NotifierWatcher::ownerIsChanged(bool isThere) {
    ++question_;
    take(isThere ? NotifierHost::unknown : NotifierHost::absent);
    if (isThere) ask();
}

void NotifierWatcher::hostIsChanged(const QDBusMessage&) { ask(); }

void NotifierWatcher::ask() {
    QDBusMessage get = call("org.freedesktop.DBus.Properties", "Get");
    get << kName << "IsStatusNotifierHostRegistered";
    if (host_ == NotifierHost::unknown) limit_.start(kLimit);
    send(this, get, [this, question = ++question_](const QDBusMessage& reply) {
        if (question != question_) return;
        const bool isTold = reply.type() == QDBusMessage::ReplyMessage && reply.signature() == "v";
        const bool isThere = isTold && reply.arguments()[0].value<QDBusVariant>().variant().toBool();
        take(isThere ? NotifierHost::present : NotifierHost::absent);
    });
}

void NotifierWatcher::take(NotifierHost host) {
    if (host != NotifierHost::unknown) limit_.stop();
    if (host == host_) return;
    host_ = host;
    changed_();
}

void NotifierWatcher::registerItem(QObject& item, const QString& busName, std::function<void()> refused) {
    QDBusMessage message = call(kName, "RegisterStatusNotifierItem");
    message << busName;
    send(&item, message, [refused = std::move(refused)](const QDBusMessage& reply) {
        if (reply.type() == QDBusMessage::ErrorMessage) refused();
    });
}

}  // namespace tarvix
