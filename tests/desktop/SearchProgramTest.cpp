// The real program, from the hot key to the click, on real applications.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>

#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"
#include "tests/desktop/play/ScreenImage.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr auto typedIntoTheInput = "x";

class SearchTest : public ::testing::Test {
protected:
    // Starts a fixture. The pointer goes into its window, since without a window manager that alone gives it the
    // keyboard.
    void play(const std::string& script) {
        fixture_.emplace(script);
        ASSERT_TRUE(fixture_->isReady()) << script;
        keyboard_.movePointer(inWindow());
    }

    void startProgram() {
        program_.emplace(TARVIX_PROGRAM);
        ASSERT_TRUE(program_->isReady());
    }

    // Somewhere in the fixture's window where no control takes clicks.
    ScreenPoint inWindow() const {
        const KnownControl label = known("Nettle");
        return {static_cast<int>(label.frame.origin.x) + 3, static_cast<int>(label.frame.origin.y) + 3};
    }

    KnownControl known(const std::string& name) const {
        const auto controls = fixture_->controls();
        const auto found = std::find_if(controls.begin(), controls.end(),
                                        [&](const KnownControl& control) { return control.name == name; });
        EXPECT_NE(found, controls.end()) << name;
        return found == controls.end() ? KnownControl{} : *found;
    }

    // Hot key, all candidates, a query with its markers.
    void search(const std::string& query) {
        const Program::Step opened = program_->pressHotKey(keyboard_);
        ASSERT_TRUE(opened);
        ASSERT_TRUE(program_->reached(milestone::candidatesRead, opened.pressed));
        const Program::Step typed = program_->type(keyboard_, query);
        ASSERT_TRUE(typed);
        ASSERT_GT(typed.answered->count, 0u);
    }

    void confirm() { ASSERT_TRUE(program_->press(keyboard_, keysym::returnKey, milestone::inputHidden)); }

    void expectOneClick(const FixtureClick& wanted) {
        await(3s, [&] { return !fixture_->clicks().empty(); });
        EXPECT_THAT(fixture_->clicks(), ElementsAre(wanted));
    }

    // Opens The Input, types into it and closes it with Escape.
    void openAndEscape() {
        const Program::Step opened = program_->pressHotKey(keyboard_);
        ASSERT_TRUE(opened);
        const std::int64_t typing = monotonicMicroseconds();
        keyboard_.type(typedIntoTheInput);
        ASSERT_TRUE(program_->reached(milestone::textChanged, typing));
        ASSERT_TRUE(program_->press(keyboard_, keysym::escape, milestone::inputHidden));
    }

    std::size_t textChanges() const {
        if (!program_) return 0;
        const std::vector<Moment> moments = program_->log().all();
        return static_cast<std::size_t>(std::count_if(moments.begin(), moments.end(), [](const Moment& moment) {
            return moment.name == milestone::textChanged;
        }));
    }

    // A key reaches the fixture, and it alone; and none of those that were meant for The Input did. The hot key's
    // modifiers are no secret: they go to whoever has the keyboard, as those of any global shortcut do.
    void expectKeysReachTheFixture() {
        const std::size_t typedBefore = textChanges();
        keyboard_.type("z");
        EXPECT_TRUE(await(3s, [&] { return fixture_->keys().ends_with("z"); })) << fixture_->keys();
        EXPECT_EQ(textChanges(), typedBefore);
        EXPECT_THAT(fixture_->keys(), Not(HasSubstr(typedIntoTheInput)));
        EXPECT_THAT(fixture_->keys(), Not(HasSubstr("Escape")));
    }

    // The smallest rectangle around the pixels of a region that differ, once it has stopped changing.
    static std::optional<AxRect> changeSince(const ScreenImage& before, AxRect region) {
        std::optional<AxRect> box;
        int times = 0;
        await(3s, [&] {
            const auto now = captureScreen();
            const auto seen = now ? difference(before, *now, region) : std::nullopt;
            times = seen && seen == box ? times + 1 : 0;
            box = seen;
            return times >= 3;
        });
        return box;
    }

    Keyboard keyboard_;
    std::optional<Fixture> fixture_;
    std::optional<Program> program_;
};

// Moves the fixture's window, as its user would, and waits until it knows its new place.
void moveWindow(Fixture& fixture, int x, int y) {
    const auto before = fixture.controls();
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const std::uint32_t place[] = {static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)};
    xcb_configure_window(connection, fixture.window(), XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, place);
    xcb_flush(connection);
    const auto firstPlace = [](const std::vector<KnownControl>& controls) {
        for (const KnownControl& control : controls)
            if (control.visible == KnownControl::Visible::yes) return control.frame.origin;
        return AxPoint{};
    };
    EXPECT_TRUE(await(5s, [&] { return firstPlace(fixture.controls()) != firstPlace(before); }));
    xcb_disconnect(connection);
}

// On the ordinary desktop ---------------------------------------------------------------------------------------------

TEST_F(SearchTest, ReturnClicksTheOneControlThatWasNamedInGtk3) {
    play("gtk3.py");
    startProgram();
    search("elder");
    confirm();
    expectOneClick({"Elder", 1, 1, ""});
}

// At the upper edge of the screen there is no room above the window, and The Input stands on its menu bar.
TEST_F(SearchTest, ATargetUnderTheInputIsClickedThroughIt) {
    play("gtk3.py");
    moveWindow(*fixture_, 200, 0);
    startProgram();
    search("acorn");
    confirm();
    expectOneClick({"Acorn", 1, 1, ""});
}

