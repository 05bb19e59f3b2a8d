// The updates of this program, as far as its own controls need them.
#pragma once

#include <functional>

#include "base/Listeners.h"
#include "base/Subscription.h"
#include "platform/Updater.h"

namespace tarvix {

// Main thread. The updater must outlive it.
class UpdaterController {
public:
    // Starts the updater, which from then on follows its own schedule.
    explicit UpdaterController(Updater& updater);

    // Whether a check may be started: the state for a control that wants to grey out.
    bool canCheckForUpdates() const { return canCheckForUpdates_; }
    // Told after each change, and only of changes.
    [[nodiscard]] Subscription onCanCheckForUpdatesChanged(std::function<void(bool canCheck)> changed);

    // A check on behalf of the user; the updater decides whether there can be one.
    void checkForUpdates();

private:
    void mirror();

    Updater& updater_;
    bool canCheckForUpdates_ = true;
    Listeners<bool> changed_;
    Subscription updaterChanged_;
};

}  // namespace tarvix
