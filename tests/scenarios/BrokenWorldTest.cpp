// A search where something is missing, lies, hangs or dies.
#include <gmock/gmock.h>

#include "tests/scenarios/SearchScenario.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BrokenWorld : public SearchScenario {
protected:
    // A window with three buttons in a group each.
    SimulatedWindow mailWindow() {
        SimulatedWindow window = desk.window("Mail", {{0, 0}, {800, 600}});
        for (int i = 0; i < 3; ++i) {
            const double y = 100.0 * i;
            const std::string title = "Button " + std::to_string(i);
            const SimulatedElement button{
                .role = "AXButton", .title = title, .frame = {{10, y + 20}, {60, 20}}, .children = {}};
            window.add({.role = "AXGroup", .title = "", .frame = {{0, y}, {400, 100}}, .children = {button}});
        }
        return window;
    }
};

TEST_F(BrokenWorld, WithoutAFocusedApplicationTheInputStaysHiddenAndTheNextPressOpensAgain) {
    desk.activate(std::nullopt);
    pressShortcut();
    EXPECT_FALSE(inputIsShown());
    EXPECT_THAT(desk.journal(), ElementsAre("posted TarvixInputDidAppear"));
    EXPECT_EQ(desk.runLoop.waitingBodies(), 1u) << "the task runs all the same";
    desk.settle();
    EXPECT_THAT(targets(), IsEmpty());

    mailWindow();
    search("button 1");
    EXPECT_TRUE(inputIsShown());
    EXPECT_THAT(targets(), ElementsAre("Button 1"));
}

TEST_F(BrokenWorld, WithoutAFocusedApplicationTheInputShowsAboveTheMouseAndFindsNothing) {
    desk.activate(std::nullopt);
    desk.userDefaults.set("inputPosition", "aboveMouse");
    search("*");
    EXPECT_TRUE(inputIsShown());
    EXPECT_THAT(targets(), IsEmpty());
    press(Key::escape);
    EXPECT_FALSE(inputIsShown());
}

TEST_F(BrokenWorld, WithoutAWindowTheInputShowsAndFindsNothing) {
    desk.launch("Mail");
    search("*");
    EXPECT_TRUE(inputIsShown());
    EXPECT_THAT(targets(), IsEmpty());
    press(Key::escape);
    EXPECT_EQ(seen(), (Texts{"The Input shown", "The Input hidden"}));
}

TEST_F(BrokenWorld, WithoutScreensTheInputShowsAtItsLastPlaceAndNothingIsMarked) {
    mailWindow();
    desk.screens.setOnly(std::nullopt);
    search("button");
    EXPECT_TRUE(inputIsShown());
    EXPECT_EQ(engine().allElements().size(), 3u);
    EXPECT_THAT(targets(), IsEmpty());
    EXPECT_EQ(primary(), "none");
    press(Key::return_);
    EXPECT_EQ(seen(), (Texts{"The Input shown", "The Input hidden"}));
}

TEST_F(BrokenWorld, WithoutAWindowListNothingIsFound) {
    mailWindow();
    desk.faults.fail("onScreenWindows");
    search("*");
    EXPECT_TRUE(inputIsShown());
    EXPECT_THAT(targets(), IsEmpty());
}

TEST_F(BrokenWorld, AnApplicationThatDoesNotAnswerLeavesASearchThatEscapeEnds) {
    const SimulatedWindow window = mailWindow();
    desk.accessibility.hang(window.pid);
    search("button");
    EXPECT_TRUE(inputIsShown());
    EXPECT_THAT(targets(), IsEmpty());
    press(Key::escape);
    EXPECT_FALSE(inputIsShown());
}

TEST_F(BrokenWorld, AnApplicationThatHangsBeforeItIsReadYieldsNothingAndTheNextSessionIsWhole) {
    const SimulatedWindow window = mailWindow();
    pressShortcut();
    desk.type("button");
    desk.accessibility.hang(window.pid);
    desk.settle();
    EXPECT_THAT(targets(), IsEmpty());
    EXPECT_FALSE(desk.panels.input().showsProgress());
    press(Key::escape);

    desk.accessibility.hang(window.pid, false);
    search("button");
    EXPECT_EQ(targets().size(), 3u);
}

