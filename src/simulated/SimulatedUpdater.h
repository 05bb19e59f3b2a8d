// The checks for updates, as far as they are asked for.
#pragma once

#include <functional>
#include <utility>

#include "base/Listeners.h"
#include "platform/Updater.h"
#include "simulated/Journal.h"

namespace tarvix {

class SimulatedUpdater : public Updater {
public:
    explicit SimulatedUpdater(Journal& journal) : journal_(journal) {}

    void start() override { journal_.note(Topic::updates, "updater started"); }
    void checkForUpdates() override { journal_.note(Topic::updates, "checked for updates"); }
    bool canCheckForUpdates() override { return canCheck_; }
    Subscription onCanCheckForUpdatesChanged(std::function<void()> changed) override {
        return changed_.add(std::move(changed));
    }

    void setCanCheck(bool canCheck) {
        canCheck_ = canCheck;
        changed_();
    }

private:
    Journal& journal_;
    bool canCheck_ = true;
    Listeners<> changed_;
};

}  // namespace tarvix
