// The program, as the platform starts it.
#pragma once

#include "core/AppCore.h"
#include "core/AppDelegate.h"
#include "platform/Platform.h"
#include "shell/LaunchAtLogin.h"

namespace tarvix {

// To be made before there is any window: an older version's entry at login is carried over first of all. Main thread;
// the platform outlives it.
class TarvixApp {
public:
    explicit TarvixApp(const Platform& platform);
    TarvixApp(const TarvixApp&) = delete;
    TarvixApp& operator=(const TarvixApp&) = delete;

    LaunchAtLogin& launchAtLogin() { return launchAtLogin_; }
    AppCore& core() { return core_; }
    AppDelegate& appDelegate() { return appDelegate_; }

private:
    LaunchAtLogin launchAtLogin_;
    AppCore core_;
    AppDelegate appDelegate_;
};

}  // namespace tarvix
