#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "linux/desktops/OpenboxShortcuts.h"
#include "tests/linux/desktops/Described.h"

namespace tarvix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(OpenboxShortcuts, AreTheKeysOfItsKeyboardSection) {
    EXPECT_THAT(described(openboxShortcuts(R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc" xmlns:xi="http://www.w3.org/2001/XInclude">
<!-- a comment with <keybind key="W-x"/> -->
<keyboard>
  <chainQuitKey>C-g</chainQuitKey>
  <keybind key="C-A-Left"><action name="GoToDesktop"><to>left</to><wrap>no</wrap></action></keybind>
  <keybind key="W-F1"><action name="GoToDesktop"><to>1</to></action></keybind>
  <keybind key="A-S-Tab"><action name="PreviousWindow"/></keybind>
  <keybind key="Print"><action name="Execute"><command>scrot</command></action></keybind>
  <keybind key="Mod4-minus"/>
  <keybind key="C-0x41"/>
</keyboard>
<mouse><context name="Frame"><mousebind button="A-Left" action="Press"/></context></mouse>
</openbox_config>)")),
                ElementsAre("Ctrl+Alt+Left", "Super+F1", "Alt+Shift+Tab", "Print", "Super+minus", "Ctrl+keycode 65"));
}

TEST(OpenboxShortcuts, OfAChainTheFirstKeyIsTakenAndOfAlternativesEach) {
    EXPECT_THAT(described(openboxShortcuts(R"(<openbox_config><keyboard>
  <keybind key="C-x W-x"><keybind key="C-f"><action name="Execute"/></keybind></keybind>
</keyboard></openbox_config>)")),
                ElementsAre("Ctrl+x", "Super+x"));
}

TEST(OpenboxShortcuts, WhatCannotBeReadIsLeftOut) {
    EXPECT_THAT(described(openboxShortcuts(R"(<openbox_config><keyboard>
  <keybind/><keybind key=""/><keybind key="Mod3-a"/><keybind key="W-nokey"/><keybind key="W-"/><keybind key="W-a"/>
</keyboard></openbox_config>)")),
                ElementsAre("Super+a"));
    EXPECT_THAT(openboxShortcuts(""), IsEmpty());
    EXPECT_THAT(openboxShortcuts("<openbox_config><keyboard/></openbox_config>"), IsEmpty());
    EXPECT_THAT(openboxShortcuts("\xff<<>>"), IsEmpty());
}

}  // namespace
}  // namespace tarvix
