#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "linux/desktops/GnomeShortcuts.h"
#include "tests/linux/desktops/Described.h"

namespace tarvix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::string_view kListing =
    R"(org.gnome.desktop.wm.keybindings activate-window-menu ['<Alt>space']
org.gnome.desktop.wm.keybindings always-on-top @as []
org.gnome.desktop.wm.keybindings begin-move ['']
org.gnome.desktop.wm.keybindings switch-group ['<Super>Above_Tab', '<Alt>Above_Tab']
org.gnome.desktop.wm.keybindings switch-input-source-backward ['<Shift><Super>space', '<Shift>XF86Keyboard']
org.gnome.shell.keybindings show-screen-recording-ui ['<Ctrl><Shift><Alt>R']
org.gnome.settings-daemon.plugins.media-keys custom-keybindings ['/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/custom0/', '/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/custom1/']
org.gnome.settings-daemon.plugins.media-keys help ['', '<Super>F1']
org.gnome.settings-daemon.plugins.media-keys volume-step 6
org.gnome.settings-daemon.plugins.media-keys max-screencast-length uint32 30
org.gnome.settings-daemon.plugins.media-keys.custom-keybinding binding '<Super>t'
org.gnome.settings-daemon.plugins.media-keys.custom-keybinding command 'F1'
org.gnome.settings-daemon.plugins.media-keys.custom-keybinding name 'F2'
)";

TEST(GnomeShortcuts, AreAllKeysOfEverySchema) {
    EXPECT_THAT(described(gnomeShortcuts(kListing)),
                ElementsAre("Alt+space", "Super+keycode 49", "Alt+keycode 49", "Shift+Super+space",
                            "Shift+XF86Keyboard", "Ctrl+Alt+Shift+R", "Super+F1", "Super+t"));
}

TEST(GnomeShortcuts, TheUsersOwnAreFoundByTheirPaths) {
    EXPECT_THAT(gnomeCustomPaths(kListing),
                ElementsAre("/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/custom0/",
                            "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/custom1/"));
}

TEST(GnomeShortcuts, ATextMayStandInEitherQuotesWithBackslashes) {
    EXPECT_THAT(described(gnomeShortcuts("s k [\"<Alt>a\", '<Alt>\\'', \"<Alt>b\\\"\"]\ns k '<Alt>c'")),
                ElementsAre("Alt+a", "Alt+c"));
}

TEST(GnomeShortcuts, WhatCannotBeReadIsLeftOut) {
    EXPECT_THAT(gnomeShortcuts("No such schema"), IsEmpty());
    EXPECT_THAT(gnomeShortcuts("s k ['<Alt>a\ns k\n\ns k <Alt>b\ns k ['\\"), IsEmpty());
    EXPECT_THAT(gnomeShortcuts(""), IsEmpty());
    EXPECT_THAT(gnomeCustomPaths("s custom-keybindings ['--help', 'x/', '/x']"), IsEmpty());
}

}  // namespace
}  // namespace tarvix
