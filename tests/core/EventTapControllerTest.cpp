// What a search does with the pointer's moves and the wheel.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/EventTapController.h"
#include "core/Preloading.h"
#include "core/TarvixEngine.h"
#include "display/DisplayEngine.h"
#include "display/TheInput.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

class RecordingInspector : public InspectorProtocol {
public:
    void showInspector(const AccessibilityElement& element) override { shown.push_back(element.title.value_or("")); }

    std::vector<std::string> shown;
};

// Tells events whatever the tap wants to know.
class LateTaps : public EventTaps {
public:
    std::unique_ptr<EventTap> createEventTap(std::function<Verdict(TapEventType)> toBeTold) override {
        seen = std::move(toBeTold);
        return std::make_unique<Tap>();
    }

    std::function<Verdict(TapEventType)> seen;

private:
    class Tap : public EventTap {
        void enable(bool) override {}
        void setInterest(TapInterest) override {}
    };
};

class EventTapControllerTest : public testing::Test {
protected:
    EventTapControllerTest() {
        desk.window("Mail").button("Send", {{10, 20}, {60, 20}}).button("Archive", {{90, 20}, {60, 20}});
        desk.screens.pointer = flip(kOverNothing, desk.screens.firstHeight());
    }

    void open() {
        if (!theInput.isVisible()) toggleTheInput(engine, theInput, preloading);
        desk.settle();
        desk.clearJournal();
    }
    void preventScrolling(bool prevents) { desk.userDefaults.set("preventScrollingWhenTarvixing", prevents); }
    TapInterest interest() const { return desk.eventTaps.interest(); }
    // The loop's next pass.
    void nextPass() { desk.turnClock(0ms); }

    static constexpr AxPoint kOverSend{40, 30}, kOverArchive{120, 30}, kOverNothing{1500, 900};
    static constexpr TapInterest kNone{}, kSeen{.moves = true, .wheel = WheelFate::seen},
        kSwallowed{.moves = true, .wheel = WheelFate::swallowed};

    SimulatedDesktop desk;
    RecordingInspector inspector;
    Sauce sauce{desk.inputSources};
    DisplayEngine displayEngine{desk.platform()};
    TarvixEngine engine{desk.platform(), std::make_shared<SearchEngine>(desk.platform()), displayEngine};
    TheInput theInput{desk.platform(), displayEngine, engine, sauce};
    Preloading preloading{desk.runLoop, desk.milestones};
    EventTapController controller{desk.eventTaps, desk.runLoop, desk.userDefaults, engine, theInput, inspector};
};

// --- The interest

TEST_F(EventTapControllerTest, AnIdleDesktopIsNotLookedAt) {
    EXPECT_TRUE(desk.eventTaps.isTapped());
    EXPECT_TRUE(desk.eventTaps.isEnabled());
    EXPECT_EQ(interest(), kNone);
    preventScrolling(true);
    EXPECT_EQ(interest(), kNone);
}

TEST_F(EventTapControllerTest, TheInterestFollowsTheInputAtOnce) {
    toggleTheInput(engine, theInput, preloading);
    EXPECT_EQ(interest(), kSeen);
    theInput.close();
    EXPECT_EQ(interest(), kNone);
}

TEST_F(EventTapControllerTest, TheInterestFollowsTheSettingAtOnceWhoeverChangesIt) {
    open();
    preventScrolling(true);
    EXPECT_EQ(interest(), kSwallowed);
    desk.userDefaults.setFromOutside("preventScrollingWhenTarvixing", false);
    EXPECT_EQ(interest(), kSeen);
    desk.userDefaults.set("preventScrollingWhenTarvixing", "yes");
    EXPECT_EQ(interest(), kSeen) << "a value of the wrong kind is none";
    desk.userDefaults.set("preventScrollingWhenTarvixing", true);
    desk.userDefaults.remove("preventScrollingWhenTarvixing");
    EXPECT_EQ(interest(), kSeen);
}

TEST_F(EventTapControllerTest, AnInputThatStaysHiddenLeavesTheDesktopAlone) {
    desk.activate(std::nullopt);
    toggleTheInput(engine, theInput, preloading);
    EXPECT_FALSE(theInput.isVisible());
    EXPECT_EQ(interest(), kNone);
}

TEST_F(EventTapControllerTest, AnInputThatIsOpenedInPlaceCountsToo) {
    theInput.openInPlace("text");
    EXPECT_EQ(interest(), kSeen);
}

// --- The wheel

TEST_F(EventTapControllerTest, ScrollingWithTheInputHiddenIsNotTouchedWhateverTheSetting) {
    EXPECT_TRUE(desk.scroll());
    preventScrolling(true);
    EXPECT_TRUE(desk.scroll());
    EXPECT_THAT(desk.journal(), ElementsAre("wheel reached the application", "wheel reached the application"));
}

TEST_F(EventTapControllerTest, ScrollingClosesTheInputAndReachesTheApplication) {
    open();
    EXPECT_TRUE(desk.scroll());
    EXPECT_FALSE(theInput.isVisible());
    EXPECT_THAT(desk.journal({Topic::theInput, Topic::wheel}),
                ElementsAre("The Input hidden", "wheel reached the application"));
    EXPECT_TRUE(desk.scroll());
}

TEST_F(EventTapControllerTest, ScrollingIsSwallowedIfTheUserWantsItSo) {
    preventScrolling(true);
    open();
    EXPECT_FALSE(desk.scroll());
    EXPECT_FALSE(desk.scroll());
    EXPECT_TRUE(theInput.isVisible());
    EXPECT_THAT(desk.journal(), IsEmpty());
}

