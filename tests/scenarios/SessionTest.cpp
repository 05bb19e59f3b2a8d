// How sessions begin and end, and what stands between them.
#include <gmock/gmock.h>

#include <functional>

#include "tests/scenarios/SearchScenario.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Session : public SearchScenario {
protected:
    SimulatedWindow mail = desk.window("Mail", {{0, 0}, {800, 600}});

    Session() { mail.button("Archive", {{10, 20}, {60, 20}}).button("Send", {{90, 20}, {80, 20}}); }
};

TEST_F(Session, OpensWithTheCanvasThenTheDimmingThenTheInput) {
    pressShortcut();
    EXPECT_THAT(desk.journal(), ElementsAre("canvas at 0,0 1600x1000", "canvas in front", "dimming at 0,0 1600x1000",
                                            "dimming level 0", "dimming alpha 0.2", "dimming at 0,0 1600x1000",
                                            "dimming below window " + std::to_string(mail.number), "The Input shown",
                                            "posted TarvixInputDidAppear"));
}

TEST_F(Session, EndsWithTheEngineThenThePanelThenTheNotification) {
    search("send");
    desk.clearJournal();
    press(Key::escape);
    EXPECT_THAT(desk.journal(), ElementsAre("canvas hidden", "dimming fades to 0", "The Input hidden",
                                            "posted TarvixInputDidDisappear"));
}

TEST_F(Session, ShowsThatItReadsUntilTheCandidatesAreThere) {
    pressShortcut();
    EXPECT_TRUE(desk.panels.input().showsProgress());
    readCandidates();
    EXPECT_TRUE(desk.panels.input().showsProgress());
    desk.runLoop.runMainBlock();
    EXPECT_FALSE(desk.panels.input().showsProgress());
    EXPECT_EQ(engine().allElements().size(), 2u);
}

TEST_F(Session, TheFirstTargetsAreDrawnInABlockAfterTheCandidatesAreStored) {
    pressShortcut();
    desk.type("send");
    readCandidates();
    desk.runLoop.runMainBlock();
    EXPECT_THAT(targets(), IsEmpty());
    desk.runLoop.runMainBlock();
    EXPECT_THAT(targets(), ElementsAre("Send"));
}

TEST_F(Session, WhileTheCandidatesAreReadEachChangeYieldsNoTargets) {
    pressShortcut();
    desk.type("send");
    EXPECT_THAT(targets(), IsEmpty());
    desk.settle();
    EXPECT_THAT(targets(), ElementsAre("Send"));
}

TEST_F(Session, TextTypedDuringTheReadingIsMatchedUntrimmedOnce) {
    pressShortcut();
    desk.type("  ");
    desk.settle();
    EXPECT_EQ(targets().size(), 2u) << "two blanks are a query without terms";
    desk.type(" ");
    EXPECT_THAT(targets(), IsEmpty()) << "trimmed, they are the empty query";
}

TEST_F(Session, TheShortcutTwiceQuicklyShowsNoTargets) {
    pressShortcut();
    desk.type("send");
    pressShortcut();
    desk.settle();
    EXPECT_EQ(seen(), (Texts{"The Input shown", "The Input hidden"}));
    EXPECT_THAT(targets(), IsEmpty());
    EXPECT_FALSE(desk.panels.canvas().isVisible());
    EXPECT_FALSE(desk.panels.input().showsProgress());
}

TEST_F(Session, ACancelledTaskLeavesItsCandidatesUntilTheNextSession) {
    pressShortcut();
    pressShortcut();
    desk.settle();
    EXPECT_EQ(engine().allElements().size(), 2u);
}

TEST_F(Session, TheShortcutTwiceCancelsUntilTheLastBlockHasBeenQueued) {
    pressShortcut();
    desk.type("send");
    readCandidates();
    pressShortcut();
    desk.settle();
    EXPECT_THAT(targets(), IsEmpty());
}

