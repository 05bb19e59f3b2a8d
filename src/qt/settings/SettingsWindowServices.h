// What the settings window works with.
#pragma once

#include "platform/Appearance.h"
#include "platform/UserDefaults.h"
#include "qt/settings/RecorderField.h"
#include "shell/LaunchAtLogin.h"
#include "shell/preferences/ControlEffects.h"

namespace tarvix {

// Everything outlives the window.
struct SettingsWindowServices {
    UserDefaults& defaults;
    Appearance& appearance;
    LaunchAtLogin& launchAtLogin;
    ControlEffects& effects;
    RecorderServices recorder;
};

}  // namespace tarvix
