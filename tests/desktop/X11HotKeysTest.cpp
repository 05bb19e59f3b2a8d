#include <algorithm>
#include <cstdlib>
#include <utility>

#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"
#include "linux/x11/EvdevKeyCodes.h"
#include "linux/x11/X11HotKeys.h"
#include "tests/contract/HotKeysContract.h"
#include "tests/desktop/X11Desk.h"

namespace tarvix {
namespace {

constexpr std::uint32_t kSpace = 49;            // the position of the space key
constexpr std::uint32_t kShiftCommand = 0x300;  // carbon bits
constexpr std::uint32_t kControlShift = 0x1200;
constexpr std::uint32_t kId = 7;

class X11HotKeysOnDesktop : public X11Desk {
protected:
    void SetUp() override {
        X11Desk::SetUp();
        listening_ = hotKeys->onHotKey([this](HotKeyEvent event, std::uint32_t id) {
            seen.push_back((event == HotKeyEvent::pressed ? "pressed " : "released ") + std::to_string(id));
        });
        ASSERT_TRUE(hotKeys->registerHotKey(kId, kSpace, kShiftCommand));
    }

    void press() {
        for (const std::uint8_t k : {key::shift, key::super, key::space}) hardware.keyDown(k);
    }
    void release() {
        for (const std::uint8_t k : {key::space, key::super, key::shift}) hardware.keyUp(k);
    }
    void pressPosted() {
        for (const std::uint8_t k : {key::shift, key::super, key::space}) hardware.postedKeyDown(k);
    }
    void releasePosted() {
        for (const std::uint8_t k : {key::space, key::super, key::shift}) hardware.postedKeyUp(k);
    }
    Lines takeSeen() {
        settle();
        settle();  // what the first one asked the server has been answered
        return std::exchange(seen, {});
    }
    // What a program that has a keyboard for itself does.
    static bool grabKeyboards(X11Connection& other, const std::vector<std::uint16_t>& devices) {
        const std::uint32_t keys = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;
        return std::ranges::all_of(devices, [&](std::uint16_t device) {
            const auto grabbed = other.reply<xcb_input_xi_grab_device_reply>(xcb_input_xi_grab_device(
                other.get(), other.root(), XCB_CURRENT_TIME, XCB_NONE, device, XCB_INPUT_GRAB_MODE_22_ASYNC,
                XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, 1, &keys));
            return grabbed && grabbed->status == XCB_GRAB_STATUS_SUCCESS;
        });
    }
    static void ungrabKeyboards(X11Connection& other, const std::vector<std::uint16_t>& devices) {
        for (const std::uint16_t device : devices) xcb_input_xi_ungrab_device(other.get(), XCB_CURRENT_TIME, device);
        other.sync();
    }
    static std::unique_ptr<X11Connection> otherProgram() {
        auto other = std::move(X11Connection::open().value());
        EXPECT_TRUE(startXInput(*other));
        return other;
    }
    // Menus and raw keys are told among what is seen.
    void seeMenusAndRawKeys() {
        menus_ = hotKeys->onMenuTracking(
            [this](MenuTracking now) { seen.push_back(now == MenuTracking::began ? "menu began" : "menu ended"); });
        rawKeys_ = hotKeys->onRawKey([this](const RawKeyEvent& key) {
            seen.push_back((key.event == HotKeyEvent::pressed ? "raw pressed " : "raw released ") +
                           std::to_string(key.keyCode) + " with " + std::to_string(key.modifiers));
            return Verdict::pass;
        });
    }
    static bool hasKey(const Lines& log, std::uint8_t keycode) {
        const std::string number = " " + std::to_string(keycode);
        for (const std::string& line : log)
            if (line.find("down" + number) != std::string::npos || line.find("up" + number) != std::string::npos)
                return true;
        return false;
    }

