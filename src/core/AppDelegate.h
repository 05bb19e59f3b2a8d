// What the desktop tells this program, and whether it may work at all.
#pragma once

#include <list>
#include <memory>
#include <span>
#include <string>

#include "base/Subscription.h"
#include "core/AppCore.h"
#include "platform/Platform.h"
#include "platform/SplashPanel.h"
#include "platform/Workspace.h"

namespace tarvix {

// Everything depends on the accessibility privilege: while it is missing the splash panel stands in the place of the
// program. Main thread; what is given outlives it.
class AppDelegate {
public:
    AppDelegate(const Platform& platform, AppCore& core);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    // Starts the program, or waits for the privilege. To be called once.
    void applicationDidFinishLaunching();
    // The user has started the program a second time. False: there is nothing more for the desktop to do.
    bool applicationShouldHandleReopen();
    // The last of the ordinary windows has been closed. False: the program goes on.
    bool applicationShouldTerminateAfterLastWindowClosed();
    // Addresses of this program's scheme.
    void openURLs(std::span<const std::string> urls);

private:
    void accessibilityPrivilegesDidChange();
    void anAppHasBeenActivated(const RunningApplication& application);
    void settlePrivileges();
    void gainPrivileges();
    void losePrivileges();
    SplashPanel& splashScreenWindow();
    void showSplashScreen();

    Platform platform_;
    AppCore& core_;
    std::unique_ptr<SplashPanel> splashScreenWindow_;
    Subscription privileges_, activations_;
    std::list<Subscription> settling_;  // a timer for each notification that hasn't been answered yet
};

}  // namespace tarvix
