// The test's own hands: failures on demand, queues and clock turned by hand, the keyboard.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/Platform.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<bool> strikes(Faults& faults, int calls) {
    std::vector<bool> struck;
    for (int i = 0; i < calls; ++i) struck.push_back(faults.strike("call"));
    return struck;
}

TEST(Faults, StrikeWhereTheyAreToldTo) {
    Faults faults;
    EXPECT_THAT(strikes(faults, 2), ElementsAre(false, false));
    faults.failNth("call", 2);
    EXPECT_THAT(strikes(faults, 4), ElementsAre(false, true, false, false));
    faults.failFrom("call", 3);
    EXPECT_THAT(strikes(faults, 4), ElementsAre(false, false, true, true));
    faults.fail("call");
    EXPECT_THAT(strikes(faults, 2), ElementsAre(true, true));
    faults.mend("call");
    EXPECT_THAT(strikes(faults, 2), ElementsAre(false, false));
}

TEST(Faults, AreOfOneOperationAlone) {
    Faults faults;
    faults.fail("another call");
    EXPECT_THAT(strikes(faults, 1), ElementsAre(false));
}

class SimulatedDesktopTest : public testing::Test {
protected:
    SimulatedDesktop desk;
    Platform platform = desk.platform();
    std::unique_ptr<InputPanel> input = platform.panels.makeInputPanel();
};

TEST_F(SimulatedDesktopTest, NothingRunsByItself) {
    std::vector<std::string> order;
    platform.runLoop.inBackground([&] { order.push_back("body"); });
    platform.runLoop.onMain([&] { order.push_back("block"); });
    const Subscription timer = platform.runLoop.timer(100ms, RunLoop::Repeat::once, [&] { order.push_back("timer"); });
    EXPECT_THAT(order, IsEmpty());
    EXPECT_TRUE(desk.runLoop.runBackgroundBody());
    EXPECT_TRUE(desk.runLoop.runMainBlock());
    desk.turnClock(99ms);
    EXPECT_THAT(order, ElementsAre("body", "block"));
    desk.turnClock(1ms);
    EXPECT_THAT(order, ElementsAre("body", "block", "timer"));
    EXPECT_FALSE(desk.runLoop.runMainBlock());
    EXPECT_FALSE(desk.runLoop.runBackgroundBody());
}

TEST_F(SimulatedDesktopTest, TimersFireInTheOrderOfTheirTimes) {
    std::vector<std::string> order;
    const auto timer = [&](std::chrono::milliseconds interval, RunLoop::Repeat repeat, const std::string& name) {
        return platform.runLoop.timer(interval, repeat, [&order, name] { order.push_back(name); });
    };
    const Subscription slow = timer(50ms, RunLoop::Repeat::once, "slow");
    const Subscription fast = timer(20ms, RunLoop::Repeat::forever, "fast");
    desk.turnClock(60ms);
    EXPECT_THAT(order, ElementsAre("fast", "fast", "slow", "fast"));
}

TEST_F(SimulatedDesktopTest, AKeyGoesToTheApplicationUnlessAPanelHasTheKeyboard) {
    desk.type("a");
    EXPECT_THAT(desk.journal(), ElementsAre("key 0 reached the application"));
    input->makeKeyAndOrderFront();
    desk.type("aB é");
    EXPECT_EQ(desk.panels.input().text(), "aB é");
    desk.press(51);
    EXPECT_EQ(desk.panels.input().text(), "aB ") << "one character, not one byte";
}

TEST_F(SimulatedDesktopTest, TheMonitorSeesAKeyFirstAndMayKeepIt) {
    std::vector<std::uint16_t> seen;
    Subscription monitor = platform.events.monitorKeyDown([&](const KeyEvent& event) {
        seen.push_back(event.keyCode);
        return event.keyCode == 0 ? Verdict::consume : Verdict::pass;
    });
    input->makeKeyAndOrderFront();
    desk.type("ab");
    EXPECT_THAT(seen, ElementsAre(0, 11));
    EXPECT_EQ(desk.panels.input().text(), "b");
    monitor.reset();
    desk.type("a");
    EXPECT_EQ(desk.panels.input().text(), "ba");
}

TEST_F(SimulatedDesktopTest, APostedKeyArrivesInALaterPass) {
    input->makeKeyAndOrderFront();
    desk.type("text");
    platform.events.post(KeyEvent{KeyEventType::keyDown, 0, eventFlag::command});
    EXPECT_FALSE(desk.panels.input().isTextSelected());
    desk.settle();
    EXPECT_TRUE(desk.panels.input().isTextSelected());
}

