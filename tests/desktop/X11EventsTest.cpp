#include <algorithm>
#include <cmath>
#include <thread>

#include "linux/x11/X11Events.h"
#include "tests/desktop/X11Desk.h"

namespace tarvix {
namespace {

MouseEvent mouse(MouseEventType type, AxPoint point, std::optional<std::uint64_t> flags = std::nullopt) {
    const bool isRight = type == MouseEventType::rightMouseDown || type == MouseEventType::rightMouseUp;
    return {type, point, isRight ? 1 : 0, type == MouseEventType::mouseMoved ? 0 : 1, flags};
}

class X11EventsOnDesktop : public X11Desk {
protected:
    void click(AxPoint point, std::optional<std::uint64_t> flags = std::nullopt) {
        EXPECT_TRUE(events->post(mouse(MouseEventType::leftMouseDown, point, flags)));
        EXPECT_TRUE(events->post(mouse(MouseEventType::leftMouseUp, point, flags)));
        connection->sync();
    }
    // A window manager may look at a click before the application gets it, and hand it on with the modifiers of that
    // later time: what is held has to be held until the click is here.
    Lines takeButtons(Lines::size_type count) {
        Lines buttons;
        loop.runUntil([&] {
            for (const std::string& line : application.takeLog())
                if (line.starts_with("button")) buttons.push_back(line);
            return buttons.size() >= count;
        });
        return buttons;
    }
    AxPoint pointer() {
        const auto p =
            connection->reply<xcb_query_pointer_reply>(xcb_query_pointer(connection->get(), connection->root()));
        return {double(p->root_x), double(p->root_y)};
    }
};

TEST_F(X11EventsOnDesktop, AClickArrivesAsOneDownAndOneUp) {
    click({150, 150});
    EXPECT_EQ(takeButtons(2), (Lines{"button down 1", "button up 1"}));
}

TEST_F(X11EventsOnDesktop, TwoClicksInOneGoArriveAsTwo) {
    // On a popup: openbox 3.6, which looks at every click first, now and then loses one of two on a busy machine.
    click({650, 110});
    click({650, 110});
    EXPECT_EQ(panel.takeLog(), (Lines{"button down 1", "button up 1", "button down 1", "button up 1"}));
}

TEST_F(X11EventsOnDesktop, ARightClickIsTheThirdButton) {
    EXPECT_TRUE(events->post(mouse(MouseEventType::rightMouseDown, {150, 150})));
    EXPECT_TRUE(events->post(mouse(MouseEventType::rightMouseUp, {150, 150})));
    connection->sync();
    EXPECT_EQ(takeButtons(2), (Lines{"button down 3", "button up 3"}));
}

TEST_F(X11EventsOnDesktop, PointsAreRoundedToTheNearestPixel) {
    EXPECT_TRUE(events->post(mouse(MouseEventType::mouseMoved, {150.4, 160.5})));
    EXPECT_EQ(pointer(), (AxPoint{150, 161}));
    EXPECT_TRUE(events->post(mouse(MouseEventType::mouseMoved, {150.6, 160.49})));
    EXPECT_EQ(pointer(), (AxPoint{151, 160}));
}

TEST_F(X11EventsOnDesktop, APointThatIsNowherePostsNothing) {
    const AxPoint before = pointer();
    EXPECT_FALSE(events->post(mouse(MouseEventType::leftMouseDown, {std::nan(""), 10})));
    EXPECT_FALSE(events->post(mouse(MouseEventType::mouseMoved, {1e9, 10})));
    connection->sync();
    EXPECT_EQ(pointer(), before);
    click({150, 150});
    EXPECT_EQ(takeButtons(2), (Lines{"button down 1", "button up 1"})) << "this one alone";
}

TEST_F(X11EventsOnDesktop, ModifiersThatAreHeldStayInEffect) {
    hardware.keyDown(key::control);
    click({150, 150});
    EXPECT_EQ(takeButtons(2), (Lines{"button down 1 with 4", "button up 1 with 4"}));
    hardware.keyUp(key::control);
}

TEST_F(X11EventsOnDesktop, ModifiersThatAreHeldStayInEffectWhileThePanelHasTheKeyboard) {
    ASSERT_TRUE(take());
    hardware.keyDown(key::shift);
    hardware.keyDown(key::super);
    click({150, 150});
    EXPECT_EQ(takeButtons(2), (Lines{"button down 1 with 65", "button up 1 with 65"}));
    hardware.keyUp(key::super);
    click({150, 150});
    EXPECT_EQ(takeButtons(2), (Lines{"button down 1 with 1", "button up 1 with 1"}));
    hardware.keyUp(key::shift);
    click({150, 150});
    EXPECT_EQ(takeButtons(2), (Lines{"button down 1", "button up 1"}));
    settle();
    EXPECT_EQ(losses, 0) << "a click of our own takes nothing away";
}

TEST_F(X11EventsOnDesktop, ModifiersHeldSinceBeforeThePanelStayInEffectToo) {
    hardware.keyDown(key::control);
    ASSERT_TRUE(take());
    click({150, 150});
    EXPECT_EQ(takeButtons(2), (Lines{"button down 1 with 4", "button up 1 with 4"}));
    keyboard->releaseKeyboard();
    hardware.keyUp(key::control);
}

TEST_F(X11EventsOnDesktop, ClearedFlagsLiftWhatIsHeldAndNothingSticks) {
    hardware.keyDown(key::shift);
    click({150, 150}, 0);
    EXPECT_EQ(takeButtons(2), (Lines{"button down 1", "button up 1"}));
    hardware.keyUp(key::shift);
    hardware.tap(key::shift);
    application.takeLog();
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), (Lines{"key down 38", "key up 38"}));
}

