// Watches for what may grant or take the accessibility privilege.
#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <functional>

namespace tarvix {

// Calls `noted` whenever the session bus tells of the desktop's switch of accessibility, or that its keeper has come or
// gone. Main thread. Without a session bus it never does.
class TrustWatcher : public QObject {
    Q_OBJECT

public:
    explicit TrustWatcher(std::function<void()> noted);

private Q_SLOTS:
    void statusChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated);

private:
    std::function<void()> noted_;
    QDBusServiceWatcher launcher_;
};

}  // namespace tarvix
