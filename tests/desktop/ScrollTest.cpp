// What becomes of the wheel over real scrollers, with the real program.
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Mouse.h"
#include "tests/desktop/play/Program.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;

constexpr int kNotches = 5;

class ScrollTest : public ::testing::TestWithParam<const char*> {
protected:
    // Starts the toolkit's scroller, with the pointer over its rows, and learns how far it goes while there is no
    // Tarvix.
    void SetUp() override {
        fixture_.emplace(std::string("scroller-") + GetParam() + ".py");
        ASSERT_TRUE(fixture_->isReady());
        mouse().moveTo(middleOf("Slope"));
        greet();
        untouched_ = scrollThere();
        ASSERT_EQ(untouched_.size(), std::size_t{kNotches});
        scrollBack();
    }

    void TearDown() override { setFreezing(false); }

    void startProgram() {
        program_.emplace(TARVIX_PROGRAM);
        ASSERT_TRUE(program_->isReady());
    }

    void startProgramThatFreezes() {
        setFreezing(true);
        startProgram();
    }

    static void setFreezing(bool on) {
        const std::filesystem::path path = std::string(std::getenv("XDG_CONFIG_HOME")) + "/tarvix/tarvix.json";
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << "{\"preventScrollingWhenTarvixing\": " << (on ? "true" : "false") << "}";
    }

    ScreenPoint middleOf(const std::string& name) const {
        for (const KnownControl& control : fixture_->controls())
            if (control.name == name)
                return {static_cast<int>(control.frame.origin.x + control.frame.size.width / 2),
                        static_cast<int>(control.frame.origin.y + control.frame.size.height / 2)};
        ADD_FAILURE() << name;
        return {};
    }

    // Where an axis stands is news to a window that the pointer has just come into or clicked in: GTK moves nothing at
    // the first event from there on.
    void greet() {
        ASSERT_TRUE(turn(1) || turn(1));
        scrollBack();
    }

    // One notch, and whether it has moved something.
    bool turn(int notches, std::chrono::milliseconds limit = 300ms) {
        const int before = fixture_->scrolled();
        mouse().scroll(notches);
        return await(limit, [&] { return fixture_->scrolled() != before; });
    }

    // Down by some notches, the next when the one before has moved something: GTK 4 takes those that come together
    // for fewer. Gives the offset after each.
    std::vector<int> scrollThere() {
        std::vector<int> offsets;
        while (offsets.size() < kNotches && turn(1, 5s)) offsets.push_back(fixture_->scrolled());
        return offsets;
    }
    void scrollBack() {
        for (int tries = 0; fixture_->scrolled() != 0 && tries < 2 * kNotches; ++tries) turn(-1);
        ASSERT_EQ(fixture_->scrolled(), 0);
    }

    // Nothing that came so far has moved the scroller. A fixture gets its events in order, and clicks are such.
    void expectNothingScrolled() {
        for (int i = 0; i < 2; ++i) ASSERT_TRUE(clickReaches(2s) || clickReaches(2s) || clickReaches(5s));
        EXPECT_EQ(fixture_->scrolled(), 0);
        greet();
    }

    void clickHarvest() { EXPECT_TRUE(clickReaches(5s)); }

    // Whether a click on the button arrives. openbox 3.6 may lose one that comes within milliseconds of another.
    bool clickReaches(std::chrono::milliseconds limit) {
        const std::size_t before = fixture_->clicks().size();
        mouse().moveTo(middleOf("Harvest"));
        mouse().click();
        const bool arrived = await(limit, [&] { return fixture_->clicks().size() > before; });
        if (arrived) {
            EXPECT_EQ(fixture_->clicks().back(), (FixtureClick{"Harvest", 1, 1, ""}));
        }
        mouse().moveTo(middleOf("Slope"));
        return arrived;
    }

    std::int64_t openTheInput() {
        const Program::Step opened = program_->pressHotKey(keyboard_);
        EXPECT_TRUE(opened);
        EXPECT_TRUE(program_->reached(milestone::candidatesRead, opened.pressed));
        return opened.pressed;
    }

    // The Input takes a key, so it is open, and has been all the time since.
    void expectStillOpen(std::int64_t since) {
        const std::int64_t now = monotonicMicroseconds();
        keyboard_.type("x");
        EXPECT_TRUE(program_->reached(milestone::textChanged, now));
        EXPECT_FALSE(program_->reached(milestone::inputHidden, since, 0ms));
    }

    void closeWithEscape() {
        EXPECT_TRUE(program_->press(keyboard_, keysym::escape, milestone::inputHidden)) << moments();
    }
    std::string moments() const {
        std::string text;
        for (const Moment& moment : program_->log().all())
            text += std::to_string(moment.microseconds) + " " + moment.name + "\n";
        return text;
    }

