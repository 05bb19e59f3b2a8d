#include <xcb/xinput.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>

#include "linux/x11/X11EventTaps.h"
#include "linux/x11/X11WindowTree.h"
#include "tests/desktop/X11Desk.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;

constexpr std::uint8_t kWheelUp = 4, kWheelDown = 5, kWheelLeft = 6, kWheelRight = 7;
constexpr TapInterest kSeen{.moves = true, .wheel = WheelFate::seen};
constexpr TapInterest kSwallowed{.moves = true, .wheel = WheelFate::swallowed};

class X11EventTapsOnDesktop : public X11Desk {
protected:
    X11EventTapsOnDesktop()
        : taps(std::move(X11EventTaps::open(*connection, *events, loop).value())),
          tap(taps->createEventTap([this](TapEventType type) {
              if (type == TapEventType::mouseMoved) ++moves;
              if (type == TapEventType::scrollWheel) ++steps;
              if (onSeen) onSeen(type);
              return Verdict::pass;
          })) {}

    void SetUp() override {
        X11Desk::SetUp();
        // As toolkits do: the pointer's motion, which is where axes scroll, beside the buttons.
        X11Connection& x = application.connection();
        ASSERT_TRUE(startXInput(x));
        const struct {
            xcb_input_event_mask_t head;
            std::uint32_t mask;
        } wanted{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, XCB_INPUT_XI_EVENT_MASK_MOTION};
        xcb_input_xi_select_events(x.get(), application.window(), 1, &wanted.head);
        application.takeLog();
        tap->setInterest({});
        settle();
    }

    void TearDown() override {
        tap.reset();
        X11Desk::TearDown();
        EXPECT_EQ(windowsOverTheApplication(), 0) << "a shield has stayed";
    }

    // A motion event of the pointer, or a button, is worth a line.
    Lines takePointerLog() {
        Lines lines;
        for (const std::string& line : application.takeLog())
            if (line.starts_with("button") || line == "motion") lines.push_back(line);
        return lines;
    }
    // The window manager may hold a press back for a moment.
    Lines awaitPointerLog(Lines::size_type count) {
        Lines lines;
        loop.runUntil([&] {
            for (std::string& line : takePointerLog()) lines.push_back(std::move(line));
            return lines.size() >= count;
        });
        return lines;
    }

    // Windows without a picture that are there and take the pointer at the application's place.
    int windowsOverTheApplication() {
        const auto pointer =
            connection->reply<xcb_query_pointer_reply>(xcb_query_pointer(connection->get(), connection->root()));
        if (!pointer || pointer->child == XCB_WINDOW_NONE) return 0;
        const auto attributes = connection->reply<xcb_get_window_attributes_reply>(
            xcb_get_window_attributes(connection->get(), pointer->child));
        return attributes && attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY ? 1 : 0;
    }

    std::unique_ptr<X11EventTaps> taps;
    std::unique_ptr<EventTap> tap;
    std::function<void(TapEventType)> onSeen;
    int moves = 0, steps = 0;
};

TEST_F(X11EventTapsOnDesktop, WithoutAnInterestNothingIsToldAndEverythingArrives) {
    hardware.movePointer(210, 210);
    hardware.click(kWheelDown);
    settle();
    EXPECT_EQ(awaitPointerLog(3), (Lines{"motion", "button down 5", "button up 5"}));
    // Had it been told it would have been before this.
    tap->setInterest(kSeen);
    hardware.movePointer(220, 220);
    ASSERT_TRUE(loop.runUntil([&] { return moves > 0; }));
    EXPECT_EQ(moves, 1);
    EXPECT_EQ(steps, 0);
}

TEST_F(X11EventTapsOnDesktop, MovesAreToldWhereverThePointerIs) {
    tap->setInterest({.moves = true});
    hardware.movePointer(210, 210);
    EXPECT_TRUE(loop.runUntil([&] { return moves == 1; }));
    hardware.movePointer(900, 900);
    EXPECT_TRUE(loop.runUntil([&] { return moves == 2; }));
    EXPECT_EQ(steps, 0);
}

