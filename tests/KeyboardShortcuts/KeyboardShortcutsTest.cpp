#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "simulated/SimulatedHotKeys.h"
#include "simulated/SimulatedUserDefaults.h"

namespace tarvix {
namespace {

using Value = UserDefaults::Value;
using Journal = std::vector<std::string>;
using Chord = SimulatedHotKeys::Chord;

const std::string toggleKey = "KeyboardShortcuts_toggleWith";
constexpr Chord shiftCommandSpace{49, 0x300};
constexpr Chord controlA{0, 0x1000};
constexpr Shortcut controlAShortcut{0, 0x1000};
const ShortcutName plainName{"plain", std::nullopt};

struct KeyboardShortcutsTest : testing::Test {
    SimulatedUserDefaults defaults;
    Faults faults;
    SimulatedHotKeys hotKeys{faults};
    KeyboardShortcuts shortcuts{defaults, hotKeys};
    Journal journal;

    KeyboardShortcuts::Handler writes(std::string text) {
        return [this, text] { journal.push_back(text); };
    }
    std::vector<Chord> held() const {
        std::vector<Chord> chords;
        for (const auto& entry : hotKeys.registered()) chords.push_back(entry.second);
        return chords;
    }
    std::vector<std::uint32_t> heldIds() const {
        std::vector<std::uint32_t> ids;
        for (const auto& entry : hotKeys.registered()) ids.push_back(entry.first);
        return ids;
    }
};

TEST(Shortcut, OnlyTheFourModifiersSurvive) {
    EXPECT_EQ(Shortcut::withEventFlags(49, 0x120000), (Shortcut{49, 768}));
    EXPECT_EQ(Shortcut::withEventFlags(0, 0x1000000 | 0x800000 | 0x10000 | 0x40000), controlAShortcut);
}

TEST(Shortcut, EncodingLeadsBack) {
    for (const Shortcut shortcut : {Shortcut{0, 0}, Shortcut{49, 768}, Shortcut{4294967295u, 4294967295u}})
        EXPECT_EQ(decodedShortcut(encoded(shortcut)), shortcut);
}

TEST(Shortcut, MembersStandInAnyOrderAndOthersDoNotMatter) {
    EXPECT_EQ(decodedShortcut(R"( {"carbonModifiers": 768, "x": [1], "carbonKeyCode" : 49} )"), (Shortcut{49, 768}));
}

TEST(Shortcut, AnythingElseReadsAsNone) {
    for (const char* text :
         {"", "false", "null", "[]", "{}", "49", "{", R"({"carbonKeyCode":49})",
          R"({"carbonKeyCode":49,"carbonModifiers":"768"})", R"({"carbonKeyCode":49.5,"carbonModifiers":768})",
          R"({"carbonKeyCode":-1,"carbonModifiers":768})", R"({"carbonKeyCode":4294967296,"carbonModifiers":768})",
          R"({"carbonKeyCode":true,"carbonModifiers":768})", R"({"carbonKeyCode":49,"carbonModifiers":768}x)",
          "{\"carbonKeyCode\":49,\"carbonModifiers\":768,\"\xff\":1}"})
        EXPECT_EQ(decodedShortcut(text), std::nullopt) << text;
}

TEST(ShortcutName, IsToldApartByItsRawValueAlone) {
    EXPECT_EQ(toggleWith, (ShortcutName{"toggleWith", std::nullopt}));
    EXPECT_NE(toggleWith, (ShortcutName{"other", toggleWith.defaultShortcut}));
}

TEST_F(KeyboardShortcutsTest, AFreshStoreGetsTheDefaultAndItsHotKeyAtOnce) {
    shortcuts.define(toggleWith);
    EXPECT_EQ(defaults.get(toggleKey), Value(std::string(R"({"carbonKeyCode":49,"carbonModifiers":768})")));
    EXPECT_EQ(held(), std::vector{shiftCommandSpace});
    EXPECT_EQ(shortcuts.getShortcut(toggleWith), toggleWith.defaultShortcut);
}

TEST_F(KeyboardShortcutsTest, AClearedShortcutStaysCleared) {
    defaults.set(toggleKey, false);
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    EXPECT_EQ(defaults.get(toggleKey), Value(false));
    EXPECT_EQ(shortcuts.getShortcut(toggleWith), std::nullopt);
    EXPECT_TRUE(held().empty());
}

TEST_F(KeyboardShortcutsTest, AValueOfAnotherKindIsNoShortcutAndStays) {
    for (const Value& value : {Value(true), Value(768.0), Value(std::string("shift command space"))}) {
        defaults.set(toggleKey, value);
        shortcuts.define(toggleWith);
        EXPECT_EQ(shortcuts.getShortcut(toggleWith), std::nullopt);
        EXPECT_EQ(defaults.get(toggleKey), value);
    }
}

TEST_F(KeyboardShortcutsTest, TheUsersChoiceIsKeptOverTheDefault) {
    defaults.set(toggleKey, encoded(controlAShortcut));
    shortcuts.define(toggleWith);
    EXPECT_TRUE(held().empty());  // until somebody listens
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    EXPECT_EQ(held(), std::vector{controlA});
}

TEST_F(KeyboardShortcutsTest, APressRunsTheHandlersInTheOrderOfAdding) {
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("first"));
    shortcuts.onKeyDown(toggleWith, writes("second"));
    shortcuts.onKeyUp(toggleWith, writes("up"));
    EXPECT_EQ(held().size(), 1u);
    EXPECT_TRUE(hotKeys.press(shiftCommandSpace));
    EXPECT_EQ(journal, (Journal{"first", "second", "up"}));
}

TEST_F(KeyboardShortcutsTest, ClearingWritesFalseAndGivesTheHotKeyUpAtOnce) {
    shortcuts.define(toggleWith);
    shortcuts.setShortcut(std::nullopt, toggleWith);
    EXPECT_EQ(defaults.get(toggleKey), Value(false));
    EXPECT_TRUE(held().empty());
}

TEST_F(KeyboardShortcutsTest, ClearingANameWithoutADefaultRemovesItsKey) {
    shortcuts.setShortcut(controlAShortcut, plainName);
    EXPECT_EQ(held(), std::vector{controlA});
    shortcuts.setShortcut(std::nullopt, plainName);
    EXPECT_EQ(defaults.get("KeyboardShortcuts_plain"), std::nullopt);
    EXPECT_TRUE(held().empty());
}

TEST_F(KeyboardShortcutsTest, ClearingWhatIsClearDoesNothing) {
    const auto token =
        shortcuts.onShortcutByNameDidChange([&](const ShortcutName& name) { journal.push_back(name.rawValue); });
    shortcuts.setShortcut(std::nullopt, toggleWith);
    EXPECT_EQ(defaults.get(toggleKey), std::nullopt);
    EXPECT_EQ(journal, Journal{});
}

TEST_F(KeyboardShortcutsTest, AChangeIsToldByName) {
    const auto token =
        shortcuts.onShortcutByNameDidChange([&](const ShortcutName& name) { journal.push_back(name.rawValue); });
    shortcuts.define(toggleWith);
    shortcuts.setShortcut(controlAShortcut, toggleWith);
    shortcuts.setShortcut(std::nullopt, toggleWith);
    EXPECT_EQ(journal, (Journal{"toggleWith", "toggleWith", "toggleWith"}));
}

TEST_F(KeyboardShortcutsTest, ANewShortcutTakesTheOldOnesPlaceBeforeTheStoreChanges) {
    shortcuts.define(toggleWith);
    std::vector<Chord> heldAtWriting;
    const auto token = defaults.onChange([&](std::string_view) { heldAtWriting = held(); });
    shortcuts.setShortcut(controlAShortcut, toggleWith);
    EXPECT_EQ(heldAtWriting, std::vector{controlA});
    EXPECT_EQ(held(), std::vector{controlA});
    EXPECT_EQ(heldIds(), std::vector{2u});  // an id is never used again
}

TEST_F(KeyboardShortcutsTest, WhilePausedNoHandlerIsCalledThoughTheHotKeyIsHeld) {
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    shortcuts.isPaused = true;
    EXPECT_TRUE(hotKeys.press(shiftCommandSpace));
    EXPECT_EQ(journal, Journal{});
    shortcuts.isPaused = false;
    hotKeys.press(shiftCommandSpace);
    EXPECT_EQ(journal, Journal{"toggled"});
}

TEST_F(KeyboardShortcutsTest, SettingEnabledToItsValueDoesNothing) {
    shortcuts.define(toggleWith);
    const auto before = hotKeys.registered();
    shortcuts.setEnabled(true);
    EXPECT_EQ(hotKeys.registered(), before);
    shortcuts.setEnabled(false);
    shortcuts.setEnabled(false);
    EXPECT_TRUE(held().empty());
}

TEST_F(KeyboardShortcutsTest, OffAndOnRestoresTheHotKeysWithTheirOldIds) {
    shortcuts.define(toggleWith);
    shortcuts.setShortcut(controlAShortcut, plainName);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    const auto before = hotKeys.registered();
    EXPECT_EQ(before.size(), 2u);
    shortcuts.setEnabled(false);
    EXPECT_TRUE(held().empty());
    EXPECT_FALSE(hotKeys.press(shiftCommandSpace));
    shortcuts.setEnabled(true);
    EXPECT_EQ(hotKeys.registered(), before);
    hotKeys.press(shiftCommandSpace);
    EXPECT_EQ(journal, Journal{"toggled"});
}

TEST_F(KeyboardShortcutsTest, AHotKeyLostWhileOffLeavesTheRestAndIsSilent) {
    shortcuts.define(toggleWith);
    shortcuts.setShortcut(controlAShortcut, plainName);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    shortcuts.setEnabled(false);
    hotKeys.takenByOthers.insert(shiftCommandSpace);
    shortcuts.setEnabled(true);
    EXPECT_EQ(held(), std::vector{controlA});
    EXPECT_EQ(heldIds(), std::vector{2u});
    EXPECT_FALSE(hotKeys.press(shiftCommandSpace));
    EXPECT_EQ(journal, Journal{});
}

TEST_F(KeyboardShortcutsTest, WhatIsTakenWhileOffIsNotServed) {
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(plainName, writes("plain"));
    shortcuts.setEnabled(false);
    shortcuts.setShortcut(controlAShortcut, plainName);
    hotKeys.press(controlA);
    EXPECT_EQ(journal, Journal{});
    shortcuts.setEnabled(true);
    hotKeys.press(controlA);
    EXPECT_EQ(journal, Journal{"plain"});
}

TEST_F(KeyboardShortcutsTest, StartingDisabledHoldsNothingUntilEnabled) {
    shortcuts.setEnabled(false);
    shortcuts.define(toggleWith);
    EXPECT_TRUE(held().empty());
    shortcuts.setEnabled(true);
    EXPECT_EQ(held(), std::vector{shiftCommandSpace});
}

TEST_F(KeyboardShortcutsTest, AShortcutThatAnotherProgramHoldsGivesNoHotKeyAndNoMessage) {
    hotKeys.takenByOthers.insert(shiftCommandSpace);
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    EXPECT_TRUE(held().empty());
    EXPECT_EQ(shortcuts.getShortcut(toggleWith), toggleWith.defaultShortcut);
    shortcuts.setShortcut(controlAShortcut, toggleWith);
    EXPECT_EQ(held(), std::vector{controlA});
    hotKeys.press(controlA);
    EXPECT_EQ(journal, Journal{"toggled"});
}

// A key that another program holds ------------------------------------------------------------------------------------

TEST_F(KeyboardShortcutsTest, OnceFreeAShortcutIsServedFromItsFirstPressOn) {
    hotKeys.takenByOthers.insert(shiftCommandSpace);
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    shortcuts.onKeyUp(toggleWith, writes("up"));
    hotKeys.press(shiftCommandSpace);
    EXPECT_EQ(journal, Journal{});
    hotKeys.takenByOthers.clear();
    EXPECT_TRUE(held().empty());
    hotKeys.press(shiftCommandSpace);
    EXPECT_EQ(journal, (Journal{"toggled", "up"}));
    EXPECT_EQ(held(), std::vector{shiftCommandSpace});
    hotKeys.press(shiftCommandSpace);
    EXPECT_EQ(journal, (Journal{"toggled", "up", "toggled", "up"}));
}

TEST_F(KeyboardShortcutsTest, WhatWasLostWhileOffIsServedOnceFree) {
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    shortcuts.setEnabled(false);
    hotKeys.takenByOthers.insert(shiftCommandSpace);
    shortcuts.setEnabled(true);
    hotKeys.takenByOthers.clear();
    hotKeys.press(shiftCommandSpace);
    EXPECT_EQ(journal, Journal{"toggled"});
}

TEST_F(KeyboardShortcutsTest, OtherKeysDoNotTakeAFreedOne) {
    hotKeys.takenByOthers.insert(shiftCommandSpace);
    shortcuts.define(toggleWith);
    hotKeys.takenByOthers.clear();
    for (const Chord& other : {Chord{49, 0}, Chord{49, 0x100}, Chord{49, 0x1b00}, Chord{48, 0x300}})
        EXPECT_FALSE(hotKeys.press(other));
    EXPECT_TRUE(held().empty());
}

TEST_F(KeyboardShortcutsTest, OnlyWhileAKeyIsRefusedAreKeysListenedTo) {
    shortcuts.define(toggleWith);
    EXPECT_FALSE(hotKeys.hearsRawKeys());
    hotKeys.takenByOthers.insert(controlA);
    shortcuts.setShortcut(controlAShortcut, plainName);
    EXPECT_TRUE(hotKeys.hearsRawKeys());
    shortcuts.setEnabled(false);
    EXPECT_FALSE(hotKeys.hearsRawKeys());
    shortcuts.setEnabled(true);
    EXPECT_TRUE(hotKeys.hearsRawKeys());
    hotKeys.takenByOthers.clear();
    hotKeys.press(controlA);
    EXPECT_FALSE(hotKeys.hearsRawKeys());
}

TEST_F(KeyboardShortcutsTest, ARefusedShortcutThatWasReplacedIsNotTakenLater) {
    hotKeys.takenByOthers.insert(shiftCommandSpace);
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    shortcuts.setShortcut(controlAShortcut, toggleWith);
    hotKeys.takenByOthers.clear();
    EXPECT_FALSE(hotKeys.press(shiftCommandSpace));
    EXPECT_EQ(held(), std::vector{controlA});
    EXPECT_EQ(journal, Journal{});
}

TEST_F(KeyboardShortcutsTest, AFreedShortcutIsTakenWhilePausedButNoHandlerIsCalled) {
    hotKeys.takenByOthers.insert(shiftCommandSpace);
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    hotKeys.takenByOthers.clear();
    shortcuts.isPaused = true;
    hotKeys.press(shiftCommandSpace);
    EXPECT_EQ(held(), std::vector{shiftCommandSpace});
    EXPECT_EQ(journal, Journal{});
}

TEST_F(KeyboardShortcutsTest, TheHandlerOfAFreedShortcutMayReplaceIt) {
    hotKeys.takenByOthers.insert(shiftCommandSpace);
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, [&] { shortcuts.setShortcut(controlAShortcut, toggleWith); });
    shortcuts.onKeyUp(toggleWith, writes("up"));
    hotKeys.takenByOthers.clear();
    hotKeys.press(shiftCommandSpace);
    EXPECT_EQ(held(), std::vector{controlA});
    EXPECT_EQ(journal, Journal{});
}