    void expectWheelAsWithoutTarvix() {
        EXPECT_EQ(scrollThere(), untouched_);
        scrollBack();
    }

    // One for all tests: its device takes one connection in the server's life.
    static Mouse& mouse() {
        static Mouse theOne;
        return theOne;
    }

    Keyboard keyboard_;
    std::optional<Fixture> fixture_;
    std::optional<Program> program_;
    std::vector<int> untouched_;  // the offset after each notch
};

TEST_P(ScrollTest, WithoutASearchTheWheelIsAsWithoutTarvixWhateverTheSettingSays) {
    startProgram();
    expectWheelAsWithoutTarvix();
    setFreezing(true);
    expectWheelAsWithoutTarvix();
}

TEST_P(ScrollTest, DuringASearchTheWheelReachesTheApplicationAndEndsTheSearch) {
    startProgram();
    const std::int64_t opened = openTheInput();
    EXPECT_EQ(scrollThere(), untouched_) << "the first notch included";
    EXPECT_TRUE(program_->reached(milestone::inputHidden, opened));
    scrollBack();
    expectWheelAsWithoutTarvix();
}

TEST_P(ScrollTest, AFrozenWheelReachesNobodyAndTheSearchStays) {
    startProgramThatFreezes();
    for (int round = 0; round < 2; ++round) {
        const std::int64_t opened = openTheInput();
        for (int i = 0; i < kNotches; ++i) mouse().scroll(1);
        expectStillOpen(opened);
        closeWithEscape();
        expectNothingScrolled();
        expectWheelAsWithoutTarvix();
    }
}

TEST_P(ScrollTest, AHandsClickDuringASearchWithAFrozenWheelIsTheApplicationsAndEndsTheSearch) {
    startProgramThatFreezes();
    const std::size_t clicksBefore = fixture_->clicks().size();
    const std::int64_t opened = openTheInput();
    mouse().scroll(1);
    clickHarvest();
    EXPECT_EQ(fixture_->clicks().size(), clicksBefore + 1);
    EXPECT_TRUE(program_->reached(milestone::inputHidden, opened));
    greet();
    expectWheelAsWithoutTarvix();
}

TEST_P(ScrollTest, ATargetIsClickedThoughTheWheelIsFrozen) {
    startProgramThatFreezes();
    const std::size_t clicksBefore = fixture_->clicks().size();
    openTheInput();
    ASSERT_TRUE(program_->type(keyboard_, "harvest"));
    ASSERT_TRUE(program_->press(keyboard_, keysym::returnKey, milestone::inputHidden));
    EXPECT_TRUE(await(5s, [&] { return fixture_->clicks().size() > clicksBefore; }));
    EXPECT_EQ(fixture_->clicks().back(), (FixtureClick{"Harvest", 1, 1, ""}));
    mouse().moveTo(middleOf("Slope"));
    greet();
    expectWheelAsWithoutTarvix();
}

TEST_P(ScrollTest, AKilledProgramLeavesTheWheelToTheApplication) {
    startProgramThatFreezes();
    openTheInput();
    mouse().scroll(1);
    program_->process().send(SIGKILL);
    ASSERT_TRUE(program_->process().waitForEnd(3s));
    expectNothingScrolled();
    expectWheelAsWithoutTarvix();
}

// Only where there is a mouse that can.
class AxesTest : public ScrollTest {};

TEST_P(AxesTest, PartsOfANotchAreSeenAndFrozenToo) {
    ASSERT_TRUE(mouse().scrollsByAxes());
    startProgram();
    const std::int64_t opened = openTheInput();
    mouse().scroll(0.2);
    EXPECT_TRUE(program_->reached(milestone::inputHidden, opened));
    for (int i = 0; i < 4; ++i) mouse().scroll(0.2);
    EXPECT_TRUE(await(5s, [&] { return fixture_->scrolled() == untouched_.front(); })) << fixture_->scrolled();
    scrollBack();

    setFreezing(true);
    program_.reset();
    startProgram();
    const std::int64_t openedAgain = openTheInput();
    for (int i = 0; i < 10; ++i) mouse().scroll(0.2);
    expectStillOpen(openedAgain);
    closeWithEscape();
    expectNothingScrolled();
}

const auto kToolkits = ::testing::Values("gtk3", "gtk4", "qt6");
const auto kNames = [](const auto& parameter) { return std::string(parameter.param); };
INSTANTIATE_TEST_SUITE_P(Toolkits, ScrollTest, kToolkits, kNames);
INSTANTIATE_TEST_SUITE_P(Toolkits, AxesTest, kToolkits, kNames);

}  // namespace
}  // namespace tarvix