    const Lines once{"pressed 7", "released 7"};
    Lines seen;

private:
    Subscription listening_, menus_, rawKeys_;
};

TEST_F(X11HotKeysOnDesktop, FiresForKeysOfTheHardwareAndTheApplicationDoesNotGetTheKey) {
    press();
    release();
    EXPECT_EQ(takeSeen(), once);
    const auto log = application.takeLog();
    EXPECT_TRUE(hasKey(log, key::shift));
    EXPECT_FALSE(hasKey(log, key::space));
}

TEST_F(X11HotKeysOnDesktop, FiresForPostedKeys) {
    pressPosted();
    releasePosted();
    EXPECT_EQ(takeSeen(), once);
    EXPECT_FALSE(hasKey(application.takeLog(), key::space));
}

TEST_F(X11HotKeysOnDesktop, FiresWhateverLocksAreOn) {
    for (const Lines::size_type locks : {1u, 2u, 3u}) {
        if ((locks & 1) != 0) hardware.tap(key::capsLock);
        if ((locks & 2) != 0) hardware.tap(key::numLock);
        press();
        release();
        EXPECT_EQ(takeSeen(), once) << "hardware, locks " << locks;
        pressPosted();
        releasePosted();
        EXPECT_EQ(takeSeen(), once) << "posted, locks " << locks;
        if ((locks & 1) != 0) hardware.tap(key::capsLock);
        if ((locks & 2) != 0) hardware.tap(key::numLock);
    }
}

TEST_F(X11HotKeysOnDesktop, FiresWhileAMenuHoldsTheKeyboard) {
    ASSERT_TRUE(application.grabKeyboard());
    press();
    release();
    EXPECT_EQ(takeSeen(), once);
    pressPosted();
    releasePosted();
    EXPECT_EQ(takeSeen(), once);
    EXPECT_FALSE(hasKey(application.takeLog(), key::space));
    application.ungrabKeyboard();
}

TEST_F(X11HotKeysOnDesktop, DoesNotFireWithOtherModifiers) {
    hardware.tap(key::space);
    hardware.keyDown(key::control);
    press();
    release();
    hardware.keyUp(key::control);
    EXPECT_EQ(takeSeen(), Lines{});
    EXPECT_TRUE(hasKey(application.takeLog(), key::space));
}

TEST_F(X11HotKeysOnDesktop, AHeldKeyIsPressedOnce) {
    press();
    EXPECT_TRUE(loop.runUntil([&] { return repeats >= 3; }));
    release();
    EXPECT_EQ(takeSeen(), once);
}

TEST_F(X11HotKeysOnDesktop, ModifiersThatGoUpBeforeTheKeyDoNotStick) {
    press();
    for (const std::uint8_t k : {key::super, key::shift, key::space}) hardware.keyUp(k);
    EXPECT_EQ(takeSeen(), once);
    EXPECT_TRUE(keysDownForApplications(*connection).none());
    application.takeLog();
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), (Lines{"key down 38", "key up 38"}));
}

TEST_F(X11HotKeysOnDesktop, AKeyThatAnotherProgramHoldsIsRefused) {
    auto other = std::move(X11Connection::open().value());
    // By the whole keyboard, as most programs do it.
    ASSERT_EQ(other->errorOf(xcb_grab_key_checked(other->get(), 0, other->root(), mask::control, key::space,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)),
              0);
    EXPECT_FALSE(hotKeys->registerHotKey(8, kSpace, 0x1000));
    // Nothing is left of the attempt: when the other one lets go, it can be had.
    xcb_ungrab_key(other->get(), key::space, other->root(), mask::control);
    other->sync();
    EXPECT_TRUE(hotKeys->registerHotKey(8, kSpace, 0x1000));

    auto hotKeysOfOther = std::move(X11HotKeys::open(*other).value());
    EXPECT_FALSE(hotKeysOfOther->registerHotKey(1, kSpace, kShiftCommand));
    EXPECT_TRUE(hotKeysOfOther->registerHotKey(1, kSpace, kControlShift));
    EXPECT_FALSE(hotKeys->registerHotKey(9, kSpace, kControlShift));
}

