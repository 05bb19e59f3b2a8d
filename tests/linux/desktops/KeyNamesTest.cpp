#include <gtest/gtest.h>

#include <array>

#include "linux/desktops/KeyNames.h"
#include "tests/linux/desktops/Described.h"

namespace tarvix {
namespace {

constexpr auto kNames = std::to_array<ModifierName>({{"Mod4", 0x100}, {"Shift", 0x200}, {"S", 0x200}});

std::string of(const std::optional<DesktopShortcut>& shortcut) { return shortcut ? described(*shortcut) : "none"; }

TEST(GtkAccelerator, IsModifiersInAnglesAndAKey) {
    EXPECT_EQ(of(gtkAccelerator("<Primary><Alt>t")), "Ctrl+Alt+t");
    EXPECT_EQ(of(gtkAccelerator("<Shift><Super>space")), "Shift+Super+space");
    EXPECT_EQ(of(gtkAccelerator("<ctrl><SHIFT>Page_Up")), "Ctrl+Shift+Prior");
    EXPECT_EQ(of(gtkAccelerator("<Mod4>F1")), "Super+F1");
    EXPECT_EQ(of(gtkAccelerator("<Release>Print")), "Print");
    EXPECT_EQ(of(gtkAccelerator("XF86AudioMute")), "XF86AudioMute");
}

TEST(GtkAccelerator, AKeyMayBeToldByItsPlaceOrItsKeycode) {
    EXPECT_EQ(of(gtkAccelerator("<Super>Above_Tab")), "Super+keycode 49");
    EXPECT_EQ(of(gtkAccelerator("<Alt>0x41")), "Alt+keycode 65");
}

TEST(GtkAccelerator, AnythingElseIsNone) {
    for (const char* text : {"", "<", "<Alt", "<Alt>", "<Mod5>a", "<Hopper>a", "Alt+a", "<Alt>0x", "<Alt>0x1ff",
                             "<Alt>0x00", "disabled", "/org/gnome/custom0/"})
        EXPECT_EQ(of(gtkAccelerator(text)), "none") << text;
}

TEST(ShortcutOfParts, HasItsKeyLast) {
    EXPECT_EQ(of(shortcutOfParts("Mod4+Shift+space", '+', kNames)), "Shift+Super+space");
    EXPECT_EQ(of(shortcutOfParts("S-Tab", '-', kNames)), "Shift+Tab");
    EXPECT_EQ(of(shortcutOfParts("Return", '+', kNames)), "Return");
}

TEST(ShortcutOfParts, TheSeparatorMayBeTheKey) {
    EXPECT_EQ(of(shortcutOfParts("Mod4++", '+', kNames)), "Super+plus");
    EXPECT_EQ(of(shortcutOfParts("S--", '-', kNames)), "Shift+minus");
    EXPECT_EQ(of(shortcutOfParts("+", '+', kNames)), "plus");
}

TEST(ShortcutOfParts, AnUnknownPartLeavesNone) {
    for (const char* text : {"", "+a", "Mod3+a", "Mod4+", "Mod4+nokey", "a+Mod4"})
        EXPECT_EQ(of(shortcutOfParts(text, '+', kNames)), "none") << text;
}

}  // namespace
}  // namespace tarvix
