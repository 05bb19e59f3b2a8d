#include "shell/preferences/SettingsView.h"

namespace tarvix {

namespace {

Section superGeneral() {
    return {.title = {},
            .controls = {
                Recorder{"Start Tarvixing with:", "toggleWith"},
                Divider{},
                LoginToggle{"Launch at login"},
                Toggle{"Automatically check for updates",
                       {"SUEnableAutomaticChecks", true},
                       {{{},
                         "You may want to disable automatic checks if you're updating through other tools like "
                         "Homebrew."}}},
            }};
}

}  // namespace

Pane generalPane() { return {{superGeneral()}}; }

}  // namespace tarvix
