// The program while accessibility is off: the splash panel, the grant by its button, and the loss while it runs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "linux/atspi/Replies.h"
#include "linux/atspi/SdBus.h"
#include "linux/x11/X11Windows.h"
#include "tests/desktop/play/Activation.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using namespace atspi;
using ::testing::ElementsAre;

constexpr auto kLimit = 20s;

bool isEnabled() {
    const Bus session = connectToSession();
    int value = 0;
    return sd_bus_get_property_trivial(session.get(), "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status", "IsEnabled",
                                       nullptr, 'b', &value) >= 0 &&
           value != 0;
}

void setEnabled(bool enabled) {
    const Bus session = connectToSession();
    ASSERT_GE(sd_bus_set_property(session.get(), "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status", "IsEnabled",
                                  nullptr, "b", enabled ? 1 : 0),
              0);
}

// Another program that would have the shortcut's key for itself.
class Rival {
public:
    Rival() : x_(xcb_connect(nullptr, nullptr)) {
        const xcb_setup_t* setup = xcb_get_setup(x_);
        root_ = xcb_setup_roots_iterator(setup).data->root;
    }
    ~Rival() { xcb_disconnect(x_); }
    Rival(const Rival&) = delete;
    Rival& operator=(const Rival&) = delete;

    bool grabs() {
        const auto asked =
            xcb_grab_key_checked(x_, 0, root_, kModifiers, kSpaceBar, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        const std::unique_ptr<xcb_generic_error_t, decltype(&std::free)> error(xcb_request_check(x_, asked), std::free);
        return !error;
    }
    bool getsKey() {
        return await(kLimit, [this] {
            const std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> event(xcb_poll_for_event(x_), std::free);
            return event && (event->response_type & 0x7f) == XCB_KEY_PRESS;
        });
    }

private:
    static constexpr std::uint16_t kModifiers = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_4;
    static constexpr xcb_keycode_t kSpaceBar = 65;

    xcb_connection_t* x_;
    xcb_window_t root_ = XCB_WINDOW_NONE;
};

class FirstRun : public ::testing::Test {
protected:
    // A window of the program, as the window manager knows it.
    std::optional<X11Window> windowOf(const std::string& title) {
        const std::int32_t pid = program_->process().pid();
        for (X11Window& window : windows_->clients())
            if (window.title.starts_with(title) && window.pid == pid) return std::move(window);
        return std::nullopt;
    }
    bool comesInFront(const std::string& title) {
        return await(kLimit, [&] {
            const auto window = windowOf(title);
            const auto active = windows_->active();
            return window && active && active->number == window->number;
        });
    }
    // From now on, for a while.
    bool isActiveFor(std::uint32_t window, std::chrono::milliseconds time) {
        return !await(time, [&] {
            const auto active = windows_->active();
            return !active || active->number != window;
        });
    }
    bool goes(const std::string& title) {
        return await(kLimit, [&] { return !windowOf(title); });
    }
    // As the user's key for closing windows does.
    void askToClose(std::uint32_t window) {
        xcb_client_message_event_t wish{};
        wish.response_type = XCB_CLIENT_MESSAGE;
        wish.format = 32;
        wish.window = window;
        wish.type = x_->atom("_NET_CLOSE_WINDOW");
        xcb_send_event(x_->get(), 0, x_->root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&wish));
        x_->sync();
    }

    // What the program has told so far.
    std::string history() const {
        std::string told;
        for (const Moment& each : program_->log().all())
            told +=
                "\n" + std::to_string(each.microseconds / 1000) + " " + each.name + " " + std::to_string(each.count);
        return told;
    }

    const std::unique_ptr<X11Windows> windows_ = std::move(X11Windows::open().value());
    const std::unique_ptr<X11Connection> x_ = std::move(X11Connection::open().value());
    Keyboard keyboard_;
    std::optional<Program> program_;
};