TEST_F(Session, ReturnDuringTheReadingCancelsItToo) {
    desk.userDefaults.set("dontFlushTheInput", true);
    pressShortcut();
    desk.type("send");
    press(Key::return_);
    desk.settle();
    EXPECT_EQ(seen(), (Texts{"The Input shown", "The Input hidden"}));
    EXPECT_THAT(targets(), IsEmpty());
}

// On purpose: only the shortcut and the action keys stop the reading.
TEST_F(Session, EscapeDuringTheReadingDoesNotStopItAndTheTargetsAppearWithoutTheInput) {
    desk.userDefaults.set("dontFlushTheInput", true);
    pressShortcut();
    desk.type("send");
    press(Key::escape);
    EXPECT_FALSE(inputIsShown());
    desk.settle();
    EXPECT_THAT(targets(), ElementsAre("Send"));
    EXPECT_TRUE(desk.panels.canvas().isVisible());
    EXPECT_EQ(desk.panels.canvas().markers().size(), 1u);
    EXPECT_FALSE(inputIsShown());

    open();
    EXPECT_THAT(targets(), ElementsAre("Send")) << "of the next session, with the kept text";
    press(Key::escape);
    EXPECT_THAT(targets(), IsEmpty());
}

TEST_F(Session, EscapeDuringTheReadingBringsTheEmptyCanvasToTheFront) {
    pressShortcut();
    press(Key::escape);
    desk.clearJournal();
    desk.settle();
    EXPECT_THAT(desk.journal(), ElementsAre("canvas in front"));
    EXPECT_THAT(targets(), IsEmpty());
}

// The test is on the latest handle, and the newer session has put its own in the cancelled one's place.
TEST_F(Session, ACancelledTaskDrawsForTheNewerSession) {
    pressShortcut();
    pressShortcut();
    pressShortcut();
    desk.type("send");
    ASSERT_EQ(desk.runLoop.waitingBodies(), 2u);
    readCandidates();
    desk.runLoop.runMain();
    EXPECT_THAT(targets(), ElementsAre("Send"));
    EXPECT_EQ(desk.runLoop.waitingBodies(), 1u) << "the newer session's own task hasn't run yet";
    desk.settle();
    EXPECT_THAT(targets(), ElementsAre("Send"));
}

TEST_F(Session, LosingTheKeyboardClosesAndDoesNotStopTheReading) {
    pressShortcut();
    desk.clickElsewhere();
    EXPECT_EQ(seen(), (Texts{"The Input shown", "The Input hidden"}));
    desk.settle();
    EXPECT_EQ(engine().allElements().size(), 2u);
}

TEST_F(Session, ScrollingClosesAndDoesNotStopTheReading) {
    pressShortcut();
    EXPECT_TRUE(desk.scroll());
    EXPECT_EQ(seen(), (Texts{"The Input shown", "The Input hidden"}));
    desk.settle();
    EXPECT_EQ(engine().allElements().size(), 2u);
}

TEST_F(Session, ScrollingIsFrozenIfTheUserWantsItSoFromTheBeginningToTheEndOfTheSession) {
    desk.userDefaults.set("preventScrollingWhenTarvixing", true);
    EXPECT_TRUE(desk.scroll());
    search("send");
    EXPECT_FALSE(desk.scroll());
    EXPECT_THAT(targets(), ElementsAre("Send"));
    press(Key::escape);
    EXPECT_TRUE(desk.scroll());
    EXPECT_EQ(seen(), (Texts{"The Input shown", "The Input hidden"}));
}

// What each of these leaves behind would be felt in every application.
TEST_F(Session, EveryEndLeavesTheDesktopsWheelAndPointerAlone) {
    const std::vector<std::function<void()>> ends = {
        [&] { pressShortcut(); },       [&] { press(Key::escape); },
        [&] { press(Key::return_); },   [&] { press({Key::comma, {.command = true}}); },
        [&] { desk.clickElsewhere(); }, [&] { desk.scroll(); },
    };
    for (const auto& end : ends) {
        open();
        EXPECT_NE(desk.eventTaps.interest(), TapInterest{});
        end();
        EXPECT_FALSE(inputIsShown());
        EXPECT_EQ(desk.eventTaps.interest(), TapInterest{});
    }
}