TEST_F(X11EventTapsOnDesktop, AFloodOfMovesIsFewTellingsAndTheLastOneIsAmongThem) {
    tap->setInterest({.moves = true});
    AxPoint told;
    onSeen = [&](TapEventType) {
        const auto pointer =
            connection->reply<xcb_query_pointer_reply>(xcb_query_pointer(connection->get(), connection->root()));
        told = {double(pointer->root_x), double(pointer->root_y)};
    };
    const auto started = std::chrono::steady_clock::now();
    for (std::int16_t i = 0; i < 1000; ++i) {
        hardware.movePointer(static_cast<std::int16_t>(100 + i % 300), static_cast<std::int16_t>(100 + i % 200));
        loop.runPending();
    }
    hardware.movePointer(333, 222);
    EXPECT_TRUE(loop.runUntil([&] { return told == AxPoint{333, 222}; }));
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - started);
    EXPECT_GT(moves, 0);
    EXPECT_LE(moves, milliseconds.count() / 16 + 2);
}

TEST_F(X11EventTapsOnDesktop, EachDirectionOfTheWheelIsToldAndGoesOnToTheApplication) {
    tap->setInterest(kSeen);
    for (const std::uint8_t button : {kWheelUp, kWheelDown, kWheelLeft, kWheelRight}) {
        const int before = steps;
        hardware.click(button);
        EXPECT_TRUE(loop.runUntil([&] { return steps == before + 1; })) << int(button);
        const std::string number = std::to_string(button);
        EXPECT_EQ(awaitPointerLog(2), (Lines{"button down " + number, "button up " + number}));
    }
    EXPECT_EQ(moves, 0);
}

TEST_F(X11EventTapsOnDesktop, AClickIsNoWheelStep) {
    tap->setInterest(kSeen);
    hardware.click(1);
    EXPECT_EQ(awaitPointerLog(2), (Lines{"button down 1", "button up 1"}));
    hardware.click(kWheelDown);
    EXPECT_TRUE(loop.runUntil([&] { return steps > 0; }));
    EXPECT_EQ(steps, 1);
}

TEST_F(X11EventTapsOnDesktop, ASwallowedWheelIsToldAndReachesNobody) {
    tap->setInterest(kSwallowed);
    settle();
    application.takeLog();
    for (const std::uint8_t button : {kWheelUp, kWheelDown, kWheelLeft, kWheelRight}) {
        const int before = steps;
        hardware.click(button);
        EXPECT_TRUE(loop.runUntil([&] { return steps == before + 1; })) << int(button);
    }
    EXPECT_EQ(takePointerLog(), Lines{});
}

TEST_F(X11EventTapsOnDesktop, WhileTheWheelIsSwallowedNoMotionArrivesEither) {
    tap->setInterest(kSwallowed);
    settle();
    application.takeLog();
    hardware.movePointer(250, 250);
    EXPECT_TRUE(loop.runUntil([&] { return moves == 1; }));
    EXPECT_EQ(takePointerLog(), Lines{});
}

TEST_F(X11EventTapsOnDesktop, AfterASwallowedWheelEverythingArrivesAgain) {
    tap->setInterest(kSwallowed);
    hardware.click(kWheelDown);
    settle();
    tap->setInterest({});
    settle();
    application.takeLog();
    hardware.movePointer(250, 250);
    hardware.click(kWheelDown);
    EXPECT_EQ(awaitPointerLog(3), (Lines{"motion", "button down 5", "button up 5"}));
}

TEST_F(X11EventTapsOnDesktop, SeenAndSwallowedChangePlacesDuringASearch) {
    for (int round = 0; round < 3; ++round) {
        tap->setInterest(kSwallowed);
        settle();
        hardware.click(kWheelDown);
        EXPECT_EQ(takePointerLog(), Lines{});
        tap->setInterest(kSeen);
        settle();
        hardware.click(kWheelDown);
        EXPECT_EQ(awaitPointerLog(2), (Lines{"button down 5", "button up 5"}));
    }
}

TEST_F(X11EventTapsOnDesktop, ADisabledTapSeesAndSwallowsNothing) {
    tap->setInterest(kSwallowed);
    settle();
    tap->enable(false);
    settle();
    application.takeLog();
    hardware.movePointer(250, 250);
    hardware.click(kWheelDown);
    EXPECT_EQ(awaitPointerLog(3), (Lines{"motion", "button down 5", "button up 5"}));
    tap->enable(true);
    settle();
    hardware.click(kWheelDown);
    EXPECT_TRUE(loop.runUntil([&] { return steps > 0; }));
    EXPECT_EQ(steps, 1);
    EXPECT_EQ(moves, 0);
    EXPECT_EQ(takePointerLog(), Lines{});
}