TEST_F(X11EventsOnDesktop, AClickWithClearedFlagsHasNoneThoughThePanelGivesTheKeyboardBackRightAfterIt) {
    ASSERT_TRUE(take());
    hardware.keyDown(key::control);
    hardware.keyDown(key::super);
    click({150, 150}, 0);
    keyboard->releaseKeyboard();
    EXPECT_EQ(takeButtons(2), (Lines{"button down 1", "button up 1"}));
    hardware.keyUp(key::super);
    hardware.keyUp(key::control);
}

TEST_F(X11EventsOnDesktop, AClickKeepsWhatIsHeldThoughThePanelGivesTheKeyboardBackRightAfterIt) {
    ASSERT_TRUE(take());
    hardware.keyDown(key::shift);
    click({150, 150});
    keyboard->releaseKeyboard();
    EXPECT_EQ(takeButtons(2), (Lines{"button down 1 with 1", "button up 1 with 1"}));
    hardware.keyUp(key::shift);
    settle();
    click({150, 150});
    EXPECT_EQ(takeButtons(2), (Lines{"button down 1", "button up 1"}));
}

TEST_F(X11EventsOnDesktop, GivenFlagsAreSetForTheClickAlone) {
    // On a popup, since a window manager that looks at a click first may pass it on when the flags are gone.
    click({650, 110}, eventFlag::control | eventFlag::shift);
    EXPECT_EQ(panel.takeLog(), (Lines{"button down 1 with 5", "button up 1 with 5"}));
    click({650, 110});
    EXPECT_EQ(panel.takeLog(), (Lines{"button down 1", "button up 1"}));
}

TEST_F(X11EventsOnDesktop, AClickReachesAnApplicationThatHoldsTheKeyboard) {
    ASSERT_TRUE(application.grabKeyboard());
    ASSERT_TRUE(take());
    click({150, 150});
    EXPECT_EQ(takeButtons(2), (Lines{"button down 1", "button up 1"}));
    application.ungrabKeyboard();
}

// Key events, with the flags that they were posted with and no others
// ---------------------------------------------------

class X11KeyPostingOnDesktop : public X11Desk {
protected:
    static constexpr std::uint16_t a = 0, keypadOne = 83;  // on the table of `Key`

    void post(std::uint16_t keyCode, std::uint64_t flags = 0) {
        EXPECT_TRUE(events->post(KeyEvent{KeyEventType::keyDown, keyCode, flags}));
        EXPECT_TRUE(events->post(KeyEvent{KeyEventType::keyUp, keyCode, flags}));
        settle();
    }
    std::uint8_t state() { return modifierStates(*connection, {kMasterKeyboard}).front().effective(); }
    // What the application sees of a key that a hand presses afterwards.
    Lines handsA() {
        application.takeLog();
        hardware.tap(key::a);
        return application.takeLog();
    }

    const Lines plainA{"key down 38", "key up 38"};
};

TEST_F(X11KeyPostingOnDesktop, AKeyCarriesItsFlagsWithoutAnyKeyForThem) {
    post(a);
    EXPECT_EQ(application.takeLog(), plainA);
    post(a, eventFlag::control);
    EXPECT_EQ(application.takeLog(), (Lines{"key down 38 with 4", "key up 38 with 4"}));
    post(a, eventFlag::command | eventFlag::shift | eventFlag::option | eventFlag::secondaryFn);
    EXPECT_EQ(application.takeLog(), (Lines{"key down 38 with 73", "key up 38 with 73"}));
    EXPECT_EQ(handsA(), plainA);
}

TEST_F(X11KeyPostingOnDesktop, APositionWithoutAKeyPostsNothing) {
    EXPECT_FALSE(events->post(KeyEvent{KeyEventType::keyDown, 0xffff, 0}));
    settle();
    EXPECT_EQ(application.takeLog(), Lines{});
}

