#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "linux/desktops/I3Shortcuts.h"
#include "tests/linux/desktops/Described.h"

namespace tarvix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> nothing(const std::string&) { return {}; }

Words shortcuts(std::string_view text) { return described(i3Shortcuts(text, nothing)); }

TEST(I3Shortcuts, AreBindingsByKeysymAndByKeycode) {
    EXPECT_THAT(shortcuts(R"(# i3 config file (v4)
set $mod Mod4
font pango:monospace 8
floating_modifier $mod
bindsym $mod+Return exec i3-sensible-terminal
    bindsym $mod+Shift+q kill
bindsym --release --whole-window Print exec "scrot"
bindcode $mod+Shift+24 kill
bindcode --release 133 exec menu
bindsym XF86AudioMute exec --no-startup-id pactl set-sink-mute @DEFAULT_SINK@ toggle && $refresh
bindsym Ctrl+Mod1+Group1+Delete exec x
bindsym $mod+plus resize grow
)"),
                ElementsAre("Super+Return", "Shift+Super+q", "Print", "Shift+Super+keycode 24", "keycode 133",
                            "XF86AudioMute", "Ctrl+Alt+Delete", "Super+plus"));
}

TEST(I3Shortcuts, VariablesHoldEverywhereAndTheLongerNameFirst) {
    EXPECT_THAT(shortcuts("bindsym $mod+$left focus left\nbindsym $modulo+a nop\nset $left h\nset $mod Mod1\n"
                          "set $modulo $mod+Shift\nset_from_resource $super i3.super Mod4\nbindsym $super+b nop"),
                ElementsAre("Alt+h", "Alt+Shift+a", "Super+b"));
}

TEST(I3Shortcuts, KeysOfAModeAndOfABarDoNotCount) {
    EXPECT_THAT(shortcuts("mode \"resize\" {\n  bindsym Left resize shrink\n  bindsym Escape mode \"default\"\n}\n"
                          "bindsym Mod4+r mode \"resize\"\nbar {\n colors {\n bindsym a x\n }\n bindsym b x\n}\n"
                          "bindsym Mod4+s nop"),
                ElementsAre("Super+r", "Super+s"));
}

TEST(I3Shortcuts, ALineGoesOnAfterABackslash) {
    EXPECT_THAT(shortcuts("bindsym \\\n  Mod4+a \\\n  exec x\nbindsym Mod4+b nop \\"), ElementsAre("Super+a"));
}

TEST(I3Shortcuts, IncludedFilesArePartOfTheWhole) {
    std::vector<std::string> asked;
    const auto include = [&](const std::string& pattern) -> std::vector<std::string> {
        asked.push_back(pattern);
        return {"set $mod Mod4", "bindsym $mod+x nop"};
    };
    EXPECT_THAT(described(i3Shortcuts("include ~/.config/i3/conf.d/*.conf\nbindsym $mod+y nop", include)),
                ElementsAre("Super+x", "Super+y"));
    EXPECT_THAT(asked, ElementsAre("~/.config/i3/conf.d/*.conf"));
}

TEST(I3Shortcuts, AFileThatIncludesItselfEnds) {
    const std::string text = "include me\nbindsym Mod4+a nop";
    const auto found = i3Shortcuts(text, [&](const std::string&) { return std::vector<std::string>{text}; });
    EXPECT_THAT(described(found), ::testing::Each("Super+a"));
    // Twice at each level.
    const std::string twice = "include me\ninclude me\nbindsym Mod4+a nop";
    EXPECT_THAT(i3Shortcuts(twice,
                            [&](const std::string&) {
                                return std::vector<std::string>{twice, twice};
                            }),
                ::testing::Not(IsEmpty()));
}

TEST(I3Shortcuts, VariablesThatNameThemselvesEnd) {
    EXPECT_THAT(shortcuts("set $a $a$a\nset $b $c\nset $c $b\nbindsym $a nop\nbindsym $b+x nop\nbindsym Mod4+d nop"),
                ElementsAre("Super+d"));
}

TEST(I3Shortcuts, WhatCannotBeReadIsLeftOut) {
    EXPECT_THAT(
        shortcuts("bindsym\nbindsym --release\nbindcode x+y\nbindcode 300\nbindcode Mod4+\nbindcode 0\n"
                  "bindsym $unknown+a nop\nbindsym Mod3+a nop\nbindsym button4 nop\nbindsym Mod4+a\n}\n}\nset\n"),
        ElementsAre("Super+a"));
    EXPECT_THAT(shortcuts(""), IsEmpty());
    EXPECT_THAT(shortcuts(std::string_view("\0\xff {", 4)), IsEmpty());
}

}  // namespace
}  // namespace tarvix