// A menu that keeps hot keys from firing ------------------------------------------------------------------------------

TEST_F(KeyboardShortcutsTest, WithAMenuOpenAPressIsServedAndDoesNotReachTheMenu) {
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    shortcuts.onKeyUp(toggleWith, writes("up"));
    hotKeys.openMenu();
    EXPECT_TRUE(shortcuts.isMenuOpen());
    EXPECT_TRUE(held().empty());
    EXPECT_TRUE(hotKeys.press(shiftCommandSpace));
    EXPECT_EQ(journal, (Journal{"toggled", "up"}));
}

TEST_F(KeyboardShortcutsTest, WithAMenuOpenAnotherKeyPassesOn) {
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    hotKeys.openMenu();
    for (const Chord& other : {Chord{49, 0}, Chord{49, 0x100}, Chord{49, 0x1b00}, Chord{125, 0}})
        EXPECT_FALSE(hotKeys.press(other));
    EXPECT_EQ(journal, Journal{});
}

TEST_F(KeyboardShortcutsTest, WithAMenuOpenOnlyTheFourModifiersCount) {
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    hotKeys.openMenu();
    constexpr std::uint32_t capsLock = 0x400, rightShift = 0x2000;
    EXPECT_TRUE(hotKeys.press({49, 0x300 | capsLock | rightShift}));
    EXPECT_EQ(journal, Journal{"toggled"});
}

