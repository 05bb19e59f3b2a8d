#include <sys/socket.h>

#include <algorithm>

#include "linux/x11/X11Keyboard.h"
#include "tests/desktop/X11Desk.h"

namespace tarvix {
namespace {

class X11KeyboardOnDesktop : public X11Desk {
protected:
    // Another program that holds single keyboards, so that we can't.
    bool grabSingleKeyboard(X11Connection& other) {
        const std::uint32_t keys = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
        const auto answer = other.reply<xcb_input_xi_grab_device_reply>(
            xcb_input_xi_grab_device(other.get(), other.root(), XCB_CURRENT_TIME, XCB_NONE, hardware.keyboard(),
                                     XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC, 0, 1, &keys));
        return answer && answer->status == XCB_GRAB_STATUS_SUCCESS;
    }
    void ungrabSingleKeyboard(X11Connection& other) {
        xcb_input_xi_ungrab_device(other.get(), XCB_CURRENT_TIME, hardware.keyboard());
        other.sync();
    }
    xcb_window_t focus() {
        return connection->reply<xcb_get_input_focus_reply>(xcb_get_input_focus(connection->get()))->focus;
    }

    const Lines tapOfA{"key down 38", "key up 38"};
};

TEST_F(X11KeyboardOnDesktop, KeysGoToThePanelAndTheApplicationIsNotTouched) {
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), tapOfA);
    ASSERT_TRUE(take());
    EXPECT_EQ(panel.takeLog(), Lines{"sent focus in, mode 0"});
    hardware.tap(key::a);
    hardware.postedTap(key::s);
    EXPECT_EQ(takePanelKeys(), (Lines{"key down 38", "key up 38", "key down 39", "key up 39"}));
    EXPECT_EQ(application.takeLog(), Lines{}) << "neither keys nor a change of the focus";
    EXPECT_EQ(focus(), application.window());

    keyboard->releaseKeyboard();
    settle();
    EXPECT_EQ(panel.takeLog(), Lines{"sent focus out, mode 0"});
    hardware.tap(key::a);
    hardware.postedTap(key::a);
    EXPECT_EQ(application.takeLog(), (Lines{"key down 38", "key up 38", "key down 38", "key up 38"}));
    EXPECT_EQ(panel.takeLog(), Lines{});
    EXPECT_EQ(losses, 0);
}

TEST_F(X11KeyboardOnDesktop, GivingItBackTwiceIsOnce) {
    ASSERT_TRUE(take());
    keyboard->releaseKeyboard();
    keyboard->releaseKeyboard();
    settle();
    EXPECT_EQ(panel.takeLog(), (Lines{"sent focus in, mode 0", "sent focus out, mode 0"}));
}

TEST_F(X11KeyboardOnDesktop, ItWorksWhileAMenuHoldsTheKeyboardAndTheMenuKeepsIt) {
    ASSERT_TRUE(application.grabKeyboard());
    application.takeLog();
    ASSERT_TRUE(take());
    hardware.tap(key::a);
    EXPECT_EQ(takePanelKeys(), tapOfA);
    EXPECT_EQ(application.takeLog(), Lines{});
    keyboard->releaseKeyboard();
    settle();
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), tapOfA) << "the grab of the menu still stands";
    application.ungrabKeyboard();
}

TEST_F(X11KeyboardOnDesktop, WhatWasHeldBeforeGoesUpForTheApplicationAndNothingSticks) {
    hardware.keyDown(key::shift);
    hardware.postedKeyDown(key::control);
    application.takeLog();
    ASSERT_TRUE(take());
    EXPECT_EQ(application.takeLog(), (Lines{"key up 37 with 5", "key up 50 with 1"}));
    hardware.keyUp(key::shift);
    hardware.postedKeyUp(key::control);
    keyboard->releaseKeyboard();
    settle();
    EXPECT_EQ(application.takeLog(), Lines{});
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), tapOfA);
}

TEST_F(X11KeyboardOnDesktop, AModifierThatIsStillHeldAtTheEndCountsUntilItGoesUp) {
    ASSERT_TRUE(take());
    hardware.keyDown(key::shift);
    keyboard->releaseKeyboard();
    settle();
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), (Lines{"key down 38 with 1", "key up 38 with 1"}));
    hardware.keyUp(key::shift);
    settle();
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), tapOfA);
}

TEST_F(X11KeyboardOnDesktop, AModifierHeldThroughTwoSearchesDoesNotStick) {
    hardware.keyDown(key::super);
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(take());
        keyboard->releaseKeyboard();
        settle();
    }
    ASSERT_TRUE(take());
    hardware.keyUp(key::super);
    hardware.tap(key::a);
    EXPECT_EQ(takePanelKeys(), (Lines{"key down 38", "key up 38"}));
    keyboard->releaseKeyboard();
    settle();
    application.takeLog();
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), tapOfA);
}