TEST_F(EventTapControllerTest, ScrollingDoesNotStopTheReading) {
    toggleTheInput(engine, theInput, preloading);
    desk.scroll();
    ASSERT_FALSE(theInput.isVisible());
    desk.clearJournal();
    desk.settle();
    EXPECT_EQ(engine.allElements().size(), 2u);
    EXPECT_THAT(desk.journal({Topic::canvas}), ElementsAre("canvas in front")) << "it ended as one that goes on";
}

// --- The pointer

TEST_F(EventTapControllerTest, WhatTheMouseMovesOverIsInspectedInTheNextPassOfTheLoop) {
    open();
    desk.movePointer(kOverSend);
    EXPECT_THAT(inspector.shown, IsEmpty());
    nextPass();
    EXPECT_THAT(inspector.shown, ElementsAre("Send"));
    desk.turnClock(1h);
    EXPECT_EQ(inspector.shown.size(), 1u) << "once for each move";
}

TEST_F(EventTapControllerTest, ABurstOfMovesCostsOneUpdate) {
    open();
    for (int i = 0; i < 100; ++i) desk.movePointer(i % 2 == 0 ? kOverSend : kOverArchive);
    nextPass();
    EXPECT_THAT(inspector.shown, ElementsAre("Archive"));
}

TEST_F(EventTapControllerTest, OverNothingAnUpdateThatWaitsStays) {
    open();
    desk.movePointer(kOverSend);
    desk.movePointer(kOverNothing);
    nextPass();
    EXPECT_THAT(inspector.shown, ElementsAre("Send"));
    desk.movePointer(kOverNothing);
    nextPass();
    EXPECT_EQ(inspector.shown.size(), 1u);
}

TEST_F(EventTapControllerTest, ACandidateThatTheQueryHasFilteredAwayIsInspectedToo) {
    open();
    desk.panels.input().insert("archive");
    desk.movePointer(kOverSend);
    nextPass();
    EXPECT_THAT(inspector.shown, ElementsAre("Send"));
}

TEST_F(EventTapControllerTest, MovesWithTheInputHiddenDoNothing) {
    open();
    theInput.close();
    desk.movePointer(kOverSend);
    EXPECT_EQ(desk.runLoop.timers(), 0u);
}

// The desktop may tell a move or a step of the wheel that was under way when the interest ended.
TEST_F(EventTapControllerTest, AnEventThatComesTooLatePassesAndDoesNothing) {
    LateTaps taps;
    const EventTapController late(taps, desk.runLoop, desk.userDefaults, engine, theInput, inspector);
    open();
    theInput.close();
    AccessibilityElement underMouse;
    underMouse.size = {1600, 1000};
    engine.setAllElements({underMouse});
    desk.screens.pointer = flip(kOverSend, desk.screens.firstHeight());
    preventScrolling(true);
    EXPECT_EQ(taps.seen(TapEventType::scrollWheel), Verdict::pass);
    EXPECT_EQ(taps.seen(TapEventType::mouseMoved), Verdict::pass);
    EXPECT_EQ(desk.runLoop.timers(), 0u);
}

// --- The tap itself

TEST_F(EventTapControllerTest, ATapThatWasTurnedOffForATimeoutIsTurnedOnAgainAndTheEventIsDropped) {
    open();
    EXPECT_EQ(desk.eventTaps.timeOut(), Verdict::consume);
    EXPECT_TRUE(desk.eventTaps.isEnabled());
    desk.scroll();
    EXPECT_FALSE(theInput.isVisible());
}

TEST_F(EventTapControllerTest, ADisabledTapSeesAndSwallowsNothing) {
    preventScrolling(true);
    open();
    controller.enable(false);
    EXPECT_TRUE(desk.scroll());
    desk.movePointer(kOverSend);
    EXPECT_EQ(desk.runLoop.timers(), 0u);
    controller.enable(true);
    EXPECT_FALSE(desk.scroll());
}

TEST(EventTap, EndsWithTheController) {
    SimulatedDesktop desk;
    Sauce sauce(desk.inputSources);
    DisplayEngine displayEngine(desk.platform());
    TarvixEngine engine(desk.platform(), std::make_shared<SearchEngine>(desk.platform()), displayEngine);
    TheInput theInput(desk.platform(), displayEngine, engine, sauce);
    RecordingInspector inspector;
    {
        const EventTapController controller(desk.eventTaps, desk.runLoop, desk.userDefaults, engine, theInput,
                                            inspector);
    }
    EXPECT_FALSE(desk.eventTaps.isTapped());
    theInput.openInPlace("text");
    EXPECT_TRUE(desk.scroll());
}

TEST(EventTapDeathTest, ADesktopWithoutATapEndsTheProcess) {
    SimulatedDesktop desk;
    Sauce sauce(desk.inputSources);
    DisplayEngine displayEngine(desk.platform());
    TarvixEngine engine(desk.platform(), std::make_shared<SearchEngine>(desk.platform()), displayEngine);
    TheInput theInput(desk.platform(), displayEngine, engine, sauce);
    RecordingInspector inspector;
    desk.faults.fail("createEventTap");
    EXPECT_DEATH(EventTapController(desk.eventTaps, desk.runLoop, desk.userDefaults, engine, theInput, inspector),
                 "big issue: can't create event tap");
}

}  // namespace
}  // namespace tarvix