TEST_F(KeyboardShortcutsTest, AfterTheMenuTheHotKeysAreBackWithTheirOldIds) {
    shortcuts.define(toggleWith);
    shortcuts.setShortcut(controlAShortcut, plainName);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    const auto before = hotKeys.registered();
    hotKeys.openMenu();
    hotKeys.closeMenu();
    EXPECT_FALSE(shortcuts.isMenuOpen());
    EXPECT_EQ(hotKeys.registered(), before);
    EXPECT_FALSE(hotKeys.hearsRawKeys());
    EXPECT_TRUE(hotKeys.press(shiftCommandSpace));
    EXPECT_EQ(journal, Journal{"toggled"});
}

TEST_F(KeyboardShortcutsTest, WhilePausedAPressInAMenuIsKeptFromItAndNoHandlerIsCalled) {
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    shortcuts.isPaused = true;
    hotKeys.openMenu();
    EXPECT_TRUE(hotKeys.press(shiftCommandSpace));
    EXPECT_EQ(journal, Journal{});
}

TEST_F(KeyboardShortcutsTest, WhileDisabledAMenuGetsItsKeys) {
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    hotKeys.openMenu();
    shortcuts.setEnabled(false);
    EXPECT_FALSE(hotKeys.press(shiftCommandSpace));
    shortcuts.setEnabled(true);  // the menu is still open
    EXPECT_TRUE(held().empty());
    EXPECT_TRUE(hotKeys.press(shiftCommandSpace));
    shortcuts.setEnabled(false);
    hotKeys.closeMenu();
    EXPECT_TRUE(held().empty());
    shortcuts.setEnabled(true);
    EXPECT_TRUE(hotKeys.press(shiftCommandSpace));
    EXPECT_EQ(journal, (Journal{"toggled", "toggled"}));
}

