// The status item: the way to the settings, the check for updates, the reports and the end of the program.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/Subscription.h"
#include "platform/Menu.h"
#include "platform/Platform.h"
#include "platform/StatusBar.h"
#include "shell/Deployment.h"
#include "shell/Setting.h"
#include "shell/UpdaterController.h"

namespace tarvix {

// What the settings window is called.
inline constexpr std::string_view settingsWindowName = "Settings";

// Main thread. What is given outlives it.
class StatusBarController {
public:
    StatusBarController(const Platform& platform, UpdaterController& updater, std::function<void()> showSettings,
                        Deployment deployment = Deployment::ofThisBuild());
    StatusBarController(const StatusBarController&) = delete;
    StatusBarController& operator=(const StatusBarController&) = delete;

    // Applies the two settings anew. What others write into the store is followed without it.
    void updateStatusItem();

private:
    void setUpStatusItem();
    void setUpMenu();
    Menu menu();
    void menuNeedsUpdate(Menu& menu);
    void settingsChanged();
    std::function<void()> checkForUpdates();
    void dropAnIssueOnGitHub();
    void reportByEmail();
    void reportProblem(const std::string& prefix, const std::string& fallback);

    Platform platform_;
    UpdaterController& updater_;
    std::function<void()> showSettings_;
    Deployment deployment_;
    Setting<bool> hideMenuBarIcon_;
    Setting<bool> allowTemporaryHidingOfMenuBarIcon_;
    bool isHidden_ = false, allowsHiding_ = false;  // as applied last
    std::unique_ptr<StatusItem> statusItem_;
    Subscription settings_;
};

}  // namespace tarvix
