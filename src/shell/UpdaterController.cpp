#include "shell/UpdaterController.h"

#include <utility>

namespace tarvix {

UpdaterController::UpdaterController(Updater& updater)
    : updater_(updater), updaterChanged_(updater.onCanCheckForUpdatesChanged([this] { mirror(); })) {
    updater_.start();
    mirror();
}

Subscription UpdaterController::onCanCheckForUpdatesChanged(std::function<void(bool)> changed) {
    return changed_.add(std::move(changed));
}

void UpdaterController::checkForUpdates() { updater_.checkForUpdates(); }

void UpdaterController::mirror() {
    const bool canCheck = updater_.canCheckForUpdates();
    if (std::exchange(canCheckForUpdates_, canCheck) != canCheck) changed_(canCheck);
}

}  // namespace tarvix