TEST_F(X11EventTapsOnDesktop, AnInterestOfADisabledTapWaits) {
    tap->enable(false);
    tap->setInterest(kSwallowed);
    settle();
    hardware.click(kWheelDown);
    EXPECT_EQ(awaitPointerLog(2), (Lines{"button down 5", "button up 5"}));
    tap->enable(true);
    settle();
    hardware.click(kWheelDown);
    EXPECT_TRUE(loop.runUntil([&] { return steps == 1; }));
    EXPECT_EQ(takePointerLog(), Lines{});
}

TEST_F(X11EventTapsOnDesktop, TheTapMayEndWhileItIsTold) {
    tap->setInterest(kSwallowed);
    settle();
    onSeen = [&](TapEventType) { tap.reset(); };
    hardware.movePointer(230, 230);
    hardware.click(kWheelDown);
    EXPECT_TRUE(loop.runUntil([&] { return !tap; }));
    EXPECT_EQ(moves + steps, 1);
    EXPECT_EQ(windowsOverTheApplication(), 0);
}

TEST_F(X11EventTapsOnDesktop, TheInterestMayEndWhileItIsTold) {
    tap->setInterest(kSeen);
    onSeen = [&](TapEventType) { tap->setInterest({}); };
    hardware.click(kWheelDown);
    hardware.movePointer(230, 230);
    EXPECT_TRUE(loop.runUntil([&] { return steps + moves > 0; }));
    settle();
    EXPECT_EQ(steps + moves, 1);
}

// Clicks while the wheel is swallowed ---------------------------------------------------------------------------------

class X11ClicksOnDesktop : public X11EventTapsOnDesktop {
protected:
    void SetUp() override {
        X11EventTapsOnDesktop::SetUp();
        ASSERT_TRUE(take());
        tap->setInterest(kSwallowed);
        settle();
        application.takeLog();
        panel.takeLog();
    }
};

TEST_F(X11ClicksOnDesktop, AHandsClickReachesTheApplicationWholeAndEndsTheSearch) {
    for (const std::uint8_t button : std::array<std::uint8_t, 5>{1, 2, 3, 8, 9}) {
        losses = 0;
        ASSERT_TRUE(take());
        tap->setInterest({});
        tap->setInterest(kSwallowed);
        settle();
        application.takeLog();
        hardware.click(button);
        const std::string number = std::to_string(button);
        EXPECT_EQ(awaitPointerLog(2), (Lines{"button down " + number, "button up " + number}));
        EXPECT_TRUE(loop.runUntil([&] { return losses == 1; })) << int(button);
        EXPECT_EQ(windowsOverTheApplication(), 0);
    }
}

TEST_F(X11ClicksOnDesktop, AClickThatIsHandledByTheEndOfTheSearchReachesTheApplicationToo) {
    keyboard->takeKeyboard(panel.window(), [this] {
        ++losses;
        tap->setInterest({});
    });
    settle();
    hardware.click(1);
    EXPECT_EQ(awaitPointerLog(2), (Lines{"button down 1", "button up 1"}));
    EXPECT_EQ(losses, 1);
}

TEST_F(X11ClicksOnDesktop, AClickAgainstATapThatEndsReachesTheApplicationToo) {
    hardware.click(1);  // the pointer stands still at it now
    tap.reset();
    EXPECT_EQ(awaitPointerLog(2), (Lines{"button down 1", "button up 1"}));
}

TEST_F(X11ClicksOnDesktop, AClickIntoThePanelIsThePanelsAndTheWheelStaysSwallowed) {
    hardware.movePointer(650, 110);
    hardware.click(1);
    Lines clicks;
    EXPECT_TRUE(loop.runUntil([&] {
        for (const std::string& line : panel.takeLog())
            if (line.starts_with("button")) clicks.push_back(line);
        return clicks.size() >= 2;
    }));
    EXPECT_EQ(clicks, (Lines{"button down 1", "button up 1"}));
    settle();
    EXPECT_EQ(losses, 0);
    hardware.movePointer(200, 200);
    hardware.click(kWheelDown);
    settle();
    EXPECT_EQ(takePointerLog(), Lines{});
}

TEST_F(X11ClicksOnDesktop, OurOwnClickGoesThroughAtOnce) {
    for (const MouseEventType type : {MouseEventType::leftMouseDown, MouseEventType::leftMouseUp})
        EXPECT_TRUE(events->post(MouseEvent{.type = type, .point = {150, 150}, .clickState = 1}));
    EXPECT_EQ(awaitPointerLog(3), (Lines{"motion", "button down 1", "button up 1"}));
    settle();
    EXPECT_EQ(losses, 0) << "it is none of a hand's";
}

