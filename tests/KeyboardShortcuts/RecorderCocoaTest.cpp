#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "KeyboardShortcuts/RecorderCocoa.h"
#include "simulated/SimulatedHotKeys.h"
#include "simulated/SimulatedInputSources.h"
#include "simulated/SimulatedRunLoop.h"
#include "simulated/SimulatedUserDefaults.h"
#include "tests/KeyboardShortcuts/SimulatedRecorderField.h"

namespace tarvix {
namespace {

using Chord = SimulatedHotKeys::Chord;
using Changes = std::vector<std::optional<Shortcut>>;

constexpr std::uint64_t command = eventFlag::command, shift = eventFlag::shift, option = eventFlag::option,
                        control = eventFlag::control;
constexpr std::uint64_t capsLock = 0x10000, numericPad = 0x200000, function = 0x800000, help = 0x400000;

constexpr std::uint16_t s = 1, q = 12, k = 40, comma = 43, space = 49, f5 = 96;

const std::string toggleKey = "KeyboardShortcuts_toggleWith";
const ShortcutName otherName{"other", std::nullopt};

MenuItem item(const char* title, const char* equivalent, std::uint64_t mask = command) {
    MenuItem made;
    made.title = title;
    made.keyEquivalent = equivalent;
    made.keyEquivalentModifierMask = mask;
    return made;
}

MenuItem submenu(const char* title, Menu items) {
    MenuItem made = item(title, "");
    made.submenu = std::move(items);
    return made;
}

LocalEvent press(std::optional<std::uint16_t> keyCode, std::uint64_t flags = 0,
                 std::optional<SpecialKey> special = std::nullopt) {
    return {LocalEventType::keyDown, {}, keyCode, flags, special};
}
const LocalEvent tabKey = press(48, 0, SpecialKey::tab);
const LocalEvent escapeKey = press(53);
LocalEvent mouseUp(double x, double y, LocalEventType type = LocalEventType::leftMouseUp) {
    return {type, {x, y}, std::nullopt, 0, std::nullopt};
}

struct RecorderTest : testing::Test {
    SimulatedUserDefaults defaults;
    Faults faults;
    SimulatedHotKeys hotKeys{faults};
    SimulatedInputSources inputSources;
    SimulatedRunLoop runLoop;
    KeyboardShortcuts shortcuts{defaults, hotKeys};
    Menu menu{submenu("Tarvix", {item("Settings...", ","), item("Quit Tarvix", "q")}),
              submenu("File", {item("Close", "w"), submenu("Export", {item("As Picture", "P", command)})})};
    SimulatedRecorderField field;
    Changes changes;
    int toggled = 0;
    std::optional<RecorderCocoa> recorder;

