// The updater of a build without a feed: there is nothing to check.
#pragma once

#include "platform/Updater.h"

namespace tarvix {

class QtUpdater : public Updater {
public:
    void start() override {}
    void checkForUpdates() override {}
    bool canCheckForUpdates() override { return false; }
    Subscription onCanCheckForUpdatesChanged(std::function<void()>) override { return {}; }
};

}  // namespace tarvix
