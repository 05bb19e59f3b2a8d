// What the splash panel says.
#pragma once

#include "platform/SplashPanel.h"

namespace tarvix {

inline constexpr SplashContent splashScreenView = {
    .icon = "AppIcon",
    .title = "To forage through the UI Tarvix needs access!",
    .spaceBelowTitle = 15,
    .text =
        "After you grant access we'll send you straight to the Preferences. Have a look around, there's a few things "
        "you can tweak. And more importantly, enjoy the ride!",
    .buttons = {{{"Grant Accessibility Privileges", SplashAction::grantPrivileges, true},
                 {"Quit Tarvix", SplashAction::quit, false}}},
    .width = 228,
    .cornerRadius = 15,
};

}  // namespace tarvix
