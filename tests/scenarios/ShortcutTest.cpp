// The global shortcut on a desktop where others want the key too.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KeyboardShortcuts/Shortcut.h"
#include "tests/scenarios/SearchScenario.h"

namespace tarvix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kStored = "KeyboardShortcuts_toggleWith";

class ShortcutScenario : public SearchScenario {
protected:
    ShortcutScenario() { desk.window("Mail").button("Send", {{10, 20}, {60, 20}}); }

    Texts keys() const { return desk.journal({Topic::key}); }
};

TEST_F(ShortcutScenario, BringsTheInputUpAndDismissesIt) {
    pressShortcut();
    EXPECT_TRUE(inputIsShown());
    pressShortcut();
    EXPECT_FALSE(inputIsShown());
    EXPECT_THAT(keys(), IsEmpty());
}

TEST_F(ShortcutScenario, WorksOverAMenuWhichDoesNotGetTheKey) {
    desk.hotKeys.openMenu();
    search("send");
    EXPECT_TRUE(inputIsShown());
    EXPECT_THAT(targets(), ElementsAre("Send"));
    EXPECT_THAT(keys(), IsEmpty());
    pressShortcut();
    EXPECT_FALSE(inputIsShown());
    desk.hotKeys.closeMenu();
    pressShortcut();
    EXPECT_TRUE(inputIsShown());
    EXPECT_THAT(keys(), IsEmpty());
}

TEST_F(ShortcutScenario, OtherKeysAreTheMenus) {
    desk.hotKeys.openMenu();
    press(Key::downArrow);
    press(Key::space, eventFlag::shift);
    EXPECT_FALSE(inputIsShown());
    EXPECT_THAT(keys(), ElementsAre("key 125 reached the menu", "key 49 reached the menu"));
}

TEST_F(ShortcutScenario, APressDispatchesByWhatAnotherWriterHasStored) {
    desk.userDefaults.setFromOutside(kStored, encoded({49, 0x1000}));
    pressShortcut();
    EXPECT_FALSE(inputIsShown());
    desk.userDefaults.setFromOutside(kStored, encoded({49, 0x300}));
    pressShortcut();
    EXPECT_TRUE(inputIsShown());
}

// Another program has the key before Tarvix starts.
class TakenShortcutScenario : public testing::Test {
protected:
    TakenShortcutScenario() {
        desk.window("Mail");
        desk.hotKeys.takenByOthers.insert({49, 0x300});
        core.start();
        desk.clearJournal();
    }
    void pressShortcut() { desk.press(49, eventFlag::shift | eventFlag::command); }

    SimulatedDesktop desk;
    AppCore core{desk.platform()};
};

TEST_F(TakenShortcutScenario, ThePressIsTheOtherProgramsAndNothingIsShown) {
    pressShortcut();
    EXPECT_THAT(desk.journal(), ElementsAre("key 49 reached the program that holds it"));
}

TEST_F(TakenShortcutScenario, TheFirstPressAfterTheOtherProgramLetGoBringsTheInputUp) {
    pressShortcut();
    desk.hotKeys.takenByOthers.clear();
    pressShortcut();
    EXPECT_TRUE(desk.panels.input().isVisible());
    pressShortcut();
    EXPECT_FALSE(desk.panels.input().isVisible());
}

}  // namespace
}  // namespace tarvix
