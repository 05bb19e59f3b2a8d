// The real program's global shortcut, where something is in its way: an open menu, or a program that holds the key.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

// A menu of a fixture: how it is opened, and one of its entries.
struct Menu {
    const char* name;
    const char* script;
    const char* control;
    std::uint8_t button;
    const char* query;
    const char* entry;
    std::vector<std::string> more = {};
    friend void PrintTo(const Menu& menu, std::ostream* out) { *out << menu.name; }
};

// Qt tells nobody of a menu that hangs on no menu bar and no button, so that one has no candidates (kSecret).
const Menu kMenus[] = {
    {"Gtk3MenuBar", "gtk3-menus.py", "Acorn", 1, "prune", "Prune"},
    {"Gtk3ContextMenu", "gtk3-menus.py", "ground", 3, "water", "Water"},
    {"Gtk3Combo", "gtk3-menus.py", "combo box", 1, "tansy", "Tansy"},
    {"Gtk4MenuBar", "gtk4-menus.py", "Acorn", 1, "prune", "Prune"},
    {"Gtk4ContextMenu", "gtk4-menus.py", "ground", 3, "water", "Water"},
    {"Gtk4DropDown", "gtk4-menus.py", "combo box", 1, "tansy", "Tansy"},
    {"Qt6MenuBar", "qt6-menus.py", "Acorn", 1, "prune", "Prune"},
    {"Qt6Combo", "qt6-menus.py", "combo box", 1, "tansy", "Tansy"},
    // These hang out of their windows.
    {"Gtk3MenuBarOfALowWindow", "gtk3-menus.py", "Acorn", 1, "prune", "Prune", {"low"}},
    {"Gtk3ComboOfALowWindow", "gtk3-menus.py", "combo box", 1, "teasel", "Teasel", {"low"}},
    {"Gtk4MenuBarOfALowWindow", "gtk4-menus.py", "Acorn", 1, "prune", "Prune", {"low"}},
    {"Qt6MenuBarOfALowWindow", "qt6-menus.py", "Acorn", 1, "prune", "Prune", {"low"}},
    {"Qt6ComboOfALowWindow", "qt6-menus.py", "combo box", 1, "teasel", "Teasel", {"low"}},
};
const Menu kSecret[] = {{"Qt6ContextMenu", "qt6-menus.py", "ground", 3, "", ""}};

class OpenMenuTest : public ::testing::TestWithParam<Menu> {
protected:
    void SetUp() override {
        ASSERT_TRUE(fixture_.isReady());
        ASSERT_TRUE(program_.isReady());
        const auto controls = fixture_.controls();
        const auto found = std::ranges::find(controls, GetParam().control, &KnownControl::name);
        ASSERT_NE(found, controls.end());
        const AxRect frame = found->frame;
        keyboard_.movePointer(
            {static_cast<int>((frame.minX() + frame.maxX()) / 2), static_cast<int>((frame.minY() + frame.maxY()) / 2)});
        keyboard_.click(GetParam().button);
        ASSERT_TRUE(await(5s, [&] { return fixture_.menus() == std::vector<std::string>{"opened"}; }));
    }

    // Presses the shortcut over the menu and has the candidates read.
    void open() {
        const Program::Step opened = program_.pressHotKey(keyboard_);
        ASSERT_TRUE(opened);
        ASSERT_TRUE(program_.reached(milestone::candidatesRead, opened.pressed));
        EXPECT_THAT(fixture_.menus(), ElementsAre("opened"));
    }

    // What the program has told so far.
    std::string moments() const {
        std::string told;
        for (const Moment& each : program_.log().all())
            told += std::to_string(each.microseconds) + " " + each.name + " " + std::to_string(each.count) + "\n";
        return told;
    }

    Keyboard keyboard_;
    Fixture fixture_{GetParam().script, GetParam().more};
    Program program_{TARVIX_PROGRAM};
};

using MenuEntryTest = OpenMenuTest;

TEST_P(MenuEntryTest, TheEntriesAreCandidatesAndReturnActivatesOne) {
    // A toolkit may tell of the entries a moment after it says that the menu is open; then one searches again.
    Program::Step typed;
    for (int tries = 0; tries < 3 && !typed; ++tries) {
        if (tries > 0) {
            ASSERT_TRUE(program_.press(keyboard_, keysym::escape, milestone::inputHidden)) << moments();
        }
        open();
        typed = program_.type(keyboard_, GetParam().query);
    }
    ASSERT_TRUE(typed);
    EXPECT_GE(typed.answered->count, 1u);
    EXPECT_THAT(fixture_.menus(), ElementsAre("opened"));
    ASSERT_TRUE(program_.press(keyboard_, keysym::returnKey, milestone::inputHidden));
    EXPECT_TRUE(await(5s, [&] { return !fixture_.clicks().empty() && fixture_.menus().size() == 2; }));
    EXPECT_THAT(fixture_.clicks(), ElementsAre(FixtureClick{GetParam().entry, 1, 1, ""}));
}