TEST_F(KeyboardShortcutsTest, TheHandlerOfAPressInAMenuMayReplaceTheShortcut) {
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, [&] {
        journal.push_back("replacing");
        shortcuts.setShortcut(controlAShortcut, toggleWith);
    });
    hotKeys.openMenu();
    EXPECT_TRUE(hotKeys.press(shiftCommandSpace));
    hotKeys.closeMenu();
    EXPECT_EQ(journal, Journal{"replacing"});
    EXPECT_EQ(held(), std::vector{controlA});
}

TEST_F(KeyboardShortcutsTest, MenusThatNestOpenAndCloseOnce) {
    shortcuts.define(toggleWith);
    shortcuts.define(plainName);  // observes once all the same
    hotKeys.openMenu();
    hotKeys.openMenu();
    hotKeys.closeMenu();
    EXPECT_FALSE(shortcuts.isMenuOpen());
    EXPECT_EQ(heldIds(), std::vector{1u});
}

// What the desktop itself has taken -----------------------------------------------------------------------------------

TEST_F(KeyboardShortcutsTest, ADesktopThatSaysNothingReservesNothing) {
    EXPECT_EQ(shortcuts.systemReservedShortcuts(), std::vector<Shortcut>{});
}

TEST_F(KeyboardShortcutsTest, ReservedAreThoseThatAreEnabledAndWhollyTold) {
    hotKeys.desktopHotKeys = {{true, 49, 0x100},           {false, 48, 0x100},       {std::nullopt, 48, 0x100},
                              {true, std::nullopt, 0x100}, {true, 48, std::nullopt}, {true, 122, 0}};
    EXPECT_EQ(shortcuts.systemReservedShortcuts(), (std::vector<Shortcut>{{49, 0x100}, {122, 0}}));
}