TEST_F(BrokenWorld, AnApplicationThatDiesBeforeItIsReadYieldsNothing) {
    const SimulatedWindow window = mailWindow();
    pressShortcut();
    desk.type("button");
    desk.accessibility.quit(window.pid);
    desk.workspace.quit(window.pid);
    desk.settle();
    EXPECT_THAT(targets(), IsEmpty());
    press(Key::escape);
    EXPECT_FALSE(inputIsShown());
}

TEST_F(BrokenWorld, ABranchThatDiesInTheMiddleOfTheWalkLeavesTheRestStanding) {
    mailWindow();
    desk.accessibility.failReads(desk.accessibility.titled("Button 1"), AxStatus::invalidElement);
    search("button");
    EXPECT_THAT(targets(), ElementsAre("Button 0", "Button 2"));
}

TEST_F(BrokenWorld, AnApplicationThatStopsAnsweringInTheMiddleOfTheWalkYieldsWhatWasReadBefore) {
    mailWindow();
    pressShortcut();
    desk.type("button");
    desk.accessibility.forgetReads();
    const UIElement second = desk.accessibility.titled("Button 1");
    const UIElement third = desk.accessibility.titled("Button 2");
    desk.accessibility.failReads(second, AxStatus::cannotComplete);
    desk.accessibility.failReads(third, AxStatus::cannotComplete);
    desk.settle();
    EXPECT_THAT(targets(), ElementsAre("Button 0"));
}

TEST_F(BrokenWorld, WhereverTheReadingFailsTheSearchGoesOnAndEscapeEndsIt) {
    mailWindow();
    pressShortcut();
    desk.accessibility.forgetReads();
    desk.settle();
    const auto calls = static_cast<int>(desk.accessibility.reads().size());
    ASSERT_GT(calls, 4);
    press(Key::escape);
    for (const char* operation : {"attribute", "attributes"})
        for (int n = 1; n <= calls; ++n) {
            desk.settle();
            pressShortcut();
            ASSERT_TRUE(inputIsShown());
            desk.faults.failFrom(operation, n);
            desk.type("button");
            desk.settle();
            EXPECT_LE(targets().size(), 3u);
            press(Key::escape);
            EXPECT_FALSE(inputIsShown()) << operation << " failed from call " << n;
            desk.faults.mend(operation);
        }
}

TEST_F(BrokenWorld, AFrameOfTheWrongKindCountsAsZero) {
    SimulatedWindow window = desk.window("Mail", {{0, 0}, {800, 600}});
    window.button("Send", {{90, 20}, {80, 20}});
    desk.accessibility.set(window.last, ax::position, std::string("over there"));
    search("send");
    ASSERT_THAT(targets(), ElementsAre("Send"));
    EXPECT_EQ(engine().targets().front().element.frame(), (AxRect{{0, 0}, {80, 20}}));
}

TEST_F(BrokenWorld, AClickThatCannotBeMadeStillEndsTheSearch) {
    mailWindow();
    search("button 1");
    desk.faults.fail("postMouse");
    press(Key::return_);
    EXPECT_EQ(seen(), (Texts{"The Input shown", "The Input hidden"}));
}

TEST_F(BrokenWorld, AShortcutThatAnotherProgramHasTakenLeavesTheProgramRunning) {
    SimulatedDesktop other;
    other.hotKeys.takenByOthers.insert({qwertyKeyCode(Key::space), 0x300});
    AppCore second(other.platform());
    second.start();
    other.press(qwertyKeyCode(Key::space), eventFlag::shift | eventFlag::command);
    EXPECT_FALSE(other.panels.input().isVisible());
    EXPECT_TRUE(other.hotKeys.registered().empty());
}

TEST_F(BrokenWorld, SettingsOfTheWrongKindReadAsTheirDefaults) {
    mailWindow();
    for (const char* key : {"inputPosition", "hazeOverWindowStyle", "targetsColor"}) desk.userDefaults.set(key, 5.0);
    for (const char* key : {"dontFlushTheInput", "allowCyclingThroughTargets", "repositionMouseAfterClick"})
        desk.userDefaults.set(key, "yes");
    search("button");
    press(Key::upArrow);
    EXPECT_EQ(primary(), "Button 0");
    press(Key::return_);
    EXPECT_EQ(seen().size(), 5u);
    EXPECT_EQ(core.theInput().value(), "");
}

}  // namespace
}  // namespace tarvix