TEST_F(X11HotKeysOnDesktop, OneKeyboardHeldByAnotherProgramIsEnoughToRefuse) {
    auto other = std::move(X11Connection::open().value());
    ASSERT_TRUE(startXInput(*other));
    const std::uint32_t keys = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS, modifiers = mask::control | mask::shift;
    const auto grabbed = other->reply<xcb_input_xi_passive_grab_device_reply>(xcb_input_xi_passive_grab_device(
        other->get(), XCB_CURRENT_TIME, other->root(), XCB_NONE, key::space, hardware.keyboard(), 1, 1,
        XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC, 0, &keys, &modifiers));
    ASSERT_TRUE(grabbed && grabbed->num_modifiers == 0);
    EXPECT_FALSE(hotKeys->registerHotKey(8, kSpace, kControlShift));
    hardware.keyDown(key::control);
    hardware.keyDown(key::shift);
    hardware.postedTap(key::space);
    hardware.keyUp(key::shift);
    hardware.keyUp(key::control);
    EXPECT_EQ(takeSeen(), Lines{});
}

TEST_F(X11HotKeysOnDesktop, UnregisteredItGoesToTheApplicationAgain) {
    hotKeys->unregisterHotKey(kId);
    settle();
    press();
    release();
    EXPECT_EQ(takeSeen(), Lines{});
    EXPECT_TRUE(hasKey(application.takeLog(), key::space));
    EXPECT_TRUE(hotKeys->registerHotKey(kId, kSpace, kShiftCommand));
}

TEST_F(X11HotKeysOnDesktop, APositionWithoutAKeyIsRefused) {
    EXPECT_FALSE(hotKeys->registerHotKey(8, 0xffff, kShiftCommand));
}

TEST_F(X11HotKeysOnDesktop, FiresWhileThePanelHasTheKeyboardAndThePanelDoesNotGetTheKey) {
    press();
    ASSERT_TRUE(take());
    release();
    EXPECT_EQ(takeSeen(), once);
    hardware.tap(key::a);
    EXPECT_EQ(takePanelKeys(), (Lines{"key down 38", "key up 38"}));
    press();
    EXPECT_EQ(takeSeen(), Lines{"pressed 7"});
    EXPECT_FALSE(hasKey(takePanelKeys(), key::space));
    keyboard->releaseKeyboard();
    release();
    settle();
    application.takeLog();
    hardware.tap(key::a);
    EXPECT_EQ(application.takeLog(), (Lines{"key down 38", "key up 38"}));
}

TEST_F(X11HotKeysOnDesktop, KeysTypedRightAfterItAreThePanels) {
    // Typed before the press has been handled at all: the keyboard is ours from the press on.
    const auto opening = hotKeys->onHotKey([this](HotKeyEvent event, std::uint32_t) {
        if (event == HotKeyEvent::pressed) keyboard->takeKeyboard(panel.window(), [] {});
    });
    press();
    hardware.keyUp(key::shift);
    hardware.keyUp(key::super);
    hardware.tap(key::a);
    hardware.keyUp(key::space);
    EXPECT_EQ(takePanelKeys(), (Lines{"key down 38", "key up 38"}));
    EXPECT_EQ(takeSeen(), once);
    EXPECT_FALSE(hasKey(application.takeLog(), key::a));
}

// Presses that are kept from a hot key --------------------------------------------------------------------------------

TEST_F(X11HotKeysOnDesktop, WhereItFiresNoMenuIsTold) {
    seeMenusAndRawKeys();
    press();
    release();
    pressPosted();
    releasePosted();
    ASSERT_TRUE(application.grabKeyboard());
    press();
    release();
    application.ungrabKeyboard();
    const auto other = otherProgram();
    ASSERT_TRUE(grabKeyboards(*other, {readKeyboards(*other).master}));
    press();
    release();
    Lines told = takeSeen();
    std::erase_if(told, [](const std::string& line) { return line.starts_with("raw"); });
    EXPECT_EQ(told, (Lines{"pressed 7", "released 7", "pressed 7", "released 7", "pressed 7", "released 7", "pressed 7",
                           "released 7"}));
}

