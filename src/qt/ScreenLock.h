// The locking of the screen, as the desktop tells of it.
#pragma once

#include <QDBusMessage>
#include <QObject>

#include "base/Listeners.h"

namespace tarvix {

// Hears the screen savers of the desktops on the session bus and the login manager on the system's, where there are
// such buses. Main thread; it waits for nothing after it has been made.
class ScreenLock final : public QObject {
    Q_OBJECT

public:
    ScreenLock();

    // The screen is about to be locked, or has been. One locking may be told several times.
    [[nodiscard]] Subscription onLocked(std::function<void()> locked) { return locked_.add(std::move(locked)); }

private Q_SLOTS:
    void activeChanged(bool isActive);
    void sessionIsLocked(const QDBusMessage& signal);

private:
    Listeners<> locked_;
};

}  // namespace tarvix