TEST_P(OpenMenuTest, EscapeClosesTheInputAndLeavesTheMenuOpen) {
    open();
    ASSERT_TRUE(program_.type(keyboard_, "x", milestone::textChanged));
    ASSERT_TRUE(program_.press(keyboard_, keysym::escape, milestone::inputHidden));
    EXPECT_THAT(fixture_.menus(), ElementsAre("opened"));
    // The keys are the menu's again.
    keyboard_.chord({keysym::escape});
    EXPECT_TRUE(await(5s, [&] { return fixture_.menus().size() == 2; }));
    EXPECT_THAT(fixture_.clicks(), ElementsAre());
}

std::string nameOf(const ::testing::TestParamInfo<Menu>& row) { return row.param.name; }

INSTANTIATE_TEST_SUITE_P(Menus, MenuEntryTest, ::testing::ValuesIn(kMenus), nameOf);
INSTANTIATE_TEST_SUITE_P(SecretMenus, OpenMenuTest, ::testing::ValuesIn(kSecret), nameOf);

// Another program that has taken the key for itself, as most do it.
class KeyHolder {
public:
    // Whether nobody has the key.
    static bool isFree() {
        KeyHolder probe(nullptr);
        const bool had = probe.take();
        if (had) probe.letGo();
        return had;
    }

    KeyHolder() : x_(xcb_connect(nullptr, nullptr)) { EXPECT_TRUE(take()); }
    ~KeyHolder() { xcb_disconnect(x_); }
    KeyHolder(const KeyHolder&) = delete;
    KeyHolder& operator=(const KeyHolder&) = delete;

    void letGo() {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x_)).data->root;
        std::free(xcb_request_check(x_, xcb_ungrab_key_checked(x_, kSpace, root, kShiftSuper)));
    }
    bool take() {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x_)).data->root;
        xcb_generic_error_t* refused = xcb_request_check(
            x_, xcb_grab_key_checked(x_, 0, root, kShiftSuper, kSpace, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        std::free(refused);
        return !refused;
    }
    // Whether it has been given a release of the key, and so the whole press.
    bool wasPressed() {
        while (xcb_generic_event_t* event = xcb_poll_for_event(x_)) {
            pressed_ = pressed_ || (event->response_type & 0x7f) == XCB_KEY_RELEASE;
            std::free(event);
        }
        return pressed_;
    }

private:
    explicit KeyHolder(std::nullptr_t) : x_(xcb_connect(nullptr, nullptr)) {}

    static constexpr std::uint16_t kShiftSuper = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_4;
    static constexpr xcb_keycode_t kSpace = 65;

    xcb_connection_t* x_;
    bool pressed_ = false;
};

class HeldShortcutTest : public ::testing::Test {
protected:
    void SetUp() override {
        holder_.emplace();
        program_.emplace(TARVIX_PROGRAM);
        ASSERT_TRUE(program_->isReady());
        keyboard_.chord({keysym::shift, keysym::super, keysym::space});
        ASSERT_TRUE(await(5s, [&] { return holder_->wasPressed(); }));
    }

    // The first press brings The Input, and so does the next.
    void expectItIsServed() {
        for (int times = 1; times <= 2; ++times) {
            ASSERT_TRUE(program_->pressHotKey(keyboard_)) << "press " << times;
            EXPECT_EQ(timesShown(), times);
            ASSERT_TRUE(program_->press(keyboard_, keysym::escape, milestone::inputHidden));
        }
    }
    std::ptrdiff_t timesShown() const {
        const std::vector<Moment> moments = program_->log().all();
        return std::ranges::count(moments, milestone::inputShown, &Moment::name);
    }

    Keyboard keyboard_;
    std::optional<KeyHolder> holder_;
    std::optional<Program> program_;
};

TEST_F(HeldShortcutTest, IsServedFromTheFirstPressAfterTheOtherProgramLetGoOfIt) {
    holder_->letGo();
    expectItIsServed();
}

TEST_F(HeldShortcutTest, IsServedFromTheFirstPressAfterTheOtherProgramHasEnded) {
    holder_.reset();
    // The server notices in its own time.
    EXPECT_TRUE(await(5s, [] { return KeyHolder::isFree(); }));
    expectItIsServed();
}

// Each press comes in the moment in which The Input goes and the keyboards are given back.
TEST(ShortcutTest, ThePressRightAfterTheInputHasGoneIsServed) {
    Keyboard keyboard;
    Program program{TARVIX_PROGRAM};
    ASSERT_TRUE(program.isReady());
    for (int times = 1; times <= 30; ++times) {
        ASSERT_TRUE(program.pressHotKey(keyboard)) << "press " << times;
        ASSERT_TRUE(program.press(keyboard, keysym::escape, milestone::inputHidden)) << "press " << times;
    }
}

}  // namespace
}  // namespace tarvix