TEST_F(X11ClicksOnDesktop, TheNextSearchSwallowsTheWheelAgain) {
    hardware.click(1);
    EXPECT_TRUE(loop.runUntil([&] { return losses == 1; }));
    // A window manager hands the click on in its own time.
    EXPECT_TRUE(loop.runUntil([&] { return std::ranges::count(takePointerLog(), "button up 1") > 0; }));
    tap->setInterest({});
    tap->setInterest(kSwallowed);
    settle();
    takePointerLog();
    hardware.click(kWheelDown);
    settle();
    EXPECT_EQ(takePointerLog(), Lines{});
}

// The press is first of all the window manager's, which gives the clicked window the keyboard.
TEST_F(X11ClicksOnDesktop, AClickInAnotherWindowReachesItsManagerToo) {
    const auto hasManager = hasWindowManager(*connection);
    if (!hasManager) GTEST_SKIP() << "for window managers";
    keyboard->releaseKeyboard();
    tap->setInterest({});
    X11Victim other({1000, 500, 300, 200, false});
    ASSERT_TRUE(other.show());
    ASSERT_TRUE(application.focus());
    ASSERT_TRUE(take());
    tap->setInterest(kSwallowed);
    settle();
    other.takeLog();
    hardware.movePointer(1100, 600);
    hardware.click(1);
    Lines clicks;
    loop.runUntil([&] {
        for (const std::string& line : other.takeLog())
            if (line.starts_with("button")) clicks.push_back(line);
        return clicks.size() >= 2;
    });
    EXPECT_EQ(clicks, (Lines{"button down 1", "button up 1"}));
    EXPECT_TRUE(loop.runUntil([&] {
        const auto focus = connection->reply<xcb_get_input_focus_reply>(xcb_get_input_focus(connection->get()));
        return focus && focus->focus == other.window();
    }));
}

// The shield's place --------------------------------------------------------------------------------------------------

TEST_F(X11EventTapsOnDesktop, AWindowThatComesLaterDoesNotGetTheWheelEither) {
    tap->setInterest(kSwallowed);
    settle();
    X11Victim later({150, 150, 200, 200, true});
    ASSERT_TRUE(later.show());
    EXPECT_TRUE(loop.runUntil([&] { return windowsOverTheApplication() == 1; }));
    later.takeLog();
    hardware.click(kWheelDown);
    settle();
    EXPECT_EQ(later.takeLog(), Lines{});
}

// A popup, since a window manager may keep a window of its own below.
TEST_F(X11EventTapsOnDesktop, ARaisedWindowDoesNotGetTheWheelEither) {
    X11Victim popup({150, 150, 200, 200, true});
    ASSERT_TRUE(popup.show());
    tap->setInterest(kSwallowed);
    settle();
    ASSERT_TRUE(loop.runUntil([&] { return windowsOverTheApplication() == 1; }));
    X11Stacking(*connection).stackOnTop(popup.window());
    EXPECT_EQ(windowsOverTheApplication(), 0);
    EXPECT_TRUE(loop.runUntil([&] { return windowsOverTheApplication() == 1; }));
}

TEST_F(X11EventTapsOnDesktop, TheOneWhoWantsToBeOnTopForEverWins) {
    X11Victim popup({150, 150, 200, 200, true});
    ASSERT_TRUE(popup.show());
    tap->setInterest(kSwallowed);
    settle();
    X11Stacking stacking(*connection);
    int times = 0;
    loop.runUntil(
        [&] {
            if (windowsOverTheApplication() == 1) ++times, stacking.stackOnTop(popup.window());
            return times > 100;
        },
        1s);
    EXPECT_GT(times, 1);
    EXPECT_LE(times, 30);
}

TEST_F(X11EventTapsOnDesktop, ThePanelStaysAboveWhicheverComesFirst) {
    const auto isAbove = [&] {
        hardware.movePointer(650, 110);
        const bool above = windowsOverTheApplication() == 0;
        hardware.movePointer(200, 200);
        return above && windowsOverTheApplication() == 1;
    };
    ASSERT_TRUE(take());
    tap->setInterest(kSwallowed);
    settle();
    EXPECT_TRUE(isAbove());
    keyboard->releaseKeyboard();
    tap->setInterest({});
    panel.hide();

    tap->setInterest(kSwallowed);
    ASSERT_TRUE(panel.show());
    X11Stacking(*connection).stackOnTop(panel.window());
    ASSERT_TRUE(take());
    EXPECT_TRUE(loop.runUntil(isAbove));
}

}  // namespace
}  // namespace tarvix
