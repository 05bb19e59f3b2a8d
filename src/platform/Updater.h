// Looking for newer versions of this program, telling the user of them and handing them over to be installed. Main
// thread; whatever waits for the network does so elsewhere.
#pragma once

#include <functional>

#include "base/Subscription.h"

namespace tarvix {

class Updater {
public:
    virtual ~Updater() = default;
    // Begins to check by itself, as often as the setting "SUEnableAutomaticChecks" allows.
    virtual void start() = 0;
    // A check that the user has asked for: its outcome is told, good or bad.
    virtual void checkForUpdates() = 0;
    // False while a check is under way, and always where no feed is configured.
    virtual bool canCheckForUpdates() = 0;
    [[nodiscard]] virtual Subscription onCanCheckForUpdatesChanged(std::function<void()> changed) = 0;
};

}  // namespace tarvix
