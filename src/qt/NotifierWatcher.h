// Whether somebody shows items that tell of themselves on the session bus (org.kde.StatusNotifierWatcher).
#pragma once

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <utility>

namespace tarvix {

enum class NotifierHost : std::uint8_t { unknown, absent, present };

// Main thread. Nothing here waits for the watcher, which may be frozen: one that doesn't answer within a second counts
// as showing nothing until it does.
class NotifierWatcher : public QObject {
    Q_OBJECT

public:
    // `changed` is called whenever the host may be another one, so that items have to be registered anew where there
    // is one.
    explicit NotifierWatcher(std::function<void()> changed);

    NotifierHost host() const { return host_; }
    // Registers the item at the usual path of a bus name. `refused` is called when the watcher won't have it, if
    // `item` lives by then.
    void registerItem(QObject& item, const QString& busName, std::function<void()> refused);

private Q_SLOTS:
    void hostIsChanged(const QDBusMessage& signal);

private:
    void ownerIsChanged(bool isThere);
    void ask();
    void take(NotifierHost host);

    std::function<void()> changed_;
    NotifierHost host_ = NotifierHost::absent;
    QDBusServiceWatcher owner_;
    QTimer limit_;
    std::uint64_t question_ = 0;  // the latest; answers to earlier ones are of no use any more
};

}  // namespace tarvix