TEST_F(SimulatedDesktopTest, APostedMoveMovesThePointer) {
    platform.events.post(MouseEvent{.type = MouseEventType::mouseMoved, .point = {90, 20}});
    EXPECT_EQ(platform.screens.mouseLocation(), (PanelPoint{90, 980}));
    EXPECT_THAT(desk.journal({Topic::mouse}), ElementsAre("moved to 90,20"));
}

TEST_F(SimulatedDesktopTest, AHotKeyIsServedWhoeverHasTheKeyboard) {
    std::vector<HotKeyEvent> events;
    const Subscription seen =
        platform.hotKeys.onHotKey([&](HotKeyEvent event, std::uint32_t) { events.push_back(event); });
    ASSERT_TRUE(platform.hotKeys.registerHotKey(1, 49, 0x300));
    desk.press(49, eventFlag::command | eventFlag::shift);
    EXPECT_THAT(events, ElementsAre(HotKeyEvent::pressed, HotKeyEvent::released));
    EXPECT_THAT(desk.journal(), IsEmpty());
}

class SimulatedEventTapsTest : public SimulatedDesktopTest {
protected:
    std::vector<TapEventType> told;
    Verdict answer = Verdict::pass;
    std::unique_ptr<EventTap> tap = platform.eventTaps.createEventTap([this](TapEventType type) {
        told.push_back(type);
        return answer;
    });
};

TEST_F(SimulatedEventTapsTest, ATapIsToldNothingUntilItWantsToKnow) {
    desk.movePointer({90, 20});
    EXPECT_TRUE(desk.scroll());
    EXPECT_THAT(told, IsEmpty());
    tap->setInterest({.moves = true, .wheel = WheelFate::seen});
    desk.movePointer({95, 20});
    EXPECT_TRUE(desk.scroll());
    EXPECT_THAT(told, ElementsAre(TapEventType::mouseMoved, TapEventType::scrollWheel));
    EXPECT_EQ(platform.screens.mouseLocation(), (PanelPoint{95, 980}));
}

TEST_F(SimulatedEventTapsTest, ASwallowedWheelDoesNotReachTheApplication) {
    tap->setInterest({.moves = false, .wheel = WheelFate::swallowed});
    answer = Verdict::consume;
    EXPECT_FALSE(desk.scroll());
    EXPECT_THAT(told, ElementsAre(TapEventType::scrollWheel));
    EXPECT_THAT(desk.journal(), IsEmpty());
    tap->enable(false);
    EXPECT_TRUE(desk.scroll());
    EXPECT_THAT(desk.journal(), ElementsAre("wheel reached the application"));
}

TEST_F(SimulatedEventTapsTest, AnAnswerOtherThanTheFateIsAMistakeOfTheProgram) {
    tap->setInterest({.moves = false, .wheel = WheelFate::swallowed});
    EXPECT_THROW(desk.scroll(), std::logic_error);
    tap->setInterest({.moves = false, .wheel = WheelFate::seen});
    answer = Verdict::consume;
    EXPECT_THROW(desk.scroll(), std::logic_error);
}

TEST_F(SimulatedEventTapsTest, ATapThatIsTooSlowIsTurnedOffAndTold) {
    desk.eventTaps.timeOut();
    EXPECT_THAT(told, ElementsAre(TapEventType::disabledByTimeout));
    EXPECT_FALSE(desk.eventTaps.isEnabled());
    tap->enable(true);
    EXPECT_TRUE(desk.eventTaps.isEnabled());
}

TEST_F(SimulatedEventTapsTest, ATapThatHasGoneSwallowsNothing) {
    tap->setInterest({.moves = true, .wheel = WheelFate::swallowed});
    tap.reset();
    EXPECT_TRUE(desk.scroll());
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(SimulatedDesktopTest, TheServicesFailWhereTheyAreToldTo) {
    const std::int32_t mail = desk.launch("Mail");
    for (const char* operation : {"frontmostApplication", "runningApplication", "onScreenWindows", "postMouse",
                                  "postKey", "registerHotKey", "createEventTap"})
        desk.faults.fail(operation);
    EXPECT_EQ(platform.workspace.frontmostApplication(), std::nullopt);
    EXPECT_EQ(platform.workspace.runningApplication(mail), std::nullopt);
    EXPECT_EQ(platform.windowServer.onScreenWindows(), std::nullopt);
    EXPECT_FALSE(platform.events.post(MouseEvent{}));
    EXPECT_FALSE(platform.events.post(KeyEvent{}));
    EXPECT_FALSE(platform.hotKeys.registerHotKey(1, 49, 0x300));
    EXPECT_EQ(platform.eventTaps.createEventTap([](TapEventType) { return Verdict::pass; }), nullptr);
    EXPECT_THAT(desk.journal(), IsEmpty());
}

}  // namespace
}  // namespace tarvix
