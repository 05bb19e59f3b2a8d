// However the program ends, in the middle of a search or after it, nothing of it stays at the X server.
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "linux/x11/X11KeyState.h"
#include "tests/desktop/X11Victim.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Program.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// By the X server's keycodes.
constexpr std::uint8_t kShift = 50, kSuper = 133, kControl = 37, kAlt = 64, kSpace = 65, kReturn = 36, kEscape = 9,
                       kZ = 52;
constexpr std::uint8_t kShiftMask = 1;

std::string contentOf(const fs::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A line of the victim's log as if no button were down.
std::string withoutButtons(const std::string& line) {
    const std::size_t with = line.find(" with ");
    if (with == std::string::npos) return line;
    const int modifiers = std::stoi(line.substr(with + 6)) & 0xff;
    return line.substr(0, with) + (modifiers == 0 ? "" : " with " + std::to_string(modifiers));
}

// The guard of a program on this display.
std::optional<pid_t> findGuard() {
    const std::string display = std::string("DISPLAY=") + std::getenv("DISPLAY") + '\0';
    for (const auto& entry : fs::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        if (name.find_first_not_of("0123456789") != std::string::npos) continue;
        if (contentOf(entry.path() / "comm") == "keyguard\n" &&
            contentOf(entry.path() / "environ").find(display) != std::string::npos)
            return std::stoi(name);
    }
    return std::nullopt;
}

class StuckKeysTest : public ::testing::Test {
protected:
    void SetUp() override {
        hand_.movePointer(300, 250);
        ASSERT_TRUE(application_.show());
        // A window manager does so by itself, and may take it amiss when the window is quicker.
        ASSERT_TRUE(await(2s, [&] { return isActive(); }) || application_.focus());
        program_.emplace(TARVIX_PROGRAM);
        ASSERT_TRUE(program_->isReady());
        application_.takeLog();
    }

    void TearDown() override {
        program_.reset();
        EXPECT_TRUE(await(5s, [] { return !findGuard(); })) << "the guard ends with the program";
    }

    void keysDown(const std::vector<std::uint8_t>& keys) {
        for (const std::uint8_t key : keys) hand_.keyDown(key);
    }
    void keysUp(const std::vector<std::uint8_t>& keys) {
        for (auto key = keys.rbegin(); key != keys.rend(); ++key) hand_.keyUp(*key);
    }

    void search() {
        const std::int64_t pressed = monotonicMicroseconds();
        keysDown({kShift, kSuper, kSpace});
        keysUp({kShift, kSuper, kSpace});
        ASSERT_TRUE(program_->reached(milestone::inputShown, pressed));
    }
    // Presses a key that ends the search, and lets it go.
    void endSearch(std::uint8_t key) {
        const std::int64_t pressed = monotonicMicroseconds();
        hand_.keyDown(key);
        ASSERT_TRUE(program_->reached(milestone::inputHidden, pressed));
        hand_.keyUp(key);
    }

    void kill() {
        program_->process().send(SIGKILL);
        ASSERT_TRUE(program_->process().waitForEnd(3s));
    }

    ModifierState modifiers() {
        hand_.connection().sync();
        return modifierStates(hand_.connection(), {kMasterKeyboard}).front();
    }

    bool isActive() {
        X11Connection& x = hand_.connection();
        const auto active = x.items(x.root(), "_NET_ACTIVE_WINDOW");
        if (active.empty()) return application_.focus();
        const auto focus = x.reply<xcb_get_input_focus_reply>(xcb_get_input_focus(x.get()));
        return active.front() == application_.window() && focus && focus->focus == application_.window();
    }

    // What the application gets, as far as it isn't about the focus.
    Lines takeInput() {
        Lines input;
        for (const std::string& line : application_.takeLog())
            if (line.starts_with("key") || line.starts_with("button")) input.push_back(line);
        return input;
    }
    // Whether the application gets these within the limit, one after the other and nothing else but the program's own
    // clicks, which a window manager may hold back for a while.
    bool gets(const Lines& wanted) {
        Lines got;
        const bool all = await(5s, [&] {
            for (const std::string& line : takeInput())
                if (!line.starts_with("button down 1") && !line.starts_with("button up 1"))
                    got.push_back(withoutButtons(line));
            return got.size() >= wanted.size();
        });
        EXPECT_EQ(got, wanted);
        return all;
    }

    bool hasButtonDown() {
        X11Connection& x = hand_.connection();
        const auto pointer = x.reply<xcb_query_pointer_reply>(xcb_query_pointer(x.get(), x.root()));
        return (pointer->mask & 0x1f00) != 0;
    }

    // Keys and the wheel are the application's, without any modifier that no hand holds.
    void expectNothingStands() {
        // The server notices the end of a program in its own time, and the guard comes after it.
        ASSERT_TRUE(await(5s, [] { return !findGuard(); }));
        EXPECT_TRUE(await(5s, [&] { return modifiers().effective() == 0; })) << int{modifiers().effective()};
        takeInput();
        hand_.tap(kZ);
        EXPECT_TRUE(gets({"key down 52", "key up 52"}));
        hand_.postedTap(kZ);
        EXPECT_TRUE(gets({"key down 52", "key up 52"}));
        hand_.click(5);
        EXPECT_TRUE(gets({"button down 5", "button up 5"}));
        EXPECT_TRUE(keysDownForApplications(hand_.connection()).none());
        EXPECT_TRUE(await(5s, [&] { return !hasButtonDown(); }));
    }

    X11Victim application_;
    Hardware hand_;
    std::optional<Program> program_;
};

class KilledWhileHeld : public StuckKeysTest, public ::testing::WithParamInterface<std::vector<std::uint8_t>> {};

TEST_P(KilledWhileHeld, InASearchItLeavesNothing) {
    search();
    keysDown(GetParam());
    kill();
    expectNothingStands();
    keysUp(GetParam());
    expectNothingStands();
}

TEST_P(KilledWhileHeld, HeldSinceBeforeTheSearchLeavesNothing) {
    const std::int64_t pressed = monotonicMicroseconds();
    keysDown({kShift, kSuper, kSpace});
    ASSERT_TRUE(program_->reached(milestone::inputShown, pressed));
    kill();
    expectNothingStands();
    keysUp({kShift, kSuper, kSpace});
    expectNothingStands();
}

INSTANTIATE_TEST_SUITE_P(Modifiers, KilledWhileHeld,
                         ::testing::Values(std::vector<std::uint8_t>{}, std::vector<std::uint8_t>{kShift},
                                           std::vector<std::uint8_t>{kShift, kSuper, kControl}));

// The lock that stands for Shift is at the master keyboard, and wouldn't end with a connection.
TEST_F(StuckKeysTest, KilledWhileAModifierStandsInItLeavesNothing) {
    search();
    hand_.keyDown(kShift);
    endSearch(kReturn);
    ASSERT_TRUE(await(3s, [&] { return modifiers().locked == kShiftMask; }));
    kill();
    expectNothingStands();
    hand_.keyUp(kShift);
    expectNothingStands();
}

TEST_F(StuckKeysTest, KilledRightAfterAClickWithoutModifiersItLeavesNothing) {
    search();
    keysDown({kControl, kAlt, kSuper});
    hand_.keyDown(kReturn);
    ASSERT_TRUE(program_->reached(milestone::actionPosted, 0));
    kill();
    keysUp({kControl, kAlt, kSuper, kReturn});
    expectNothingStands();
}

TEST_F(StuckKeysTest, AskedToEndInASearchItLeavesNothing) {
    search();
    hand_.keyDown(kShift);
    program_->process().send(SIGTERM);
    EXPECT_EQ(program_->process().waitForEnd(5s), 0);
    expectNothingStands();
    hand_.keyUp(kShift);
    expectNothingStands();
}

TEST_F(StuckKeysTest, AModifierThatIsHeldOnAfterAClickWithoutModifiersCountsAgain) {
    search();
    keysDown({kControl, kAlt, kSuper});
    endSearch(kReturn);
    EXPECT_TRUE(await(5s, [&] { return modifiers().effective() == 0x4c; })) << int{modifiers().effective()};
    keysUp({kControl, kAlt, kSuper});
    EXPECT_TRUE(await(5s, [&] { return modifiers().effective() == 0; }));
}

TEST_F(StuckKeysTest, EscapeWhileTheHotKeyIsStillDownLeavesNothing) {
    const std::int64_t pressed = monotonicMicroseconds();
    keysDown({kShift, kSuper, kSpace});
    ASSERT_TRUE(program_->reached(milestone::inputShown, pressed));
    keysUp({kShift, kSuper});
    hand_.tap(kEscape);
    ASSERT_TRUE(program_->reached(milestone::inputHidden, pressed));
    hand_.keyUp(kSpace);
    EXPECT_TRUE(await(5s, [&] { return modifiers().effective() == 0; }));
    takeInput();
    hand_.tap(kZ);
    EXPECT_TRUE(gets({"key down 52", "key up 52"}));
}

TEST_F(StuckKeysTest, WhatIsTypedRightAfterReturnOrEscapeReachesTheApplication) {
    for (const std::uint8_t ending : {kReturn, kEscape}) {
        search();
        takeInput();
        hand_.tap(ending);
        hand_.keyDown(kShift);
        hand_.tap(kZ);
        hand_.keyUp(kShift);
        // What stood in for Shift goes with it, but no quicker than a hand.
        EXPECT_TRUE(await(5s, [&] { return modifiers().effective() == 0; }));
        hand_.tap(kZ);
        Lines keys;
        EXPECT_TRUE(await(5s, [&] {
            for (const std::string& line : takeInput())
                if (line.find(" 52") != std::string::npos) keys.push_back(withoutButtons(line));
            return keys.size() >= 4;
        }));
        EXPECT_EQ(keys, (Lines{"key down 52 with 1", "key up 52 with 1", "key down 52", "key up 52"}));
    }
}

TEST_F(StuckKeysTest, TheGuardHoldsNothingOpenAndOutlivesTheSignalsOfItsGroup) {
    std::optional<pid_t> guard;
    ASSERT_TRUE(await(5s, [&] { return (guard = findGuard()).has_value(); }));
    const fs::path files = "/proc/" + std::to_string(*guard) + "/fd";
    // It comes to it when the machine lets it.
    EXPECT_TRUE(await(5s, [&] { return std::distance(fs::directory_iterator(files), {}) == 4; }));
    std::vector<std::string> open;
    for (const auto& entry : fs::directory_iterator(files))
        open.push_back(fs::read_symlink(entry).string().substr(0, 9));
    std::sort(open.begin(), open.end());
    ASSERT_EQ(open.size(), 4u);
    EXPECT_EQ(std::count(open.begin(), open.end(), "/dev/null"), 3);
    EXPECT_TRUE(open.back().starts_with("pipe:"));
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) ::kill(*guard, number);
    search();
    hand_.keyDown(kShift);
    endSearch(kReturn);
    ASSERT_TRUE(await(3s, [&] { return modifiers().locked == kShiftMask; }));
    EXPECT_EQ(findGuard(), guard);
    kill();
    expectNothingStands();
    hand_.keyUp(kShift);
}

}  // namespace
}  // namespace tarvix