TEST_F(X11KeyPostingOnDesktop, APressAndItsReleaseMayComeApart) {
    EXPECT_TRUE(events->post(KeyEvent{KeyEventType::keyDown, a, eventFlag::shift}));
    settle();
    EXPECT_EQ(state(), 0) << "in between nothing is held";
    EXPECT_TRUE(events->post(KeyEvent{KeyEventType::keyUp, a, eventFlag::shift}));
    settle();
    EXPECT_EQ(application.takeLog(), (Lines{"key down 38 with 1", "key up 38 with 1"}));
}

TEST_F(X11KeyPostingOnDesktop, AHeldModifierIsNoneOfTheEventsAndCountsAfterwardsUntilItGoesUp) {
    struct Held {
        std::uint8_t key;
        unsigned mask;
    };
    for (const auto& [held, bit] : {Held{key::shift, mask::shift}, Held{key::control, mask::control}}) {
        hardware.keyDown(held);
        application.takeLog();
        post(a);
        const std::string with = " with " + std::to_string(bit);
        EXPECT_EQ(application.takeLog(), (Lines{"key up " + std::to_string(held) + with, "key down 38", "key up 38"}));
        EXPECT_EQ(handsA(), (Lines{"key down 38" + with, "key up 38" + with}));
        post(a);
        EXPECT_EQ(application.takeLog(), plainA) << "a second time";
        hardware.keyUp(held);
        settle();
        EXPECT_EQ(handsA(), plainA);
        EXPECT_EQ(state(), 0);
    }
}

TEST_F(X11KeyPostingOnDesktop, AltAndSuperDoNotGoDownAndUpWithNothingInBetween) {
    const std::uint8_t silent = X11Modifiers::read(*connection).silentKey.value();
    for (const std::uint8_t held : {key::alt, key::super}) {
        const std::string with = " with " + std::to_string(held == key::alt ? mask::alt : mask::super);
        hardware.keyDown(held);
        application.takeLog();
        post(a);
        EXPECT_EQ(application.takeLog(),
                  (Lines{"key down " + std::to_string(silent) + with, "key up " + std::to_string(silent) + with,
                         "key up " + std::to_string(held) + with, "key down 38", "key up 38"}));
        EXPECT_EQ(handsA(), (Lines{"key down 38" + with, "key up 38" + with}));
        hardware.keyUp(held);
        settle();
        EXPECT_EQ(application.takeLog(), Lines{}) << "its own going up is no news";
        EXPECT_EQ(handsA(), plainA);
    }
}

TEST_F(X11KeyPostingOnDesktop, OfSeveralHeldModifiersThoseThatAreWantedStayDown) {
    hardware.keyDown(key::control);
    hardware.keyDown(key::shift);
    application.takeLog();
    post(a, eventFlag::control);
    EXPECT_EQ(application.takeLog(), (Lines{"key up 50 with 5", "key down 38 with 4", "key up 38 with 4"}));
    EXPECT_EQ(handsA(), (Lines{"key down 38 with 5", "key up 38 with 5"}));
    hardware.keyUp(key::control);
    settle();
    EXPECT_EQ(handsA(), (Lines{"key down 38 with 1", "key up 38 with 1"}));
    hardware.keyUp(key::shift);
    settle();
    EXPECT_EQ(handsA(), plainA);
}

TEST_F(X11KeyPostingOnDesktop, AModifierThatAProgramHoldsIsHeldAgainAfterwards) {
    hardware.postedKeyDown(key::shift);
    application.takeLog();
    post(a);
    EXPECT_EQ(application.takeLog(), (Lines{"key up 50 with 1", "key down 38", "key down 50", "key up 50 with 1",
                                            "key up 38", "key down 50"}));
    EXPECT_EQ(handsA(), (Lines{"key down 38 with 1", "key up 38 with 1"}));
    hardware.postedKeyUp(key::shift);
    EXPECT_EQ(handsA(), plainA);
}

TEST_F(X11KeyPostingOnDesktop, AltGrIsNoFlagAndIsLiftedToo) {
    constexpr std::uint8_t altGr = 92;
    hardware.keyDown(altGr);
    application.takeLog();
    post(a);
    EXPECT_EQ(application.takeLog(), (Lines{"key up 92 with 128", "key down 38", "key up 38"}));
    hardware.keyUp(altGr);
    settle();
    EXPECT_EQ(handsA(), plainA);
}

TEST_F(X11KeyPostingOnDesktop, CapsLockPlaysNoPartAndStaysOn) {
    hardware.tap(key::capsLock);
    application.takeLog();
    post(a);
    post(a, eventFlag::shift);
    EXPECT_EQ(application.takeLog(), (Lines{"key down 38", "key up 38", "key down 38 with 1", "key up 38 with 1"}));
    EXPECT_EQ(handsA(), (Lines{"key down 38 with 2", "key up 38 with 2"}));
    hardware.tap(key::capsLock);
    EXPECT_EQ(state(), 0);
}