TEST_F(X11KeyboardOnDesktop, AKeyThatIsHeldAtTheEndDoesNotReachTheApplication) {
    ASSERT_TRUE(take());
    hardware.keyDown(key::return_);
    settle();
    keyboard->releaseKeyboard();
    settle();
    // When a key that goes down now has begun to repeat, so would have the other one.
    hardware.postedKeyDown(key::s);
    Lines log;
    EXPECT_TRUE(loop.runUntil([&] {
        for (const std::string& line : application.takeLog()) log.push_back(line);
        return std::ranges::count(log, "key down 39") >= 3;
    }));
    hardware.postedKeyUp(key::s);
    hardware.keyUp(key::return_);
    for (const std::string& line : application.takeLog()) log.push_back(line);
    EXPECT_EQ(std::ranges::count(log, "key down 36") + std::ranges::count(log, "key up 36"), 0);
    EXPECT_EQ(takePanelKeys(), (Lines{"key down 36", "key up 36"})) << "the panel isn't left with a key that is down";
}

TEST_F(X11KeyboardOnDesktop, TheMonitorSeesPositionsAndModifiersFirst) {
    std::vector<KeyEvent> seen;
    const auto monitoring = events->monitorKeyDown([&](const KeyEvent& event) {
        seen.push_back(event);
        return event.keyCode == 125 ? Verdict::consume : Verdict::pass;
    });
    ASSERT_TRUE(take());
    hardware.tap(key::down);
    hardware.keyDown(key::super);
    hardware.keyDown(key::alt);
    hardware.tap(key::a);
    hardware.keyUp(key::alt);
    hardware.keyUp(key::super);
    EXPECT_EQ(takePanelKeys(), (Lines{"key down 133", "key down 64 with 64", "key down 38 with 72", "key up 38 with 72",
                                      "key up 64 with 72", "key up 133 with 64"}))
        << "neither the press nor the release of the consumed key";
    EXPECT_EQ(seen, (std::vector<KeyEvent>{{KeyEventType::keyDown, 125, 0},
                                           {KeyEventType::keyDown, 0, eventFlag::command | eventFlag::option}}));
}

TEST_F(X11KeyboardOnDesktop, TheMonitorMayGiveTheKeyboardBack) {
    const auto monitoring = events->monitorKeyDown([&](const KeyEvent&) {
        keyboard->releaseKeyboard();
        return Verdict::consume;
    });
    ASSERT_TRUE(take());
    hardware.tap(key::return_);
    settle();
    EXPECT_EQ(takePanelKeys(), Lines{});
    EXPECT_EQ(application.takeLog(), Lines{});
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), tapOfA);
}

TEST_F(X11KeyboardOnDesktop, WhatIsTypedAfterTheKeyThatEndsItReachesTheApplicationInOrder) {
    const auto monitoring = events->monitorKeyDown([&](const KeyEvent& event) {
        if (event.keyCode != 36) return Verdict::pass;
        keyboard->releaseKeyboard();
        return Verdict::consume;
    });
    ASSERT_TRUE(take());
    hardware.keyDown(key::return_);
    hardware.keyDown(key::shift);
    hardware.tap(key::a);
    hardware.keyUp(key::shift);
    hardware.postedTap(key::s);
    hardware.tap(key::a);
    hardware.keyUp(key::return_);
    settle();
    EXPECT_EQ(takePanelKeys(), Lines{});
    EXPECT_EQ(application.takeLog(), (Lines{"key down 38 with 1", "key up 38 with 1", "key down 39", "key up 39",
                                            "key down 38", "key up 38"}));
}

TEST_F(X11KeyboardOnDesktop, WhatWaitsForThePanelIsTheApplicationsOnceAKeyEndsIt) {
    const auto monitoring = events->monitorKeyDown([&](const KeyEvent& event) {
        if (event.keyCode != 36) return Verdict::pass;
        keyboard->releaseKeyboard();
        return Verdict::consume;
    });
    ASSERT_TRUE(take());
    keyboard->readyForKeyPress();
    hardware.tap(key::s);
    hardware.tap(key::return_);
    hardware.tap(key::a);
    EXPECT_EQ(takePanelKeys(), Lines{"key down 39"}) << "the others wait";
    keyboard->readyForKeyPress();
    settle();
    EXPECT_EQ(takePanelKeys(), Lines{"key up 39"});
    EXPECT_EQ(application.takeLog(), tapOfA);
}