TEST_F(Session, ThePrimaryTargetOutlivesItsSessionUntilTheNextRedraw) {
    search("send");
    press(Key::escape);
    EXPECT_EQ(primary(), "Send");
    pressShortcut();
    EXPECT_EQ(primary(), "Send");
    press(Key::downArrow);
    EXPECT_EQ(primary(), "Send") << "it is none of this session's Targets";
    desk.settle();
    EXPECT_EQ(primary(), "none");
}

TEST_F(Session, TheTextIsGoneInTheNextOne) {
    search("send");
    press(Key::escape);
    open();
    EXPECT_EQ(desk.panels.input().text(), "");
    EXPECT_THAT(targets(), IsEmpty());
}

TEST_F(Session, AKeptTextIsSelectedAndMatchedAtOnceAndTypingReplacesIt) {
    desk.userDefaults.set("dontFlushTheInput", true);
    search("send");
    press(Key::escape);
    open();
    EXPECT_TRUE(desk.panels.input().isTextSelected());
    EXPECT_THAT(targets(), ElementsAre("Send"));
    desk.type("arch");
    EXPECT_THAT(targets(), ElementsAre("Archive"));
}

TEST_F(Session, AKeyBetweenSessionsIsTheApplications) {
    press(Key::downArrow);
    search("send");
    press(Key::escape);
    press(Key::return_);
    EXPECT_EQ(desk.journal({Topic::key}).size(), 2u);
    EXPECT_THAT(desk.journal({Topic::mouse}), IsEmpty());
}

TEST_F(Session, TheReadingIsOfTheApplicationThatWasFrontmostAtTheStart) {
    pressShortcut();
    desk.window("Other", {{0, 0}, {400, 300}}).button("Send elsewhere", {{10, 20}, {60, 20}});
    desk.type("send");
    desk.settle();
    EXPECT_THAT(targets(), ElementsAre("Send"));
}

TEST_F(Session, StartingTwiceLeavesOneHandlerAndOneMonitor) {
    core.start();
    search("send");
    press(Key::tab);
    EXPECT_EQ(seen(), Texts{"The Input shown"});
    EXPECT_TRUE(desk.events.isMonitored());
    EXPECT_EQ(desk.hotKeys.registered().size(), 1u);
}

TEST_F(Session, StartingAgainEnablesTheEventTap) {
    core.eventTapController().enable(false);
    core.start();
    EXPECT_TRUE(desk.eventTaps.isEnabled());
}

TEST_F(Session, StartingRemovesTheSettingsOfOlderVersionsWhateverTheirType) {
    desk.userDefaults.set("searchCase", true);
    desk.userDefaults.set("inputWidth", 400.0);
    desk.userDefaults.set("inputTextSize", 24.0);
    core.start();
    EXPECT_EQ(desk.userDefaults.get("searchCase"), std::nullopt);
    EXPECT_EQ(desk.userDefaults.get("inputWidth"), std::nullopt);
    EXPECT_EQ(desk.userDefaults.get("inputTextSize"), UserDefaults::Value(24.0));
}

TEST(AppCoreLifetime, ATaskThatOutlivesTheProgramsObjectsEndsWithoutEffect) {
    SimulatedDesktop desk;
    desk.window("Mail");
    auto core = std::make_unique<AppCore>(desk.platform());
    core->start();
    desk.press(qwertyKeyCode(Key::space), eventFlag::shift | eventFlag::command);
    core.reset();
    desk.clearJournal();
    desk.settle();
    EXPECT_THAT(desk.journal(), IsEmpty());
    EXPECT_FALSE(desk.events.isMonitored());
    EXPECT_TRUE(desk.hotKeys.registered().empty());
}

}  // namespace
}  // namespace tarvix
