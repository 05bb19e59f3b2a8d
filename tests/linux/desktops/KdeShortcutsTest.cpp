#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "linux/desktops/KdeShortcuts.h"
#include "tests/linux/desktops/Described.h"

namespace tarvix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(KdeShortcuts, AreTheActiveOnesOfEachAction) {
    EXPECT_THAT(described(kdeShortcuts(R"([kwin]
ExposeAll=Launch (C)\tCtrl+F10,Ctrl+F10\tLaunch (C),Toggle Present Windows (All desktops)
Window Close=Alt+F4,Alt+F4,Close Window
Kill Window=Ctrl+Alt+Esc,Meta+Ctrl+Esc,Kill Window
Window Grow Horizontal=none,none,Expand Window Horizontally
Walk Through Windows of Current Application=Alt+`,Alt+`,Walk Through Windows of Current Application
_k_friendly_name=KWin

[plasmashell]
activate task manager entry 1=Meta+1,Meta+1,Activate Task Manager Entry 1
next activity=Meta+Tab,Meta+Tab,Walk through activities

[services][org.kde.krunner.desktop]
_launch=Alt+Space\tAlt+F2\tSearch
RunClipboard=Alt+Shift+F2

[kmix]
increase_volume=Volume Up,Volume Up,Increase Volume
)")),
                ElementsAre("Ctrl+F10", "Alt+F4", "Ctrl+Alt+Escape", "Alt+grave", "Super+1", "Super+Tab", "Alt+space",
                            "Alt+F2", "XF86Search", "Alt+Shift+F2", "XF86AudioRaiseVolume"));
}

TEST(KdeShortcuts, KeysThatAreSignsOfTheFormatAreUnderstood) {
    EXPECT_THAT(described(kdeShortcuts("[kwin]\na=Meta++,none,x\nb=Meta+\\,,none,x\nc=Meta+\\\\,none,x\nd=Meta+-,,x\n"
                                       "e=Num+5,none,x\nf=Meta+Num++,none,x\ng=Meta+=,none,x\n")),
                ElementsAre("Super+plus", "Super+comma", "Super+backslash", "Super+minus", "KP_5", "Super+KP_Add",
                            "Super+equal"));
}

TEST(KdeShortcuts, WhatCannotBeReadIsLeftOut) {
    EXPECT_THAT(described(kdeShortcuts("[kwin]\n# a=Meta+a\nb\n=Meta+b\nc=\nd=,,\ne=GroupSwitch+e,,\nf=Meta+,,\n"
                                       "h=Meta+h")),
                ElementsAre("Super+b", "Super+h"));
    EXPECT_THAT(kdeShortcuts(""), IsEmpty());
    EXPECT_THAT(kdeShortcuts(std::string_view("\0\xff=\0", 4)), IsEmpty());
}

}  // namespace
}  // namespace tarvix