TEST_F(X11KeyboardOnDesktop, WhatWaitsForThePanelIsNobodysOnceAClickEndsIt) {
    ASSERT_TRUE(take());
    keyboard->readyForKeyPress();
    hardware.tap(key::s);
    hardware.tap(key::a);
    settle();
    hardware.movePointer(200, 200);
    hardware.click();
    settle();
    EXPECT_EQ(losses, 1);
    Lines log;
    EXPECT_TRUE(loop.runUntil([&] {
        for (const std::string& line : application.takeLog()) log.push_back(line);
        return std::ranges::count(log, "button up 1") == 1;
    }));
    EXPECT_EQ(log, (Lines{"button down 1", "button up 1"}));
}

TEST_F(X11KeyboardOnDesktop, APanelThatMissesAKeyIsNotWaitedForWithoutEnd) {
    ASSERT_TRUE(take());
    keyboard->readyForKeyPress();
    hardware.tap(key::s);
    hardware.tap(key::a);
    Lines keys;
    EXPECT_TRUE(loop.runUntil([&] {
        for (const std::string& line : panel.takeLog())
            if (line.starts_with("sent key")) keys.push_back(line.substr(5));
        return keys.size() == 4;
    })) << "though no further key comes";
    EXPECT_EQ(keys, (Lines{"key down 39", "key up 39", "key down 38", "key up 38"}));
}

TEST_F(X11KeyboardOnDesktop, WithoutAMonitorEveryKeyIsThePanels) {
    {
        const auto monitoring = events->monitorKeyDown([](const KeyEvent&) { return Verdict::consume; });
    }
    ASSERT_TRUE(take());
    hardware.tap(key::a);
    EXPECT_EQ(takePanelKeys(), tapOfA);
}

TEST_F(X11KeyboardOnDesktop, AHeldKeyRepeats) {
    int presses = 0;
    const auto monitoring = events->monitorKeyDown([&](const KeyEvent&) {
        ++presses;
        return Verdict::pass;
    });
    ASSERT_TRUE(take());
    hardware.keyDown(key::a);
    EXPECT_TRUE(loop.runUntil([&] { return presses >= 4; }));
    hardware.keyUp(key::a);
    const auto keys = takePanelKeys();
    EXPECT_EQ(std::ranges::count(keys, "key down 38"), presses);
    EXPECT_EQ(std::ranges::count(keys, "key up 38"), 1);
}

TEST_F(X11KeyboardOnDesktop, AKeyThatWasDownBeforeDoesNotRepeatIntoThePanel) {
    hardware.keyDown(key::s);
    ASSERT_TRUE(take());
    EXPECT_TRUE(loop.runUntil([&] { return repeats >= 3; }));
    hardware.keyUp(key::s);
    EXPECT_EQ(takePanelKeys(), Lines{});
}

TEST_F(X11KeyboardOnDesktop, ModifiersOfOneKeyboardHoldForKeysOfAnother) {
    ASSERT_TRUE(take());
    hardware.keyDown(key::shift);
    hardware.postedTap(key::a);
    hardware.keyUp(key::shift);
    EXPECT_EQ(takePanelKeys(), (Lines{"key down 50", "key down 38 with 1", "key up 38 with 1", "key up 50 with 1"}));
}

TEST_F(X11KeyboardOnDesktop, LocksOfTheApplicationsHoldInThePanelAndTheOtherWayRound) {
    lockModifiers(*connection, mask::numLock, mask::numLock);
    ASSERT_TRUE(take());
    hardware.tap(key::a);
    EXPECT_EQ(takePanelKeys(), (Lines{"key down 38 with 16", "key up 38 with 16"}));
    hardware.tap(key::capsLock);
    takePanelKeys();
    hardware.tap(key::a);
    EXPECT_EQ(takePanelKeys(), (Lines{"key down 38 with 18", "key up 38 with 18"}));
    keyboard->releaseKeyboard();
    settle();
    application.takeLog();
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), (Lines{"key down 38 with 18", "key up 38 with 18"}));
    hardware.tap(key::capsLock);
    lockModifiers(*connection, mask::numLock, 0);
}

TEST_F(X11KeyboardOnDesktop, AClickOutsideTakesItAway) {
    ASSERT_TRUE(take());
    hardware.movePointer(650, 110);
    hardware.click();
    settle();
    EXPECT_EQ(losses, 0) << "in the panel";
    hardware.movePointer(200, 200);
    hardware.click(5);
    settle();
    EXPECT_EQ(losses, 0) << "the wheel";
    hardware.click();
    EXPECT_TRUE(loop.runUntil([&] { return losses == 1; }));
    // A window manager may look at the click before the application gets it.
    EXPECT_TRUE(loop.runUntil([&] { return std::ranges::count(application.takeLog(), "button up 1") == 1; }));
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), tapOfA);
    hardware.click();
    settle();
    EXPECT_EQ(losses, 1) << "it is told once";
}