class FirstRunTest : public FirstRun {
protected:
    void startWithout() {
        ASSERT_NO_FATAL_FAILURE(setEnabled(false));
        program_.emplace(TARVIX_PROGRAM);
        ASSERT_TRUE(comesInFront("Tarvix"));
    }
    void startWith() {
        ASSERT_NO_FATAL_FAILURE(setEnabled(true));
        program_.emplace(TARVIX_PROGRAM);
        ASSERT_TRUE(program_->isReady());
    }
    // The one Target of a query. On a busy machine a window that has just come up may not tell of all its controls in
    // time; then one searches again, as its user would.
    bool searchesFor(const std::string& query) {
        return await(kLimit, [&] {
            const Program::Step opened = program_->pressHotKey(keyboard_);
            if (opened && program_->reached(milestone::candidatesRead, opened.pressed)) {
                const Program::Step typed = program_->type(keyboard_, query);
                if (typed && typed.answered->count == 1) return true;
            }
            program_->press(keyboard_, keysym::escape, milestone::inputHidden);
            return false;
        });
    }
    void expectItRunsAgain(std::int64_t since) {
        EXPECT_TRUE(program_->reached(milestone::ready, since, kLimit));
        EXPECT_TRUE(goes("Tarvix"));
        EXPECT_TRUE(comesInFront("Settings"));
    }
};

TEST_F(FirstRunTest, ReturnGrantsThePrivilegeAndTheSettingsComeAndTheShortcutWorks) {
    Fixture fixture("gtk3.py");
    ASSERT_TRUE(fixture.isReady());
    ASSERT_NO_FATAL_FAILURE(startWithout());
    EXPECT_TRUE(Rival().grabs()) << "nothing is intercepted yet";
    askToClose(windowOf("Tarvix")->number);
    const std::int64_t granting = monotonicMicroseconds();
    keyboard_.chord({keysym::returnKey});
    EXPECT_TRUE(await(kLimit, [] { return isEnabled(); }));
    expectItRunsAgain(granting);

    // Asked again, as the settings' own wish to be active may come to the window manager only now.
    ASSERT_TRUE(await(kLimit, [&] {
        askForActivation(*x_, fixture.window());
        x_->sync();
        return isActiveFor(fixture.window(), 300ms);
    }));
    ASSERT_TRUE(searchesFor("elder")) << history();
    ASSERT_TRUE(program_->press(keyboard_, keysym::returnKey, milestone::inputHidden));
    EXPECT_TRUE(await(kLimit, [&] { return !fixture.clicks().empty(); }));
    EXPECT_THAT(fixture.clicks(), ElementsAre(FixtureClick{"Elder", 1, 1, ""}));
}

TEST_F(FirstRunTest, SwitchedOffWhileItRunsTheSplashPanelIsBackAndNoKeyIsTaken) {
    ASSERT_NO_FATAL_FAILURE(startWith());
    ASSERT_TRUE(program_->pressHotKey(keyboard_));
    ASSERT_TRUE(program_->press(keyboard_, keysym::escape, milestone::inputHidden));

    ASSERT_NO_FATAL_FAILURE(setEnabled(false));
    ASSERT_TRUE(comesInFront("Tarvix"));
    const std::int64_t off = monotonicMicroseconds();
    {
        Rival rival;
        ASSERT_TRUE(rival.grabs());
        keyboard_.chord({keysym::shift, keysym::super, keysym::space});
        ASSERT_TRUE(rival.getsKey());
    }
    EXPECT_FALSE(program_->reached(milestone::hotKeyPressed, off, 0s));
    EXPECT_FALSE(program_->reached(milestone::inputShown, off, 0s));

    ASSERT_NO_FATAL_FAILURE(setEnabled(true));
    expectItRunsAgain(off);
    EXPECT_TRUE(program_->pressHotKey(keyboard_)) << history();
    EXPECT_TRUE(program_->press(keyboard_, keysym::escape, milestone::inputHidden)) << history();
}

TEST_F(FirstRunTest, TheKeeperOfTheSwitchMayDie) {
    ASSERT_NO_FATAL_FAILURE(startWith());
    const Bus session = connectToSession();
    const Message owner =
        callBlocking(session.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                     "GetConnectionUnixProcessID", Milliseconds(1000), "org.a11y.Bus");
    ASSERT_TRUE(owner);
    const auto pid = readUnsigned(owner.get());
    ASSERT_TRUE(pid);
    ASSERT_EQ(kill(static_cast<pid_t>(*pid), SIGKILL), 0);
    // It comes again, as nobody has switched it on; this desktop forgets.
    ASSERT_TRUE(comesInFront("Tarvix"));
    const std::int64_t granting = monotonicMicroseconds();
    keyboard_.chord({keysym::returnKey});
    expectItRunsAgain(granting);
}