TEST_F(X11HotKeysOnDesktop, APressOnAKeyboardThatAnotherProgramHoldsIsServedInAMenu) {
    seeMenusAndRawKeys();
    const auto other = otherProgram();
    ASSERT_TRUE(grabKeyboards(*other, {hardware.keyboard()}));
    press();
    settle();
    release();
    EXPECT_EQ(takeSeen(), (Lines{"raw pressed 49 with 768", "menu began", "raw pressed 49 with 768",
                                 "raw released 49 with 768", "menu ended"}));
    ungrabKeyboards(*other, {hardware.keyboard()});
    press();
    release();
    EXPECT_EQ(takeSeen(), (Lines{"raw pressed 49 with 768", "pressed 7", "released 7"}));
}

TEST_F(X11HotKeysOnDesktop, APressAndItsReleaseInOneGoAreServedInAMenu) {
    seeMenusAndRawKeys();
    const auto other = otherProgram();
    const auto keyboards = readKeyboards(*other).all();
    ASSERT_TRUE(grabKeyboards(*other, keyboards));
    pressPosted();
    releasePosted();
    const Lines told = takeSeen();
    // The release has been told as the raw key that it is, and once more as the menu's.
    EXPECT_EQ(told, (Lines{"raw pressed 49 with 768", "raw released 49 with 768", "menu began",
                           "raw pressed 49 with 768", "raw released 49 with 768", "menu ended"}));
    ungrabKeyboards(*other, keyboards);
}

TEST_F(X11HotKeysOnDesktop, APressOfOtherModifiersIsNobodysInAMenuEither) {
    seeMenusAndRawKeys();
    const auto other = otherProgram();
    ASSERT_TRUE(grabKeyboards(*other, {hardware.keyboard()}));
    hardware.keyDown(key::control);
    press();
    release();
    hardware.keyUp(key::control);
    hardware.tap(key::space);
    ungrabKeyboards(*other, {hardware.keyboard()});
    EXPECT_EQ(takeSeen(), (Lines{"raw pressed 49 with 4864", "raw released 49 with 4864", "raw pressed 49 with 0",
                                 "raw released 49 with 0"}));
}

TEST_F(X11HotKeysOnDesktop, APressOnAKeyboardThatIsHeldBackIsServedOnce) {
    seeMenusAndRawKeys();
    const auto other = otherProgram();
    // As a window manager does while it makes up its mind about a click.
    const auto grabbed = other->reply<xcb_grab_pointer_reply>(
        xcb_grab_pointer(other->get(), 0, other->root(), XCB_EVENT_MASK_BUTTON_PRESS, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_SYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME));
    ASSERT_TRUE(grabbed && grabbed->status == XCB_GRAB_STATUS_SUCCESS);
    press();
    settle();
    release();
    EXPECT_EQ(takeSeen(), (Lines{"raw pressed 49 with 768", "menu began", "raw pressed 49 with 768",
                                 "raw released 49 with 768", "menu ended"}));
    xcb_allow_events(other->get(), XCB_ALLOW_ASYNC_KEYBOARD, XCB_CURRENT_TIME);
    xcb_ungrab_pointer(other->get(), XCB_CURRENT_TIME);
    other->sync();
    EXPECT_EQ(takeSeen(), Lines{});
    press();
    release();
    EXPECT_EQ(takeSeen(), (Lines{"raw pressed 49 with 768", "pressed 7", "released 7"}));
}

TEST_F(X11HotKeysOnDesktop, AKeyThatIsDownAlreadyIsNoPress) {
    hotKeys->unregisterHotKey(kId);
    press();
    ASSERT_TRUE(hotKeys->registerHotKey(kId, kSpace, kShiftCommand));
    EXPECT_TRUE(loop.runUntil([&] { return repeats >= 3; }));
    release();
    EXPECT_EQ(takeSeen(), Lines{});
    press();
    release();
    EXPECT_EQ(takeSeen(), once);
    hotKeys->unregisterHotKey(kId);
    press();
    ASSERT_TRUE(hotKeys->registerHotKey(kId, kSpace, kShiftCommand));
    release();
    press();
    release();
    EXPECT_EQ(takeSeen(), once);
}

// What the desktop itself has taken -----------------------------------------------------------------------------------

