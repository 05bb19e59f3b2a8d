#include <xcb/xtest.h>

#include "linux/x11/X11Remains.h"
#include "tests/desktop/X11Desk.h"

namespace tarvix {
namespace {

// A connection that ends with things left standing, as that of a program that is killed.
class X11RemainsOnDesktop : public X11Desk {
protected:
    X11RemainsOnDesktop() {
        startXInput(*dying);
        dying->noteRemainsIn(remains);
    }

    void post(std::uint8_t type, std::uint8_t detail) {
        xcb_test_fake_input(dying->get(), type, detail, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
        dying->sync();
    }
    std::uint16_t masterModifiers() { return modifierStates(*connection, {kMasterKeyboard}).front().effective(); }
    void endAndUndo() {
        dying.reset();
        undo(*connection, remains);
    }

    std::unique_ptr<X11Connection> dying = std::move(X11Connection::open().value());
    X11Remains remains;
};

TEST_F(X11RemainsOnDesktop, LockedModifiersAreUnlockedAndOthersStay) {
    lockModifiers(*connection, mask::numLock, mask::numLock);
    lockModifiers(*dying, mask::shift | mask::super, mask::shift | mask::super);
    remains.lockedModifiers = mask::shift | mask::super;
    dying->sync();
    ASSERT_EQ(masterModifiers(), mask::shift | mask::super | mask::numLock);
    endAndUndo();
    EXPECT_EQ(masterModifiers(), mask::numLock);
    lockModifiers(*connection, mask::numLock, 0);
}

TEST_F(X11RemainsOnDesktop, PostedKeysAndButtonsGoUp) {
    remains.noteKey(key::a, true);
    post(XCB_KEY_PRESS, key::a);
    remains.noteButton(1, true);
    post(XCB_BUTTON_PRESS, 1);
    remains.noteKey(key::s, true);  // killed before it was posted
    Lines log;
    EXPECT_TRUE(loop.runUntil([&] {  // a window manager may look at the click before the application gets it
        for (const std::string& line : application.takeLog()) log.push_back(line);
        return std::ranges::count(log, "button down 1") == 1;
    }));
    EXPECT_GT(std::ranges::count(log, "key down 38"), 0);
    endAndUndo();
    log.clear();
    EXPECT_TRUE(loop.runUntil([&] {
        for (const std::string& line : application.takeLog()) log.push_back(line);
        const auto has = [&](const char* what) {
            return std::ranges::any_of(log, [&](const std::string& line) { return line.starts_with(what); });
        };
        return has("key up 38") && has("button up 1");
    })) << testing::PrintToString(log);
    EXPECT_TRUE(keysDownForApplications(*connection).none());
}

TEST_F(X11RemainsOnDesktop, WhatWasCrossedOutIsLeftAlone) {
    remains.noteKey(key::a, true);
    remains.noteKey(key::a, false);
    hardware.postedKeyDown(key::a);  // by another program
    endAndUndo();
    EXPECT_TRUE(keysDownForApplications(*connection)[key::a]);
    hardware.postedKeyUp(key::a);
}

TEST_F(X11RemainsOnDesktop, AKeyThatWentUpDuringAGrabGoesUpForTheApplications) {
    hardware.keyDown(key::shift);
    const std::uint32_t none = 0;
    const auto grabbed = dying->reply<xcb_input_xi_grab_device_reply>(
        xcb_input_xi_grab_device(dying->get(), dying->root(), XCB_CURRENT_TIME, XCB_NONE, hardware.keyboard(),
                                 XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC, 0, 1, &none));
    ASSERT_TRUE(grabbed && grabbed->status == XCB_GRAB_STATUS_SUCCESS);
    hardware.keyUp(key::shift);
    ASSERT_EQ(masterModifiers(), mask::shift);
    endAndUndo();
    EXPECT_EQ(masterModifiers(), 0);
}

TEST_F(X11RemainsOnDesktop, TheFocusGoesBackWhereItWas) {
    const xcb_window_t window = xcb_generate_id(dying->get());
    const std::uint32_t overrideRedirect = 1;
    xcb_create_window(dying->get(), XCB_COPY_FROM_PARENT, window, dying->root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, &overrideRedirect);
    xcb_map_window(dying->get(), window);
    xcb_set_input_focus(dying->get(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    dying->sync();
    remains.focus = application.window();
    endAndUndo();
    EXPECT_TRUE(loop.runUntil([&] {
        return connection->reply<xcb_get_input_focus_reply>(xcb_get_input_focus(connection->get()))->focus ==
               application.window();
    }));
}

TEST_F(X11RemainsOnDesktop, WithNothingNotedNothingChanges) {
    hardware.keyDown(key::control);
    application.takeLog();
    endAndUndo();
    EXPECT_EQ(application.takeLog(), Lines{});
    EXPECT_EQ(masterModifiers(), mask::control);
    hardware.keyUp(key::control);
}

}  // namespace
}  // namespace tarvix