TEST_F(X11KeyPostingOnDesktop, TheKeypadTypesDigitsWithNumLockOnAndOff) {
    post(keypadOne);
    EXPECT_EQ(application.takeLog(), (Lines{"key down 87 with 16", "key up 87 with 16"}));
    EXPECT_EQ(state(), 0);
    hardware.tap(key::numLock);
    application.takeLog();
    post(keypadOne);
    post(a);
    EXPECT_EQ(application.takeLog(),
              (Lines{"key down 87 with 16", "key up 87 with 16", "key down 38 with 16", "key up 38 with 16"}));
    hardware.tap(key::numLock);
    EXPECT_EQ(state(), 0);
}

TEST_F(X11KeyPostingOnDesktop, WhatAHandTypesMeanwhileIsNotLost) {
    hardware.keyDown(key::shift);
    application.takeLog();
    std::jthread hand([] {
        Hardware other;
        for (int i = 0; i < 200; ++i) other.tap(key::s);
    });
    for (int i = 0; i < 50; ++i) post(a);
    hand.join();
    settle();
    const Lines log = application.takeLog();
    EXPECT_EQ(std::ranges::count(log, "key down 38"), 50);
    EXPECT_EQ(std::ranges::count_if(log, [](const std::string& line) { return line.starts_with("key down 39"); }), 200);
    hardware.keyUp(key::shift);
    settle();
    EXPECT_EQ(handsA(), plainA);
}

TEST_F(X11KeyPostingOnDesktop, AModifierThatGoesUpMeanwhileDoesNotStick) {
    for (int i = 0; i < 50; ++i) {
        hardware.keyDown(key::shift);
        std::jthread hand([&] { hardware.keyUp(key::shift); });
        post(a);
        hand.join();
        settle();
        ASSERT_EQ(state(), 0) << i;
    }
}

TEST_F(X11KeyPostingOnDesktop, WhileAPanelHasTheKeyboardAKeyReachesItWithItsFlags) {
    hardware.keyDown(key::shift);
    hardware.keyDown(key::super);
    ASSERT_TRUE(take());
    std::vector<KeyEvent> seen;
    const auto monitoring = events->monitorKeyDown([&](const KeyEvent& event) {
        seen.push_back(event);
        return Verdict::pass;
    });
    post(a, eventFlag::command);
    post(a);
    post(keypadOne);
    EXPECT_EQ(takePanelKeys(), (Lines{"key down 38 with 64", "key up 38 with 64", "key down 38", "key up 38",
                                      "key down 87 with 16", "key up 87 with 16"}));
    EXPECT_EQ(seen, (std::vector<KeyEvent>{{KeyEventType::keyDown, a, eventFlag::command},
                                           {KeyEventType::keyDown, a, 0},
                                           {KeyEventType::keyDown, keypadOne, 0}}));
    hardware.tap(key::a);
    EXPECT_EQ(takePanelKeys(), (Lines{"key down 38 with 65", "key up 38 with 65"})) << "the hand's own";
    hardware.keyUp(key::super);
    hardware.keyUp(key::shift);
    keyboard->releaseKeyboard();
    settle();
    EXPECT_EQ(handsA(), plainA);
}

TEST_F(X11KeyPostingOnDesktop, WhileAPanelHasTheKeyboardCapsLockPlaysNoPartEither) {
    hardware.tap(key::capsLock);
    ASSERT_TRUE(take());
    post(a);
    EXPECT_EQ(takePanelKeys(), plainA);
    hardware.tap(key::a);
    EXPECT_EQ(takePanelKeys(), (Lines{"key down 38 with 2", "key up 38 with 2"}));
    keyboard->releaseKeyboard();
    settle();
    hardware.tap(key::capsLock);
}

TEST_F(X11KeyPostingOnDesktop, WhileAPanelHasTheWholeKeyboardAKeyReachesItWithItsFlags) {
    auto other = std::move(X11Connection::open().value());
    ASSERT_TRUE(startXInput(*other));
    const std::uint32_t keys = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
    other->reply<xcb_input_xi_grab_device_reply>(
        xcb_input_xi_grab_device(other->get(), other->root(), XCB_CURRENT_TIME, XCB_NONE, hardware.keyboard(),
                                 XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC, 0, 1, &keys));
    ASSERT_TRUE(take());
    xcb_input_xi_ungrab_device(other->get(), XCB_CURRENT_TIME, hardware.keyboard());
    other->sync();
    hardware.keyDown(key::shift);
    post(a, eventFlag::command);
    hardware.keyUp(key::shift);
    EXPECT_EQ(takePanelKeys(), (Lines{"key down 50", "key down 38 with 64", "key up 38 with 64", "key up 50 with 1"}));
}

}  // namespace
}  // namespace tarvix