TEST_F(X11HotKeysOnDesktop, TheWindowManagersOwnKeysAreReadFromItsDefaultConfiguration) {
    const std::string present = std::getenv("XDG_CONFIG_HOME");
    setenv("XDG_CONFIG_HOME", "/nonexistent", 1);  // the one of these tests has no keys
    const auto found = hotKeys->symbolicHotKeys();
    setenv("XDG_CONFIG_HOME", present.c_str(), 1);

    const auto check = connection->items(connection->root(), "_NET_SUPPORTING_WM_CHECK");
    if (check.empty()) {
        EXPECT_EQ(found, std::nullopt);
        return;
    }
    ASSERT_TRUE(found);
    constexpr std::uint32_t option = 0x800, command = 0x100, control = 0x1000;
    constexpr std::uint32_t tab = 48, e = 14, d = 2, f1 = 122, f4 = 118, left = 123;
    const auto has = [&](std::uint32_t keyCode, std::uint32_t modifiers) {
        return std::ranges::count(*found, SymbolicHotKey{true, keyCode, modifiers}) > 0;
    };
    EXPECT_TRUE(has(f4, option));
    EXPECT_TRUE(has(tab, option));
    EXPECT_TRUE(has(kSpace, option));
    EXPECT_FALSE(has(left, 0));
    const bool isOpenbox = connection->text(check.front(), "_NET_WM_NAME") == "Openbox";
    EXPECT_EQ(has(d, command), isOpenbox);
    EXPECT_EQ(has(f1, control), !isOpenbox);
    EXPECT_TRUE(has(e, command));
}

// The shortcuts on top ------------------------------------------------------------------------------------------------

class X11ShortcutsOnDesktop : public X11HotKeysOnDesktop {
protected:
    void SetUp() override {
        X11HotKeysOnDesktop::SetUp();
        hotKeys->unregisterHotKey(kId);
        menus_ = hotKeys->onMenuTracking([this](MenuTracking now) {
            using Path = CarbonKeyboardShortcuts::Path;
            shortcuts->setPath(now == MenuTracking::began ? Path::rawKeys : Path::hotKeys);
        });
    }
    void TearDown() override {
        shortcuts.reset();
        X11HotKeysOnDesktop::TearDown();
    }
    void registerShortcut() {
        shortcuts->registerShortcut(
            {kSpace, kShiftCommand}, [this](const Shortcut&) { served.push_back("down"); },
            [this](const Shortcut&) { served.push_back("up"); });
    }
    Lines takeServed() {
        settle();
        settle();
        return std::exchange(served, {});
    }

    std::optional<CarbonKeyboardShortcuts> shortcuts{std::in_place, *hotKeys};
    const Lines downAndUp{"down", "up"};
    Lines served;

private:
    Subscription menus_;
};

TEST_F(X11ShortcutsOnDesktop, AreServedOnceInAMenuAndAfterIt) {
    registerShortcut();
    const auto other = otherProgram();
    const auto keyboards = readKeyboards(*other).all();
    ASSERT_TRUE(grabKeyboards(*other, keyboards));
    press();
    settle();
    release();
    EXPECT_EQ(takeServed(), downAndUp);
    pressPosted();
    releasePosted();
    EXPECT_EQ(takeServed(), downAndUp);
    ungrabKeyboards(*other, keyboards);
    press();
    release();
    EXPECT_EQ(takeServed(), downAndUp);
}

TEST_F(X11ShortcutsOnDesktop, WhatAnotherProgramHeldIsServedFromTheFirstPressAfterItLetGo) {
    auto other = std::move(X11Connection::open().value());
    ASSERT_EQ(other->errorOf(xcb_grab_key_checked(other->get(), 0, other->root(), mask::shift | mask::super, key::space,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)),
              0);
    registerShortcut();
    press();
    release();
    EXPECT_EQ(takeServed(), Lines{});
    xcb_ungrab_key(other->get(), key::space, other->root(), mask::shift | mask::super);
    other->sync();
    press();
    settle();
    release();
    EXPECT_EQ(takeServed(), downAndUp);
    application.takeLog();
    press();
    release();
    EXPECT_EQ(takeServed(), downAndUp);
    EXPECT_FALSE(hasKey(application.takeLog(), key::space));
}