TEST_F(KeyboardShortcutsTest, OfTheModifiersOfReservedShortcutsTheFourSurvive) {
    hotKeys.desktopHotKeys = {{true, 49, 0xffffffff}};
    EXPECT_EQ(shortcuts.systemReservedShortcuts(), (std::vector<Shortcut>{{49, 0x1b00}}));
}

TEST_F(KeyboardShortcutsTest, APressIsDispatchedByWhatTheStoreSaysAtThatMoment) {
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    hotKeys.press(shiftCommandSpace);
    defaults.setFromOutside(toggleKey, encoded(controlAShortcut));
    hotKeys.press(shiftCommandSpace);
    EXPECT_EQ(journal, Journal{"toggled"});
    defaults.setFromOutside(toggleKey, encoded({49, 0x300}));
    hotKeys.press(shiftCommandSpace);
    EXPECT_EQ(journal, (Journal{"toggled", "toggled"}));
}

TEST_F(KeyboardShortcutsTest, TheHotKeyFollowsWhatAnotherWriterStores) {
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    const Subscription told =
        shortcuts.onShortcutByNameDidChange([&](const ShortcutName& name) { journal.push_back(name.rawValue); });
    defaults.setFromOutside(toggleKey, Value(encoded(controlAShortcut)));
    EXPECT_EQ(held(), std::vector{controlA});
    hotKeys.press(controlA);
    EXPECT_EQ(journal, (Journal{"toggleWith", "toggled"}));
}

