// The Input of the real program: how it looks as the desktop changes, what ends a search, what other programs hear of
// it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>

#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"
#include "tests/desktop/play/ScreenImage.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

constexpr auto kLimit = 10s;

// A person's hand on the mouse, and another program's eye on the windows.
class Display {
public:
    Display() : x_(xcb_connect(nullptr, nullptr)) {
        root_ = xcb_setup_roots_iterator(xcb_get_setup(x_)).data->root;
        title_ = atom("_NET_WM_NAME");
    }
    ~Display() { xcb_disconnect(x_); }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    // Where The Input stands while it is shown; by its title, since no window manager knows of it.
    std::optional<AxRect> theInput() {
        const auto tree = reply(xcb_query_tree_reply, xcb_query_tree(x_, root_));
        if (!tree) return std::nullopt;
        const xcb_window_t* windows = xcb_query_tree_children(tree.get());
        for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
            const auto attributes = reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(x_, windows[i]));
            if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE) continue;
            if (!textOf(windows[i], title_).starts_with("The Input")) continue;
            const auto place = reply(xcb_get_geometry_reply, xcb_get_geometry(x_, windows[i]));
            if (place)
                return AxRect{{double(place->x), double(place->y)}, {double(place->width), double(place->height)}};
        }
        return std::nullopt;
    }

    void button(bool isDown) { post(isDown ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, 1, {}); }
    void moveTo(ScreenPoint to) { post(XCB_MOTION_NOTIFY, 0, to); }

    // A window that nobody manages, of a size.
    xcb_window_t map(int x, int y, int width, int height) {
        const xcb_window_t window = xcb_generate_id(x_);
        const std::uint32_t values[] = {0x204060, 1, XCB_EVENT_MASK_KEY_PRESS};
        xcb_create_window(x_, XCB_COPY_FROM_PARENT, window, root_, static_cast<std::int16_t>(x),
                          static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                          static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
        xcb_map_window(x_, window);
        sync();
        return window;
    }
    void setFocus(xcb_window_t window) {
        xcb_set_input_focus(x_, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
        sync();
    }
    // Whether the keyboard could be grabbed as a whole by now.
    bool grabKeyboard(xcb_window_t window) {
        const auto grabbed =
            reply(xcb_grab_keyboard_reply,
                  xcb_grab_keyboard(x_, 1, window, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        return grabbed && grabbed->status == XCB_GRAB_STATUS_SUCCESS;
    }
    // Whether somebody else has it as a whole.
    bool isKeyboardGrabbed() {
        if (!grabKeyboard(root_)) return true;
        xcb_ungrab_keyboard(x_, XCB_CURRENT_TIME);
        sync();
        return false;
    }
    // Whether a key press has come since the last question.
    bool gotKey() {
        bool got = false;
        while (auto* event = xcb_poll_for_event(x_)) {
            got = got || (event->response_type & 0x7f) == XCB_KEY_PRESS;
            std::free(event);
        }
        return got;
    }

private:
    struct Free {
        void operator()(void* memory) const { std::free(memory); }
    };
    template <class Answer, class Cookie>
    std::unique_ptr<Answer, Free> reply(Answer* (*receive)(xcb_connection_t*, Cookie, xcb_generic_error_t**),
                                        Cookie cookie) {
        return std::unique_ptr<Answer, Free>(receive(x_, cookie, nullptr));
    }
    xcb_atom_t atom(const std::string& name) {
        const auto answer =
            reply(xcb_intern_atom_reply, xcb_intern_atom(x_, 0, static_cast<std::uint16_t>(name.size()), name.data()));
        return answer ? answer->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
    std::string textOf(xcb_window_t window, xcb_atom_t property) {
        const auto answer =
            reply(xcb_get_property_reply, xcb_get_property(x_, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 64));
        if (!answer) return {};
        return std::string(static_cast<const char*>(xcb_get_property_value(answer.get())),
                           static_cast<std::size_t>(xcb_get_property_value_length(answer.get())));
    }
    void post(std::uint8_t type, std::uint8_t detail, ScreenPoint at) {
        xcb_test_fake_input(x_, type, detail, XCB_CURRENT_TIME, root_, static_cast<std::int16_t>(at.x),
                            static_cast<std::int16_t>(at.y), 0);
        sync();
    }
    void sync() { reply(xcb_get_input_focus_reply, xcb_get_input_focus(x_)); }

    xcb_connection_t* x_;
    xcb_window_t root_ = XCB_WINDOW_NONE;
    xcb_atom_t title_ = XCB_ATOM_NONE;
};

class InputProgramTest : public ::testing::Test {
protected:
    void play(const std::string& script) {
        fixture_.emplace(script);
        ASSERT_TRUE(fixture_->isReady()) << script;
        keyboard_->movePointer(inWindow());
    }
    // In the fixture's window, where no control takes clicks.
    ScreenPoint inWindow() const {
        const AxRect label = frameOf("Nettle");
        return {static_cast<int>(label.minX()) + 3, static_cast<int>(label.minY()) + 3};
    }
    AxRect frameOf(const std::string& name) const {
        for (const KnownControl& control : fixture_->controls())
            if (control.name == name) return control.frame;
        ADD_FAILURE() << name;
        return {};
    }

    // The program keeps its settings in a folder of the test's own, where the desktop's files are looked for too.
    std::filesystem::path configuration() const { return folder_.file("configuration"); }
    void write(const std::string& name, const std::string& text) const {
        std::filesystem::create_directories((configuration() / name).parent_path());
        std::ofstream(configuration() / name) << text;
    }
    void startProgram(const std::string& settings = "{}") {
        write("tarvix/tarvix.json", settings);
        program_.emplace(TARVIX_PROGRAM, Process::Environment{{"XDG_CONFIG_HOME", configuration()}});
        ASSERT_TRUE(program_->isReady());
    }
    void open() {
        opened_ = program_->pressHotKey(*keyboard_);
        ASSERT_TRUE(opened_);
    }
    void escape() { ASSERT_TRUE(program_->press(*keyboard_, keysym::escape, milestone::inputHidden)); }
    bool isClosedSince(std::int64_t moment) const {
        return program_->reached(milestone::inputHidden, moment, kLimit).has_value();
    }
    std::size_t textChanges() const {
        const auto moments = program_->log().all();
        return static_cast<std::size_t>(
            std::ranges::count(moments, std::string(milestone::textChanged), &Moment::name));
    }
    // What is typed is the application's again, and none of it The Input's.
    void expectKeysReachTheFixture() {
        const std::size_t before = textChanges();
        keyboard_->type("z");
        EXPECT_TRUE(await(kLimit, [&] { return fixture_->keys().ends_with("z"); })) << fixture_->keys();
        EXPECT_EQ(textChanges(), before);
    }

    // The brightness of The Input's ground beside its text, 0 to 255; nothing while it can't be seen.
    std::optional<int> ground() {
        const auto place = display_.theInput();
        const auto screen = place ? captureScreen() : std::nullopt;
        if (!screen) return std::nullopt;
        return screen->at(static_cast<int>(place->maxX()) - 6, static_cast<int>(place->minY()) + 5) >> 8 & 0xff;
    }
    bool isWhite() {
        return await(kLimit, [this] { return ground().value_or(0) > 200; });
    }
    bool isBlack() {
        return await(kLimit, [this] { return ground().value_or(255) < 55; });
    }

    ScratchFolder folder_;
    Display display_;
    std::unique_ptr<Keyboard> keyboard_ = std::make_unique<Keyboard>();
    std::optional<Fixture> fixture_;
    std::optional<Program> program_;
    Program::Step opened_;
};

// Light and dark
// ----------------------------------------------------------------------------------------------------------

using AppearanceProgramTest = InputProgramTest;

bool tellPortal(const std::string& scheme) {
    return outputOf({"dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.portal.Desktop",
                     "/org/freedesktop/portal/desktop", "org.tarvix.TestPortal.Set", "uint32:" + scheme})
        .has_value();
}

TEST_F(AppearanceProgramTest, TheGroundFollowsTheDesktopsPortalWhileItIsShown) {
    Process portal({"/usr/bin/python3", TARVIX_FIXTURES "/portal.py"});
    ASSERT_TRUE(await(kLimit, [] { return tellPortal("2"); }));
    play("gtk3.py");
    startProgram();
    open();
    EXPECT_TRUE(isWhite());
    ASSERT_TRUE(tellPortal("1"));
    EXPECT_TRUE(isBlack());
    ASSERT_TRUE(tellPortal("2"));
    EXPECT_TRUE(isWhite());
}

TEST_F(AppearanceProgramTest, TheGroundFollowsTheXSettingsWhileItIsShown) {
    const std::string file = folder_.file("xsettingsd");
    const auto theme = [&](const std::string& name) { std::ofstream(file) << "Net/ThemeName \"" << name << "\"\n"; };
    theme("Adwaita-dark");
    play("gtk3.py");
    startProgram();
    open();
    EXPECT_TRUE(isWhite()) << "nothing tells of a theme yet";
    Process settings({"xsettingsd", "-c", file});
    EXPECT_TRUE(isBlack());
    theme("Adwaita");
    settings.send(SIGHUP);
    EXPECT_TRUE(isWhite());
    theme("Adwaita-dark");
    settings.send(SIGHUP);
    EXPECT_TRUE(isBlack());
}

TEST_F(AppearanceProgramTest, TheGroundFollowsTheFilesOfDesktopsWhileItIsShown) {
    play("gtk3.py");
    write("gtk-3.0/settings.ini", "[Settings]\ngtk-application-prefer-dark-theme=1\n");
    startProgram();
    open();
    EXPECT_TRUE(isBlack());
    write("kdeglobals", "[Colors:Window]\nBackgroundNormal=239,240,241\n");
    EXPECT_TRUE(isWhite());
    write("kdeglobals", "[Colors:Window]\nBackgroundNormal=42,46,50\n");
    EXPECT_TRUE(isBlack());
}

// What ends a search
// ------------------------------------------------------------------------------------------------------

using LosingTheKeyboardTest = InputProgramTest;

TEST_F(LosingTheKeyboardTest, AClickInTheApplicationEndsTheSearch) {
    play("gtk3.py");
    startProgram();
    open();
    const std::int64_t before = monotonicMicroseconds();
    keyboard_->click();
    EXPECT_TRUE(isClosedSince(before));
    expectKeysReachTheFixture();
}

TEST_F(LosingTheKeyboardTest, AnotherWindowThatTakesTheFocusEndsTheSearch) {
    play("gtk3.py");
    startProgram();
    open();
    const std::int64_t before = monotonicMicroseconds();
    Fixture other("gtk3-field.py");
    EXPECT_TRUE(isClosedSince(before));
    EXPECT_FALSE(display_.theInput());
}

// Small, unmanaged, and with the focus of its own accord.
TEST_F(LosingTheKeyboardTest, ANotificationThatStealsTheFocusEndsTheSearch) {
    play("gtk3.py");
    startProgram();
    open();
    const std::int64_t before = monotonicMicroseconds();
    const xcb_window_t notification = display_.map(1500, 20, 300, 80);
    display_.setFocus(notification);
    EXPECT_TRUE(isClosedSince(before));
    display_.gotKey();
    keyboard_->type("z");
    EXPECT_TRUE(await(kLimit, [this] { return display_.gotKey(); }));
}

TEST_F(LosingTheKeyboardTest, ANotificationThatOnlyShowsItselfDoesNot) {
    play("gtk3.py");
    startProgram();
    open();
    display_.map(1500, 20, 300, 80);
    EXPECT_TRUE(program_->type(*keyboard_, "x", milestone::textChanged));
    EXPECT_TRUE(display_.theInput());
    escape();
}

TEST_F(LosingTheKeyboardTest, TheDesktopsWordOfTheLockingEndsTheSearch) {
    play("gtk3.py");
    startProgram();
    open();
    const std::int64_t before = monotonicMicroseconds();
    ASSERT_TRUE(outputOf({"dbus-send", "--session", "--type=signal", "/org/gnome/ScreenSaver",
                          "org.gnome.ScreenSaver.ActiveChanged", "boolean:true"}));
    EXPECT_TRUE(isClosedSince(before));
    expectKeysReachTheFixture();
}

// The login manager is on another bus, which is played by the session's here.
TEST_F(LosingTheKeyboardTest, TheLoginManagersLockingOfThisSessionEndsTheSearch) {
    play("gtk3.py");
    write("tarvix/tarvix.json", "{}");
    program_.emplace(TARVIX_PROGRAM,
                     Process::Environment{{"XDG_CONFIG_HOME", configuration()},
                                          {"DBUS_SYSTEM_BUS_ADDRESS", std::getenv("DBUS_SESSION_BUS_ADDRESS")},
                                          {"XDG_SESSION_ID", "2"}});
    ASSERT_TRUE(program_->isReady());
    open();
    const std::int64_t before = monotonicMicroseconds();
    const auto lock = [](const std::string& session) {
        return outputOf({"dbus-send", "--system", "--type=signal", "/org/freedesktop/login1/session/" + session,
                         "org.freedesktop.login1.Session.Lock"});
    };
    setenv("DBUS_SYSTEM_BUS_ADDRESS", std::getenv("DBUS_SESSION_BUS_ADDRESS"), 1);
    ASSERT_TRUE(lock("c1"));
    EXPECT_TRUE(program_->type(*keyboard_, "x", milestone::textChanged)) << "somebody else's session";
    ASSERT_TRUE(lock("_32"));
    EXPECT_TRUE(isClosedSince(before));
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}

// It covers the screen and tries for the keyboard until it has it.
TEST_F(LosingTheKeyboardTest, AScreenLockGetsTheKeyboard) {
    play("gtk3.py");
    startProgram();
    open();
    const std::int64_t before = monotonicMicroseconds();
    const xcb_window_t lock = display_.map(0, 0, 1920, 1080);
    EXPECT_TRUE(isClosedSince(before));
    EXPECT_TRUE(await(kLimit, [&] { return display_.grabKeyboard(lock); }));
    display_.gotKey();
    const std::size_t changes = textChanges();
    keyboard_->type("z");
    EXPECT_TRUE(await(kLimit, [this] { return display_.gotKey(); }));
    EXPECT_EQ(textChanges(), changes);
}

TEST_F(LosingTheKeyboardTest, ARealScreenLockEndsTheSearch) {
    play("gtk3.py");
    startProgram();
    open();
    const std::int64_t before = monotonicMicroseconds();
    Process lock({"i3lock", "--nofork", "--color=204060"});
    EXPECT_TRUE(isClosedSince(before));
    // What is typed while it has the keyboard is neither The Input's nor the application's.
    ASSERT_TRUE(await(kLimit, [this] { return display_.isKeyboardGrabbed(); }));
    const std::size_t changes = textChanges();
    const std::string keys = fixture_->keys();
    keyboard_->type("z");
    lock.send(SIGTERM);
    ASSERT_TRUE(lock.waitForEnd(kLimit));
    ASSERT_TRUE(await(kLimit, [this] { return !display_.isKeyboardGrabbed(); })) << "the server has noticed its end";
    EXPECT_EQ(textChanges(), changes);
    EXPECT_EQ(fixture_->keys(), keys);
    expectKeysReachTheFixture();
}

// What other programs hear
// ------------------------------------------------------------------------------------------------

TEST_F(InputProgramTest, EachSearchIsToldOnTheSessionBusOnceAndInOrder) {
    const std::string file = folder_.file("heard");
    Process listener(
        {"bash", "-c", "exec dbus-monitor --session \"type='signal',interface='org.tarvix.Tarvix'\" >" + file});
    const auto heard = [&] {
        std::vector<std::string> members;
        std::ifstream lines(file);
        for (std::string line; std::getline(lines, line);) {
            const auto member = line.find("member=TarvixInput");
            if (member != std::string::npos) members.push_back(line.substr(member + 7));
        }
        return members;
    };
    ASSERT_TRUE(await(kLimit, [&] {
        std::ifstream words(file);
        return std::string(std::istreambuf_iterator<char>(words), {}).find("NameLost") != std::string::npos;
    })) << "it listens";
    play("gtk3.py");
    startProgram();
    open();
    escape();
    open();
    keyboard_->click();
    EXPECT_TRUE(isClosedSince(opened_.pressed));
    EXPECT_TRUE(await(kLimit, [&] { return heard().size() >= 4; }));
    EXPECT_THAT(heard(), ElementsAre("TarvixInputDidAppear", "TarvixInputDidDisappear", "TarvixInputDidAppear",
                                     "TarvixInputDidDisappear"));
}

// The text of the last search
// ---------------------------------------------------------------------------------------------

class KeptTextTest : public InputProgramTest, public ::testing::WithParamInterface<const char*> {
protected:
    KeptTextTest() {
        outputOf({"setxkbmap", GetParam()});
        keyboard_ = std::make_unique<Keyboard>();
    }
    ~KeptTextTest() override { outputOf({"setxkbmap", "us"}); }
};

TEST_P(KeptTextTest, ItComesUpSelectedAndIsReplacedByWhatIsTyped) {
    play("gtk3.py");
    startProgram(R"({"dontFlushTheInput": true})");
    open();
    ASSERT_TRUE(program_->reached(milestone::candidatesRead, opened_.pressed, kLimit));
    const Program::Step first = program_->type(*keyboard_, "elder");
    ASSERT_TRUE(first);
    EXPECT_EQ(first.answered->count, 1u);
    escape();
    open();
    EXPECT_TRUE(await(kLimit, [this] {
        const auto moments = program_->log().all();
        return std::ranges::any_of(moments, [this](const Moment& moment) {
            return moment.microseconds > opened_.pressed && moment.name == milestone::markersDrawn && moment.count == 1;
        });
    })) << "the first filtering is for the text that was kept";
    const Program::Step replaced = program_->type(*keyboard_, "fennel");
    ASSERT_TRUE(replaced);
    EXPECT_EQ(replaced.answered->count, 1u);
    ASSERT_TRUE(program_->press(*keyboard_, keysym::returnKey, milestone::inputHidden));
    await(kLimit, [&] { return !fixture_->clicks().empty(); });
    EXPECT_THAT(fixture_->clicks(), ElementsAre(FixtureClick{"Fennel", 1, 1, ""}));
}

INSTANTIATE_TEST_SUITE_P(Layouts, KeptTextTest, ::testing::Values("us", "fr"),
                         [](const auto& layout) { return std::string(layout.param); });

// Its place
// ---------------------------------------------------------------------------------------------------------------

TEST_F(InputProgramTest, DraggedByItsGroundItMovesWithThePointerAndStaysThere) {
    play("gtk3.py");
    startProgram(R"({"inputPosition": "fixed"})");
    open();
    const auto before = display_.theInput();
    ASSERT_TRUE(before);
    const ScreenPoint grip{static_cast<int>(before->minX()) + 4, static_cast<int>(before->minY()) + 4};
    const ScreenPoint near{grip.x + 3, grip.y - 2}, middle{grip.x + 200, grip.y - 40}, end{grip.x + 431, grip.y - 207};
    const auto isAt = [&](ScreenPoint pointer) {
        const AxPoint wanted{before->minX() + pointer.x - grip.x, before->minY() + pointer.y - grip.y};
        return await(kLimit, [&] {
            const auto now = display_.theInput();
            return now && now->origin == wanted;
        });
    };
    display_.moveTo(grip);
    display_.button(true);
    // No hand is out of it before the press has been noticed; the key comes behind the press.
    display_.moveTo(near);
    EXPECT_TRUE(isAt(near));
    EXPECT_TRUE(program_->type(*keyboard_, "x", milestone::textChanged)) << "the search goes on meanwhile";
    display_.moveTo(middle);
    EXPECT_TRUE(isAt(middle)) << "while the button is down";
    display_.moveTo(end);
    display_.button(false);
    EXPECT_TRUE(isAt(end));
    EXPECT_TRUE(program_->type(*keyboard_, "y", milestone::textChanged)) << "and afterwards";
    escape();
    open();
    EXPECT_TRUE(isAt(end)) << "where it was left";
    escape();
}

// While an application is slow
// --------------------------------------------------------------------------------------------

TEST_F(InputProgramTest, TheProgressIndicatorShowsUntilTheCandidatesAreThere) {
    play("gtk3.py");
    startProgram();
    fixture_->process().send(SIGSTOP);
    open();
    // Ink where the indicator is, to the right of all text.
    const auto ink = [this] {
        const auto place = display_.theInput();
        const auto screen = place ? captureScreen() : std::nullopt;
        int dark = 0;
        for (int x = static_cast<int>(place->maxX()) - 20; screen && x < static_cast<int>(place->maxX()) - 8; ++x)
            for (int y = static_cast<int>(place->minY()) + 8; y < static_cast<int>(place->maxY()) - 8; ++y)
                if ((screen->at(x, y) >> 8 & 0xff) < 180) ++dark;
        return dark;
    };
    EXPECT_TRUE(await(kLimit, [&] { return ink() > 5; }));
    fixture_->process().send(SIGCONT);
    EXPECT_TRUE(program_->reached(milestone::candidatesRead, opened_.pressed, kLimit));
    EXPECT_TRUE(await(kLimit, [&] { return ink() == 0; }));
    escape();
}

}  // namespace
}  // namespace tarvix