TEST_F(X11ShortcutsOnDesktop, WhatAnEndedProgramHeldIsServedOnceHoweverLongTheKeyIsDown) {
    auto other = std::move(X11Connection::open().value());
    ASSERT_EQ(other->errorOf(xcb_grab_key_checked(other->get(), 0, other->root(), mask::shift | mask::super, key::space,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)),
              0);
    registerShortcut();
    other.reset();
    // The server notices in its own time.
    const auto probe = std::move(X11Connection::open().value());
    EXPECT_TRUE(loop.runUntil([&] {
        return probe->errorOf(xcb_grab_key_checked(probe->get(), 0, probe->root(), mask::shift | mask::super,
                                                   key::space, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)) == 0;
    }));
    xcb_ungrab_key(probe->get(), key::space, probe->root(), mask::shift | mask::super);
    probe->sync();
    press();
    EXPECT_TRUE(loop.runUntil([&] { return repeats >= 3; }));
    for (const std::uint8_t k : {key::super, key::shift, key::space}) hardware.keyUp(k);
    EXPECT_EQ(std::ranges::count(takeServed(), "down"), 1);
    pressPosted();
    releasePosted();
    EXPECT_EQ(takeServed(), downAndUp);
}

// The contract --------------------------------------------------------------------------------------------------------

// Another program and the hardware beside the service.
struct HotKeysWorld {
    HotKeysWorld() { connection->watch(loop); }

    static unsigned maskOf(std::uint32_t carbon) {
        return X11Modifiers().maskOfCarbon(carbon);  // at the usual bits
    }
    static std::vector<std::uint8_t> keysOf(std::uint32_t carbon) {
        std::vector<std::uint8_t> keys;
        if ((carbon & 0x1000) != 0) keys.push_back(key::control);
        if ((carbon & 0x800) != 0) keys.push_back(key::alt);
        if ((carbon & 0x200) != 0) keys.push_back(key::shift);
        if ((carbon & 0x100) != 0) keys.push_back(key::super);
        return keys;
    }
    void press(std::uint32_t keyCode, std::uint32_t modifiers) {
        auto keys = keysOf(modifiers);
        keys.push_back(*x11OfKeyCode(keyCode));
        for (const std::uint8_t each : keys) hardware.keyDown(each);
        settle();
        for (auto each = keys.rbegin(); each != keys.rend(); ++each) hardware.keyUp(*each);
        settle();
    }
    void settle() {
        for (int rounds = 0; rounds < 2; ++rounds) {
            connection->sync();
            loop.runPending();
        }
        connection->sync();
    }
    void takeByOther(std::uint32_t keyCode, std::uint32_t modifiers) {
        EXPECT_EQ(other->errorOf(xcb_grab_key_checked(
                      other->get(), 0, other->root(), static_cast<std::uint16_t>(maskOf(modifiers)),
                      *x11OfKeyCode(keyCode), XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)),
                  0);
    }
    void letGo() {
        xcb_ungrab_key(other->get(), XCB_GRAB_ANY, other->root(), XCB_MOD_MASK_ANY);
        other->sync();
    }

    PollLoop loop;
    std::unique_ptr<X11Connection> connection = std::move(X11Connection::open().value());
    std::unique_ptr<X11HotKeys> hotKeys = std::move(X11HotKeys::open(*connection).value());
    std::unique_ptr<X11Connection> other = std::move(X11Connection::open().value());
    Hardware hardware;
};

HotKeysSubject onX11() {
    auto world = std::make_shared<HotKeysWorld>();
    HotKeysWorld& in = *world;
    return {world, *in.hotKeys, [&in](std::uint32_t keyCode, std::uint32_t modifiers) { in.press(keyCode, modifiers); },
            [&in](std::uint32_t keyCode, std::uint32_t modifiers) { in.takeByOther(keyCode, modifiers); },
            [&in] { in.letGo(); }};
}

INSTANTIATE_TEST_SUITE_P(X11HotKeys, HotKeysContract, testing::Values(onX11));

}  // namespace
}  // namespace tarvix