TEST_F(KeyboardShortcutsTest, WhatAnotherWriterClearsOrSpoilsIsGivenUpAndTheDefaultStaysAway) {
    shortcuts.define(toggleWith);
    for (const Value& value : {Value(false), Value(std::string("{}")), Value(1.0)}) {
        defaults.setFromOutside(toggleKey, value);
        EXPECT_TRUE(held().empty());
        defaults.setFromOutside(toggleKey, Value(encoded(controlAShortcut)));
        EXPECT_EQ(held(), std::vector{controlA});
    }
    defaults.remove(toggleKey);
    EXPECT_TRUE(held().empty());
    EXPECT_EQ(defaults.get(toggleKey), std::nullopt);
}

TEST_F(KeyboardShortcutsTest, AChangeOfAnythingElseLeavesTheHotKeyAlone) {
    shortcuts.define(toggleWith);
    const auto ids = heldIds();
    const Subscription told =
        shortcuts.onShortcutByNameDidChange([&](const ShortcutName& name) { journal.push_back(name.rawValue); });
    defaults.set("targetsColor", Value(std::string("custom")));
    defaults.setFromOutside("inputTextSize", Value(20.0));
    defaults.setFromOutside(toggleKey, Value(encoded(*toggleWith.defaultShortcut)));
    EXPECT_EQ(heldIds(), ids);
    EXPECT_TRUE(journal.empty());
}

TEST_F(KeyboardShortcutsTest, AChangeMadeHereIsToldOnce) {
    shortcuts.define(toggleWith);
    const Subscription told =
        shortcuts.onShortcutByNameDidChange([&](const ShortcutName& name) { journal.push_back(name.rawValue); });
    shortcuts.setShortcut(controlAShortcut, toggleWith);
    shortcuts.setShortcut(std::nullopt, toggleWith);
    EXPECT_EQ(journal, (Journal{"toggleWith", "toggleWith"}));
    EXPECT_TRUE(held().empty());
}

TEST_F(KeyboardShortcutsTest, TwoNamesWithOneShortcutShareItsHotKey) {
    shortcuts.define(toggleWith);
    shortcuts.setShortcut(toggleWith.defaultShortcut, plainName);
    shortcuts.onKeyDown(toggleWith, writes("toggled"));
    shortcuts.onKeyDown(plainName, writes("plain"));
    EXPECT_EQ(held().size(), 1u);
    hotKeys.press(shiftCommandSpace);
    EXPECT_EQ(journal, (Journal{"plain", "toggled"}));  // the names in their own order
}

TEST_F(KeyboardShortcutsTest, RemovingAllHandlersGivesTheirHotKeysUp) {
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, writes("old"));
    shortcuts.onKeyUp(plainName, writes("old"));
    shortcuts.setShortcut(controlAShortcut, plainName);
    shortcuts.removeAllHandlers();
    EXPECT_TRUE(held().empty());
    shortcuts.onKeyDown(toggleWith, writes("new"));
    hotKeys.press(shiftCommandSpace);
    EXPECT_EQ(journal, Journal{"new"});
}

TEST_F(KeyboardShortcutsTest, AHandlerMayReplaceItsShortcutAndAllHandlers) {
    shortcuts.define(toggleWith);
    shortcuts.onKeyDown(toggleWith, [&] {
        journal.push_back("replacing");
        shortcuts.removeAllHandlers();
        shortcuts.setShortcut(controlAShortcut, toggleWith);
    });
    const ShortcutName lookedAtAfterwards{"zoom", std::nullopt};
    defaults.set("KeyboardShortcuts_zoom", encoded({1, 0x100}));
    shortcuts.onKeyDown(lookedAtAfterwards, writes("zoom"));
    hotKeys.press(shiftCommandSpace);
    EXPECT_EQ(journal, Journal{"replacing"});
    EXPECT_EQ(held(), std::vector{controlA});
}

TEST(KeyboardShortcutsLifetime, WhatWasHeldIsGivenBackAtTheEnd) {
    SimulatedUserDefaults defaults;
    Faults faults;
    SimulatedHotKeys hotKeys{faults};
    {
        KeyboardShortcuts shortcuts(defaults, hotKeys);
        shortcuts.define(toggleWith);
        EXPECT_EQ(hotKeys.registered().size(), 1u);
    }
    EXPECT_TRUE(hotKeys.registered().empty());
}

}  // namespace
}  // namespace tarvix
