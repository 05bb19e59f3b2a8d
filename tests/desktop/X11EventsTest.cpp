#include <cmath>

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

TEST_F(X11EventsOnDesktop, APostedKeyCarriesItsFlagsAndLeavesNothingHeld) {
    EXPECT_TRUE(events->post(KeyEvent{KeyEventType::keyDown, 0, eventFlag::control}));
    EXPECT_TRUE(events->post(KeyEvent{KeyEventType::keyUp, 0, 0}));
    connection->sync();
    EXPECT_EQ(application.takeLog(), (Lines{"key down 37", "key down 38 with 4", "key up 37 with 4", "key up 38"}));
    EXPECT_FALSE(events->post(KeyEvent{KeyEventType::keyDown, 0xffff, 0}));
}

}  // namespace
}  // namespace tarvix