TEST_F(FirstRunTest, AnAddressOrAnotherStartDoesNothingUntilThen) {
    ASSERT_NO_FATAL_FAILURE(startWithout());
    for (const std::vector<std::string>& more : {std::vector<std::string>{}, {"tarvix://openTheInput"}}) {
        std::vector<std::string> command{TARVIX_PROGRAM};
        command.insert(command.end(), more.begin(), more.end());
        EXPECT_EQ(Process(command).waitForEnd(kLimit), 0);
    }
    EXPECT_FALSE(windowOf("Settings"));
    EXPECT_FALSE(program_->reached(milestone::inputShown, 0, 0s));
    EXPECT_TRUE(windowOf("Tarvix"));
}

// Its own windows are those of an application like any other.
TEST_F(FirstRunTest, TheSettingsWindowIsSearchedItselfAndHasTheKeyboardAgainAfterwards) {
    ScratchFolder configuration;
    ASSERT_NO_FATAL_FAILURE(setEnabled(true));
    program_.emplace(TARVIX_PROGRAM, Process::Environment{{"XDG_CONFIG_HOME", configuration.file("")}});
    ASSERT_TRUE(program_->isReady());
    ASSERT_EQ(Process({TARVIX_PROGRAM}).waitForEnd(kLimit), 0);
    ASSERT_TRUE(comesInFront("Settings"));
    const std::filesystem::path entry = configuration.file("autostart/org.tarvix.Tarvix.desktop");
    for (const bool launches : {true, false}) {
        ASSERT_TRUE(searchesFor("launch")) << history();
        ASSERT_TRUE(program_->press(keyboard_, keysym::returnKey, milestone::inputHidden));
        EXPECT_TRUE(await(kLimit, [&] { return std::filesystem::exists(entry) == launches; })) << launches;
    }
    // Without a click that would give it the keyboard.
    ASSERT_TRUE(program_->pressHotKey(keyboard_));
    ASSERT_TRUE(program_->press(keyboard_, keysym::escape, milestone::inputHidden));
    ASSERT_TRUE(windowOf("Settings"));
    // Its toolkit learns a moment later that the window has the keyboard, and heeds its shortcuts then.
    EXPECT_TRUE(await(kLimit, [&] {
        keyboard_.chord({keysym::control, 'w'});
        return await(200ms, [&] { return !windowOf("Settings"); });
    }));
}

// On a desktop whose session bus knows nothing of accessibility.
using InaccessibleFirstRunTest = FirstRun;

TEST_F(InaccessibleFirstRunTest, TheSplashPanelStandsAndTheProgramCanBeEnded) {
    program_.emplace(TARVIX_PROGRAM);
    ASSERT_TRUE(comesInFront("Tarvix"));
    keyboard_.chord({keysym::returnKey});
    keyboard_.chord({keysym::tab});
    EXPECT_TRUE(windowOf("Tarvix"));
    keyboard_.chord({keysym::space});
    EXPECT_EQ(program_->process().waitForEnd(kLimit), 0);
}

TEST_F(InaccessibleFirstRunTest, WithoutAnySessionBusToo) {
    ScratchFolder nothing;
    program_.emplace(TARVIX_PROGRAM, Process::Environment{{"DBUS_SESSION_BUS_ADDRESS", std::nullopt},
                                                          {"XDG_RUNTIME_DIR", nothing.file("")}});
    ASSERT_TRUE(comesInFront("Tarvix"));
    Process second({TARVIX_PROGRAM}, {{"DISPLAY", std::nullopt}});
    EXPECT_EQ(second.waitForEnd(kLimit), 1) << "there is nobody whom it could ask";
    program_->process().send(SIGTERM);
    EXPECT_EQ(program_->process().waitForEnd(kLimit), 0);
}

}  // namespace
}  // namespace tarvix
