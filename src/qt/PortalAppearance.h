// The appearance by the desktop's settings portal.
#pragma once

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>

#include "base/Listeners.h"
#include "platform/Appearance.h"

namespace tarvix {

// Main thread. It starts no portal and never waits for one: until it has answered, and where there is none, nothing is
// told.
class PortalAppearance final : public QObject, public AppearanceSource {
    Q_OBJECT

public:
    PortalAppearance();

    AppearanceTold told() const override { return told_; }
    [[nodiscard]] Subscription onChange(std::function<void()> changed) override {
        return changed_.add(std::move(changed));
    }

private Q_SLOTS:
    void settingChanged(const QDBusMessage& signal);

private:
    void ask();
    void take(const AppearanceTold& told);

    QDBusServiceWatcher portal_;
    AppearanceTold told_;
    Listeners<> changed_;
};

}  // namespace tarvix