TEST_F(SearchTest, ReturnClicksTheOneControlThatWasNamedInQt6) {
    play("qt6.py");
    startProgram();
    search("elder");
    confirm();
    expectOneClick({"Elder", 1, 1, ""});
}

TEST_F(SearchTest, TheMarkerStandsOnTheControlToThePixel) {
    play("gtk3.py");
    startProgram();
    const auto bright = captureScreen();
    ASSERT_TRUE(bright);
    const Program::Step opened = program_->pressHotKey(keyboard_);
    ASSERT_TRUE(program_->reached(milestone::candidatesRead, opened.pressed));
    // The compositor shows the dimming when it comes to it.
    const AxRect corner{{bright->width - 20.0, bright->height - 20.0}, {20, 20}};
    ASSERT_TRUE(await(3s, [&] {
        const auto now = captureScreen();
        return now && difference(*bright, *now, corner) == corner;
    }));
    const auto before = captureScreen();
    ASSERT_TRUE(before);
    ASSERT_TRUE(program_->type(keyboard_, "hazel"));
    // From the button on down: The Input, which changes too, stands above.
    const AxRect frame = known("Hazel").frame;
    const AxRect below{{0, frame.minY() - 10}, {before->width - 1.0, 200}};
    EXPECT_EQ(changeSince(*before, below), frame);
}

TEST_F(SearchTest, DownGoesToTheNextTargetAndReturnClicksThat) {
    play("gtk3.py");
    startProgram();
    search("moss");
    ASSERT_TRUE(program_->press(keyboard_, keysym::down, milestone::markersDrawn));
    confirm();
    expectOneClick({"Moss 02", 1, 1, ""});
}

TEST_F(SearchTest, KeysThatComeAllAtOnceAreTakenInTheirOrder) {
    play("gtk3.py");
    startProgram();
    std::size_t clicks = 0;
    for (const auto* query : {"moss 03", "moss 05"}) {
        const Program::Step opened = program_->pressHotKey(keyboard_);
        ASSERT_TRUE(program_->reached(milestone::candidatesRead, opened.pressed));
        keyboard_.type(query);
        keyboard_.chord({keysym::down});  // to the only Target itself
        ASSERT_TRUE(program_->press(keyboard_, keysym::returnKey, milestone::inputHidden));
        ++clicks;
        EXPECT_TRUE(await(5s, [&] { return fixture_->clicks().size() == clicks; }));
    }
    EXPECT_THAT(fixture_->clicks(), ElementsAre(FixtureClick{"Moss 03", 1, 1, ""}, FixtureClick{"Moss 05", 1, 1, ""}));
}

TEST_F(SearchTest, TwoSearchesInARowClickTwice) {
    play("gtk3.py");
    startProgram();
    std::size_t clicks = 0;
    for (const auto* query : {"dogwood", "fennel"}) {
        search(query);
        confirm();
        ++clicks;
        EXPECT_TRUE(await(5s, [&] { return fixture_->clicks().size() == clicks; }));
    }
    EXPECT_THAT(fixture_->clicks(), ElementsAre(FixtureClick{"Dogwood", 1, 1, ""}, FixtureClick{"Fennel", 1, 1, ""}));
}

TEST_F(SearchTest, TheApplicationGetsNoKeyOfASearch) {
    play("gtk3.py");
    startProgram();
    openAndEscape();
    expectKeysReachTheFixture();
    EXPECT_THAT(fixture_->clicks(), IsEmpty());
}

TEST_F(SearchTest, WithoutAnyWindowTheInputOpensAndEscapeClosesIt) {
    startProgram();
    openAndEscape();
}

TEST_F(SearchTest, AnApplicationThatDoesNotAnswerHoldsNothingUp) {
    play("gtk3.py");
    startProgram();
    fixture_->process().send(SIGSTOP);
    openAndEscape();
    openAndEscape();
    fixture_->process().send(SIGCONT);
    expectKeysReachTheFixture();
}

TEST_F(SearchTest, AnApplicationThatDiesDuringASearchHoldsNothingUp) {
    play("gtk3.py");
    startProgram();
    search("moss");
    fixture_->process().send(SIGKILL);
    fixture_->process().waitForEnd(3s);
    // Its window goes, and with that The Input may have closed by itself already.
    keyboard_.chord({keysym::escape});
    EXPECT_TRUE(program_->reached(milestone::inputHidden, 0));
    openAndEscape();
}

TEST_F(SearchTest, AKilledProgramLeavesNoKeyBehind) {
    play("gtk3.py");
    startProgram();
    search("elder");
    program_->process().send(SIGKILL);
    ASSERT_TRUE(program_->process().waitForEnd(3s));
    program_.reset();
    expectKeysReachTheFixture();
    EXPECT_THAT(fixture_->clicks(), IsEmpty());
}

// On any desktop, whatever is missing ---------------------------------------------------------------------------------

using BareDesktopTest = SearchTest;

TEST_F(BareDesktopTest, TheInputOpensAndEscapeGivesTheKeysBack) {
    play("gtk3.py");
    startProgram();
    openAndEscape();
    expectKeysReachTheFixture();
    openAndEscape();
    expectKeysReachTheFixture();
}

// On any desktop with an accessibility bus ----------------------------------------------------------------------------

using LeanDesktopTest = SearchTest;

TEST_F(LeanDesktopTest, ReturnClicksTheOneControlThatWasNamed) {
    play("gtk3.py");
    startProgram();
    search("elder");
    confirm();
    expectOneClick({"Elder", 1, 1, ""});
    expectKeysReachTheFixture();
}

}  // namespace
}  // namespace tarvix