TEST_F(X11KeyboardOnDesktop, AProgramThatTakesTheWholeKeyboardTakesItAway) {
    ASSERT_TRUE(take());
    X11Victim screenLock({0, 0, 50, 50, true});
    ASSERT_TRUE(screenLock.show());
    ASSERT_TRUE(screenLock.grabKeyboard());
    EXPECT_TRUE(loop.runUntil([&] { return losses == 1; }));
    screenLock.takeLog();
    hardware.tap(key::a);
    EXPECT_EQ(screenLock.takeLog(), tapOfA);
}

// Before it has the keyboard, which it may never get while it is ours.
TEST_F(X11KeyboardOnDesktop, AWindowOverTheWholeScreenTakesItAway) {
    ASSERT_TRUE(take());
    const xcb_screen_t& screen = connection->screen();
    X11Victim small({0, 0, 500, screen.height_in_pixels, true});
    ASSERT_TRUE(small.show());
    settle();
    EXPECT_EQ(losses, 0);
    X11Victim screenLock({0, 0, screen.width_in_pixels, screen.height_in_pixels, true});
    ASSERT_TRUE(screenLock.show());
    EXPECT_TRUE(loop.runUntil([&] { return losses == 1; }));
    ASSERT_TRUE(screenLock.grabKeyboard());
    screenLock.takeLog();
    hardware.tap(key::a);
    EXPECT_EQ(screenLock.takeLog(), tapOfA);
}

TEST_F(X11KeyboardOnDesktop, AWindowOfOursOverTheWholeScreenDoesNot) {
    ASSERT_TRUE(take());
    const xcb_window_t own = xcb_generate_id(connection->get());
    const std::uint32_t overrideRedirect = 1;
    xcb_create_window(connection->get(), XCB_COPY_FROM_PARENT, own, connection->root(), 0, 0,
                      connection->screen().width_in_pixels, connection->screen().height_in_pixels, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, &overrideRedirect);
    xcb_map_window(connection->get(), own);
    settle();
    EXPECT_EQ(losses, 0);
    xcb_destroy_window(connection->get(), own);
}

TEST_F(X11KeyboardOnDesktop, AnotherWindowWithTheFocusTakesItAway) {
    ASSERT_TRUE(take());
    X11Victim other({100, 450, 200, 100, false});
    ASSERT_TRUE(other.show());
    ASSERT_TRUE(other.focus());
    EXPECT_TRUE(loop.runUntil([&] { return losses == 1; }));
}

TEST_F(X11KeyboardOnDesktop, WhereAKeyboardIsRefusedTheWholeOneIsTaken) {
    auto other = std::move(X11Connection::open().value());
    ASSERT_TRUE(startXInput(*other));
    ASSERT_TRUE(grabSingleKeyboard(*other));
    ASSERT_TRUE(take());
    ungrabSingleKeyboard(*other);
    hardware.tap(key::a);
    EXPECT_EQ(takePanelKeys(), tapOfA);
    hardware.postedTap(key::a);
    EXPECT_EQ(takePanelKeys(), tapOfA);
    keyboard->releaseKeyboard();
    settle();
    application.takeLog();
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), tapOfA);
}

TEST_F(X11KeyboardOnDesktop, WhereEveryGrabIsRefusedTheFocusIsTakenAndGivenBack) {
    auto other = std::move(X11Connection::open().value());
    ASSERT_TRUE(startXInput(*other));
    ASSERT_TRUE(grabSingleKeyboard(*other));
    ASSERT_TRUE(application.grabKeyboard());
    ASSERT_TRUE(take());
    application.ungrabKeyboard();
    ungrabSingleKeyboard(*other);
    settle();
    EXPECT_NE(focus(), application.window());
    hardware.tap(key::a);
    EXPECT_EQ(takePanelKeys(), tapOfA);
    keyboard->releaseKeyboard();
    settle();
    EXPECT_EQ(focus(), application.window());
    application.takeLog();
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), tapOfA);
}

TEST_F(X11KeyboardOnDesktop, TheEndOfTheConnectionEndsEveryGrab) {
    auto dying = std::move(X11Connection::open().value());
    auto dyingEvents = std::move(X11Events::open(*dying).value());
    auto dyingKeyboard = std::move(X11Keyboard::open(*dying, *dyingEvents).value());
    ASSERT_TRUE(dyingKeyboard->takeKeyboard(panel.window(), [] {}));
    dying->sync();
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), Lines{});
    shutdown(xcb_get_file_descriptor(dying->get()), SHUT_RDWR);
    // The server notices in its own time.
    EXPECT_TRUE(loop.runUntil([&] {
        hardware.tap(key::a);
        return application.takeLog() == tapOfA;
    }));
}

}  // namespace
}  // namespace tarvix
