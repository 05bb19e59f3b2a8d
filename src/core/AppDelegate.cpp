#include "core/AppDelegate.h"

#include "core/AppActivation.h"
#include "core/ShowSettings.h"
#include "core/UrlCommands.h"
#include "platform/Accessibility.h"
#include "platform/Application.h"
#include "platform/Panels.h"
#include "platform/RunLoop.h"
#include "shell/SplashScreenView.h"

namespace tarvix {

namespace {

// A notification may be early: the answer is asked for a little later.
constexpr std::chrono::milliseconds kUntilPrivilegesHold{100};

}  // namespace

AppDelegate::AppDelegate(const Platform& platform, AppCore& core) : platform_(platform), core_(core) {}

void AppDelegate::applicationDidFinishLaunching() {
    privileges_ = platform_.accessibility.onTrustChanged([this] { accessibilityPrivilegesDidChange(); });
    activations_ = platform_.workspace.onApplicationActivated(
        [this](const RunningApplication& application) { anAppHasBeenActivated(application); });
    if (platform_.accessibility.isTrusted())
        core_.start();
    else
        showSplashScreen();
}

bool AppDelegate::applicationShouldHandleReopen() {
    if (core_.isStarted()) showSettings(platform_);
    return false;
}

// The focus goes back to where the user came from.
bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed() {
    if (!platform_.application.hasKeyWindow()) platform_.application.hide();
    return false;
}

void AppDelegate::openURLs(std::span<const std::string> urls) { handleURLs(urls, core_); }

// Each notification is answered, however many come at once.
void AppDelegate::accessibilityPrivilegesDidChange() {
    const auto timer = settling_.emplace(settling_.end());
    *timer = platform_.runLoop.timer(kUntilPrivilegesHold, RunLoop::Repeat::once, [this, timer] {
        settlePrivileges();
        settling_.erase(timer);
    });
}

void AppDelegate::anAppHasBeenActivated(const RunningApplication& application) {
    if (core_.isStarted()) tarvix::anAppHasBeenActivated(application, core_.axEngine());
}

void AppDelegate::settlePrivileges() {
    if (platform_.accessibility.isTrusted())
        gainPrivileges();
    else
        losePrivileges();
}

// While the program runs already, the notification was about some other one.
void AppDelegate::gainPrivileges() {
    if (core_.isRunning()) return;
    splashScreenWindow().orderOut();
    core_.start();
    showSettings(platform_);
}

void AppDelegate::losePrivileges() {
    core_.suspend();
    showSplashScreen();
}

SplashPanel& AppDelegate::splashScreenWindow() {
    if (!splashScreenWindow_) splashScreenWindow_ = platform_.panels.makeSplashPanel();
    return *splashScreenWindow_;
}

void AppDelegate::showSplashScreen() {
    splashScreenWindow().setContent(splashScreenView, [platform = platform_](SplashAction action) {
        switch (action) {
            case SplashAction::grantPrivileges:
                return platform.accessibility.askForTrust();
            case SplashAction::quit:
                return platform.application.terminate();
        }
    });
    splashScreenWindow().orderFrontRegardless();
    platform_.application.activate();
}

}  // namespace tarvix