    void SetUp() override {
        shortcuts.define(toggleWith);
        shortcuts.onKeyDown(toggleWith, [this] { ++toggled; });
        open(toggleWith);
    }
    void open(const ShortcutName& name, RecorderLanguage language = RecorderLanguage::english) {
        field.recorder = nullptr;
        recorder.emplace(field, RecorderParts{shortcuts, inputSources, runLoop, [this] { return menu; }, language},
                         name, [this](const std::optional<Shortcut>& changed) { changes.push_back(changed); });
        field.recorder = &*recorder;
    }
    // Begins to record, and lets the desktop answer what it has taken.
    void record() {
        field.focus();
        runLoop.settle();
    }
    bool isSwallowed(const LocalEvent& event) {
        const bool swallowed = !field.reachesTheWindow(event);
        runLoop.settle();
        return swallowed;
    }
    void expectRecording(bool isRecording) const {
        EXPECT_EQ(recorder->isRecording(), isRecording);
        EXPECT_EQ(field.isFirstResponder, isRecording);
        EXPECT_EQ(shortcuts.isPaused, isRecording);
        EXPECT_EQ(field.placeholder, isRecording ? "Press Shortcut" : "Record Shortcut");
        EXPECT_EQ(field.hasInsertionPoint, !isRecording);
        EXPECT_EQ(field.hasCancelButton, !field.text.empty());
    }
    std::optional<Shortcut> stored() const { return shortcuts.getShortcut(toggleWith); }
    void expectUnchanged() const {
        EXPECT_EQ(stored(), toggleWith.defaultShortcut);
        EXPECT_EQ(field.text, "⇧⌘Space");
        EXPECT_EQ(changes, Changes{});
    }
    void expectSaved(const Shortcut& shortcut, const std::string& text) {
        EXPECT_EQ(stored(), shortcut);
        EXPECT_EQ(field.text, text);
        EXPECT_EQ(changes, Changes{shortcut});
        expectRecording(false);
        EXPECT_EQ(hotKeys.registered().size(), 1u);
        EXPECT_EQ(hotKeys.registered().begin()->second, Chord(shortcut.carbonKeyCode, shortcut.carbonModifiers));
    }
};

// Showing -------------------------------------------------------------------------------------------------------------

TEST_F(RecorderTest, AtRestItShowsThePresentShortcut) {
    EXPECT_EQ(field.text, "⇧⌘Space");
    EXPECT_EQ(field.spoken, "Shift+Super+Space");
    expectRecording(false);
}

TEST_F(RecorderTest, WithoutAShortcutItIsEmptyAndHasNoCancelButton) {
    open(otherName);
    EXPECT_EQ(field.text, "");
    EXPECT_EQ(field.spoken, "");
    EXPECT_FALSE(field.hasCancelButton);
}

TEST_F(RecorderTest, AnotherNameShowsThatNamesShortcut) {
    shortcuts.setShortcut(Shortcut{k, 0x800}, otherName);
    recorder->setShortcutName(otherName);
    EXPECT_EQ(field.text, "⌥K");
    recorder->setShortcutName({"third", std::nullopt});
    EXPECT_EQ(field.text, "");
    EXPECT_FALSE(field.hasCancelButton);
}

TEST_F(RecorderTest, AChangeOfItsNameElsewhereShowsAndOfAnotherDoesNot) {
    shortcuts.setShortcut(Shortcut{k, 0x800}, toggleWith);
    EXPECT_EQ(field.text, "⌥K");
    field.text = "untouched";
    shortcuts.setShortcut(Shortcut{q, 0x800}, otherName);
    EXPECT_EQ(field.text, "untouched");
    shortcuts.setShortcut(std::nullopt, toggleWith);
    EXPECT_EQ(field.text, "");
    EXPECT_FALSE(field.hasCancelButton);
}

TEST_F(RecorderTest, ItsTextsAreInTheUsersLanguage) {
    open(toggleWith, RecorderLanguage::spanish);
    EXPECT_EQ(field.placeholder, "Grabar atajo");
    record();
    EXPECT_EQ(field.placeholder, "Pulse el atajo");
    isSwallowed(press(q, command));
    EXPECT_EQ(field.alert, (RecorderAlert{"Este atajo ya es el del elemento de menú «Quit Tarvix».", "", {"Aceptar"}}));
}

// Recording begins and ends -------------------------------------------------------------------------------------------

TEST_F(RecorderTest, RecordingLastsAsLongAsItHasTheKeyboard) {
    record();
    expectRecording(true);
    expectUnchanged();
    field.makeFirstResponder(FirstResponder::none);
    expectRecording(false);
    EXPECT_FALSE(isSwallowed(press(k, option)));
    expectUnchanged();
}

TEST_F(RecorderTest, AWindowThatLosesTheKeyboardEndsRecording) {
    record();
    recorder->windowDidResignKey();
    expectRecording(false);
    expectUnchanged();
}

TEST_F(RecorderTest, AWindowThatClosesEndsRecording) {
    record();
    field.closeWindow();
    expectRecording(false);
    expectUnchanged();
    field.focus();
    EXPECT_FALSE(shortcuts.isPaused);
}

TEST_F(RecorderTest, ANewWindowLeavesItAtRest) {
    recorder->viewDidMoveToWindow(true);
    expectRecording(false);
    record();
    recorder->viewDidMoveToWindow(true);
    expectRecording(true);
}

TEST_F(RecorderTest, ARecorderThatGoesWhileRecordingPausesNothingAnyLonger) {
    record();
    field.recorder = nullptr;
    recorder.reset();
    EXPECT_FALSE(shortcuts.isPaused);
    hotKeys.press({space, 0x300});
    EXPECT_EQ(toggled, 1);
}

TEST_F(RecorderTest, AnEventAfterTheRecorderHasGoneIsSwallowed) {
    record();
    const auto kept = field.lastSeen;
    field.recorder = nullptr;
    recorder.reset();
    EXPECT_EQ((*kept)(tabKey), Verdict::consume);
}

// The mouse -----------------------------------------------------------------------------------------------------------

TEST_F(RecorderTest, AClickInTheMarginKeepsRecording) {
    record();
    for (const auto& [x, y] : {std::pair{0.0, 0.0}, {65.0, 11.0}, {-3.0, -3.0}, {132.9, 24.9}, {-2.5, 11.0}}) {
        EXPECT_TRUE(isSwallowed(mouseUp(x, y))) << x << " " << y;
        EXPECT_TRUE(isSwallowed(mouseUp(x, y, LocalEventType::rightMouseUp))) << x << " " << y;
    }
    expectRecording(true);
}

TEST_F(RecorderTest, AClickFurtherOffEndsRecordingAndReachesItsTarget) {
    for (const auto type : {LocalEventType::leftMouseUp, LocalEventType::rightMouseUp})
        for (const auto& [x, y] : {std::pair{-3.1, 11.0}, {133.0, 11.0}, {65.0, -3.1}, {65.0, 25.0}, {500.0, 500.0}}) {
            record();
            EXPECT_FALSE(isSwallowed(mouseUp(x, y, type))) << x << " " << y;
            expectRecording(false);
            expectUnchanged();
        }
}

TEST_F(RecorderTest, KeysAndMouseUpsAreAllItListensTo) {
    record();
    EXPECT_FALSE(isSwallowed({LocalEventType::keyUp, {}, k, option, std::nullopt}));
    expectRecording(true);
    EXPECT_EQ(field.beeps, 0);
}

// Keys that aren't recorded -------------------------------------------------------------------------------------------

TEST_F(RecorderTest, TabMovesTheFocusOn) {
    record();
    EXPECT_FALSE(isSwallowed(tabKey));
    expectRecording(false);
    expectUnchanged();
}

TEST_F(RecorderTest, EscapeEndsWithoutAChange) {
    record();
    EXPECT_TRUE(isSwallowed(escapeKey));
    expectRecording(false);
    expectUnchanged();
}

TEST_F(RecorderTest, LocksTheKeypadAndTheFunctionKeyDoNotMakeAKeyLessPlain) {
    LocalEvent event = escapeKey;
    event.modifierFlags = capsLock | numericPad | function | 0x100;
    record();
    EXPECT_TRUE(isSwallowed(event));
    expectRecording(false);
    EXPECT_EQ(field.beeps, 0);
}

TEST_F(RecorderTest, AnyOtherModifierDoes) {
    record();
    LocalEvent event = tabKey;
    event.modifierFlags = shift;
    EXPECT_TRUE(isSwallowed(event));  // as any key with shift alone
    EXPECT_EQ(field.beeps, 1);
    event.modifierFlags = help;
    EXPECT_TRUE(isSwallowed(event));
    expectSaved({48, 0}, "⇥");
}

TEST_F(RecorderTest, TheDeleteKeysClearTheShortcutAndRecordingGoesOn) {
    for (const SpecialKey key : {SpecialKey::delete_, SpecialKey::deleteForward, SpecialKey::backspace}) {
        shortcuts.setShortcut(toggleWith.defaultShortcut, toggleWith);
        changes.clear();
        record();
        EXPECT_TRUE(isSwallowed(press(51, 0, key)));
        EXPECT_EQ(defaults.get(toggleKey), UserDefaults::Value(false));
        EXPECT_TRUE(hotKeys.registered().empty());
        EXPECT_EQ(field.text, "");
        EXPECT_EQ(changes, Changes{std::nullopt});
        expectRecording(true);
    }
}

TEST_F(RecorderTest, DeleteWithAModifierIsAShortcut) {
    record();
    EXPECT_TRUE(isSwallowed(press(51, option, SpecialKey::delete_)));
    expectSaved({51, 0x800}, "⌥⌫");
}

TEST_F(RecorderTest, AKeyAloneOrWithShiftIsRefused) {
    record();
    int beeps = 0;
    for (const std::uint16_t keyCode : {s, space, std::uint16_t{36}, std::uint16_t{123}, std::uint16_t{82}})
        for (const std::uint64_t flags : {std::uint64_t{0}, shift, shift | capsLock}) {
            EXPECT_TRUE(isSwallowed(press(keyCode, flags)));
            EXPECT_EQ(field.beeps, ++beeps);
        }
    expectRecording(true);
    expectUnchanged();
}

TEST_F(RecorderTest, AKeyThatHasNoPlaceIsRefused) {
    record();
    EXPECT_TRUE(isSwallowed(press(std::nullopt, command)));
    EXPECT_TRUE(isSwallowed(press(std::nullopt, 0, SpecialKey::function)));
    EXPECT_EQ(field.beeps, 2);
    expectRecording(true);
    expectUnchanged();
}

// Keys that are -------------------------------------------------------------------------------------------------------

TEST_F(RecorderTest, ALetterWithAModifierIsSavedAndTheHotKeyFollowsAtOnce) {
    record();
    EXPECT_TRUE(isSwallowed(press(k, option)));
    expectSaved({k, 0x800}, "⌥K");
    EXPECT_EQ(field.spoken, "Alt+K");
    EXPECT_EQ(defaults.get(toggleKey),
              UserDefaults::Value(std::string(R"({"carbonKeyCode":40,"carbonModifiers":2048})")));
    hotKeys.press({k, 0x800});
    EXPECT_EQ(toggled, 1);
    EXPECT_FALSE(hotKeys.press({space, 0x300}));
    EXPECT_EQ(toggled, 1);
}

TEST_F(RecorderTest, AFunctionKeyIsSavedAloneAndWithShift) {
    record();
    EXPECT_TRUE(isSwallowed(press(f5, 0, SpecialKey::function)));
    expectSaved({f5, 0}, "F5");
    changes.clear();
    record();
    EXPECT_TRUE(isSwallowed(press(f5, shift, SpecialKey::function)));
    expectSaved({f5, 0x200}, "⇧F5");
}

TEST_F(RecorderTest, OnlyTheFourModifiersAreSaved) {
    record();
    EXPECT_TRUE(isSwallowed(press(k, control | capsLock | numericPad | function)));
    expectSaved({k, 0x1000}, "⌃K");
}

TEST_F(RecorderTest, ARecorderWithoutAMenuAndWithoutAListenerWorks) {
    field.recorder = nullptr;
    recorder.emplace(field, RecorderParts{shortcuts, inputSources, runLoop, nullptr}, toggleWith);
    field.recorder = &*recorder;
    record();
    EXPECT_TRUE(isSwallowed(press(q, command)));
    EXPECT_EQ(stored(), (Shortcut{q, 0x100}));
    field.pressCancelButton();
    EXPECT_EQ(stored(), std::nullopt);
}

// The present shortcut ------------------------------------------------------------------------------------------------

TEST_F(RecorderTest, PressingThePresentShortcutIsRecordedAndStartsNothing) {
    record();
    EXPECT_TRUE(hotKeys.press({space, 0x300}));
    runLoop.settle();
    EXPECT_EQ(toggled, 0);
    expectSaved({space, 0x300}, "⇧⌘Space");
    hotKeys.press({space, 0x300});
    EXPECT_EQ(toggled, 1);
}

TEST_F(RecorderTest, APresentFunctionKeyIsRecordedToo) {
    shortcuts.setShortcut(Shortcut{f5, 0}, toggleWith);
    record();
    EXPECT_TRUE(hotKeys.press({f5, 0}));
    runLoop.settle();
    EXPECT_EQ(toggled, 0);
    EXPECT_EQ(field.beeps, 0);
    expectSaved({f5, 0}, "F5");
}

TEST_F(RecorderTest, APresentShortcutOfNoUseMeansWhatItsKeyMeans) {
    shortcuts.setShortcut(Shortcut{51, 0}, toggleWith);  // by hand, in the file
    record();
    hotKeys.press({51, 0});
    runLoop.settle();
    EXPECT_EQ(stored(), std::nullopt);
    EXPECT_EQ(toggled, 0);
}

TEST_F(RecorderTest, APressThatComesTooLateIsDropped) {
    record();
    hotKeys.press({space, 0x300});
    field.makeFirstResponder(FirstResponder::none);
    runLoop.settle();
    EXPECT_EQ(changes, Changes{});
    EXPECT_EQ(toggled, 0);
}

// The cancel button ---------------------------------------------------------------------------------------------------

TEST_F(RecorderTest, TheCancelButtonStoresFalseAndTheFieldIsReadyToRecord) {
    field.pressCancelButton();
    EXPECT_EQ(defaults.get(toggleKey), UserDefaults::Value(false));
    EXPECT_EQ(changes, Changes{std::nullopt});
    expectRecording(true);
    runLoop.settle();
    changes.clear();
    EXPECT_TRUE(isSwallowed(press(k, option)));
    expectSaved({k, 0x800}, "⌥K");
}

TEST_F(RecorderTest, TheCancelButtonOfANameWithoutADefaultRemovesItsKey) {
    shortcuts.setShortcut(Shortcut{k, 0x800}, otherName);
    open(otherName);
    field.pressCancelButton();
    EXPECT_EQ(defaults.get("KeyboardShortcuts_other"), std::nullopt);
    expectRecording(true);
}

TEST_F(RecorderTest, ATextThatIsNotEmptyClearsNothing) {
    recorder->controlTextDidChange();
    expectUnchanged();
    expectRecording(false);
}

// Taken shortcuts -----------------------------------------------------------------------------------------------------

TEST_F(RecorderTest, AnItemOfTheMenuBringsItsAlertAndIsNotSaved) {
    record();
    EXPECT_TRUE(isSwallowed(press(comma, command)));
    EXPECT_EQ(field.alert,
              (RecorderAlert{"This shortcut is already taken by the menu item “Settings...”.", "", {"OK"}}));
    EXPECT_FALSE(field.wasRecordingAtAlert);
    expectRecording(false);
    field.answer(alertResponse::first);
    expectRecording(true);
    expectUnchanged();
}

TEST_F(RecorderTest, AnItemOfASubmenuDoesToo) {
    record();
    EXPECT_TRUE(isSwallowed(press(35, command | shift)));
    ASSERT_TRUE(field.alert);
    EXPECT_EQ(field.alert->title, "This shortcut is already taken by the menu item “As Picture”.");
    field.answer(alertResponse::first);
    expectRecording(true);
    expectUnchanged();
}

TEST_F(RecorderTest, TheMenuIsAskedBeforeTheSystem) {
    hotKeys.desktopHotKeys = {{true, q, 0x100}};
    record();
    isSwallowed(press(q, command));
    ASSERT_TRUE(field.alert);
    EXPECT_EQ(field.alert->buttons.size(), 1u);
}

TEST_F(RecorderTest, AShortcutOfTheSystemBringsItsAlertAndOkKeepsRecording) {
    hotKeys.desktopHotKeys = {{true, 118, 0x800}};
    record();
    EXPECT_TRUE(isSwallowed(press(118, option, SpecialKey::function)));
    EXPECT_EQ(field.alert,
              (RecorderAlert{"This shortcut is already taken by the system.",
                             "Most of the system’s shortcuts can be changed in the keyboard settings of your desktop.",
                             {"OK", "Use Anyway"}}));
    EXPECT_FALSE(field.wasRecordingAtAlert);
    expectRecording(false);
    field.answer(alertResponse::first);
    runLoop.settle();
    expectRecording(true);
    expectUnchanged();
    EXPECT_TRUE(isSwallowed(press(k, option)));
    expectSaved({k, 0x800}, "⌥K");
}

TEST_F(RecorderTest, AShortcutOfTheSystemIsSavedIfTheUserInsists) {
    hotKeys.desktopHotKeys = {{true, 118, 0x800}};
    record();
    isSwallowed(press(118, option, SpecialKey::function));
    EXPECT_EQ(changes, Changes{});
    field.answer(alertResponse::second);
    expectSaved({118, 0x800}, "⌥F4");
}

TEST_F(RecorderTest, WhatTheSystemHasTurnedOffIsFree) {
    hotKeys.desktopHotKeys = {{false, 118, 0x800}, {true, 118, 0x900}, {true, 117, 0x800}};
    record();
    isSwallowed(press(118, option, SpecialKey::function));
    EXPECT_FALSE(field.alert);
    expectSaved({118, 0x800}, "⌥F4");
}

TEST_F(RecorderTest, AnAlertThatGoesWithItsWindowHarmsNothing) {
    hotKeys.desktopHotKeys = {{true, 118, 0x800}};
    record();
    isSwallowed(press(118, option, SpecialKey::function));
    field.recorder = nullptr;
    recorder.reset();
    field.answer(alertResponse::second);
    EXPECT_EQ(stored(), toggleWith.defaultShortcut);
    EXPECT_FALSE(shortcuts.isPaused);
}

TEST_F(RecorderTest, AfterAnAlertWhoseWindowHasClosedNothingRecords) {
    record();
    isSwallowed(press(q, command));
    field.hasWindow = false;
    field.answer(alertResponse::first);
    expectRecording(false);
}

// A desktop that takes its time to say what it has taken --------------------------------------------------------------

TEST_F(RecorderTest, TheSystemIsAskedInTheBackgroundWhenRecordingBegins) {
    hotKeys.desktopHotKeys = {{true, 118, 0x800}};
    field.focus();
    expectRecording(true);
    EXPECT_EQ(runLoop.waitingBodies(), 1u);
    EXPECT_FALSE(field.reachesTheWindow(press(118, option, SpecialKey::function)));
    EXPECT_FALSE(field.alert);
    EXPECT_EQ(changes, Changes{});
    expectRecording(true);
    runLoop.settle();
    ASSERT_TRUE(field.alert);
    EXPECT_EQ(field.alert->buttons.size(), 2u);
}

TEST_F(RecorderTest, APressThatWaitsForTheAnswerIsSavedWithIt) {
    field.focus();
    EXPECT_FALSE(field.reachesTheWindow(press(k, option)));
    EXPECT_EQ(stored(), toggleWith.defaultShortcut);
    runLoop.settle();
    expectSaved({k, 0x800}, "⌥K");
}

TEST_F(RecorderTest, OfTwoPressesThatWaitTheLaterOneCounts) {
    field.focus();
    EXPECT_FALSE(field.reachesTheWindow(press(k, option)));
    EXPECT_FALSE(field.reachesTheWindow(press(s, option)));
    runLoop.settle();
    expectSaved({s, 0x800}, "⌥S");
}

TEST_F(RecorderTest, APressThatWaitsIsDroppedWithTheRecording) {
    field.focus();
    EXPECT_FALSE(field.reachesTheWindow(press(k, option)));
    EXPECT_FALSE(field.reachesTheWindow(escapeKey));
    runLoop.settle();
    expectRecording(false);
    expectUnchanged();
}

TEST_F(RecorderTest, AnAnswerAfterTheRecorderHasGoneHarmsNothing) {
    field.focus();
    field.recorder = nullptr;
    recorder.reset();
    runLoop.settle();
    EXPECT_EQ(stored(), toggleWith.defaultShortcut);
}

TEST_F(RecorderTest, EachRecordingAsksAnew) {
    record();
    field.makeFirstResponder(FirstResponder::none);
    hotKeys.desktopHotKeys = {{true, k, 0x800}};
    record();
    isSwallowed(press(k, option));
    EXPECT_TRUE(field.alert);
}

}  // namespace
}  // namespace tarvix
