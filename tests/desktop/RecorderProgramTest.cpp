// The real program's shortcut, recorded in its settings window.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>

#include "linux/x11/X11Windows.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"
#include "tests/desktop/play/ScreenImage.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;

constexpr auto kLimit = 15s;
constexpr std::uint32_t kDeleteKey = 0xffff;

using Keys = std::vector<std::uint32_t>;
const Keys kDefault{keysym::shift, keysym::super, keysym::space};
const Keys kAltShiftK{keysym::alt, keysym::shift, 'k'};
const Keys kAltShiftJ{keysym::alt, keysym::shift, 'j'};

class RecorderProgramTest : public testing::Test {
protected:
    void SetUp() override {
        program_.emplace(TARVIX_PROGRAM, environment_);
        ASSERT_TRUE(program_->isReady());
        Process second({TARVIX_PROGRAM}, environment_);
        ASSERT_EQ(second.waitForEnd(kLimit), 0);
        ASSERT_TRUE(comesInFront("Settings"));
    }

    bool comesInFront(const std::string& title) {
        return await(kLimit, [&] {
            const auto active = windows_->active();
            return active && active->title.starts_with(title);
        });
    }
    // From the tabs, which the window gives the keyboard first, to the field. It shows that it records.
    void record() {
        const auto window = windows_->active();
        ASSERT_TRUE(window);
        const auto before = paintedScreen(window->client);
        ASSERT_TRUE(before);
        keyboard_.chord({keysym::tab});
        ASSERT_TRUE(await(kLimit, [&] {
            const auto now = captureScreen();
            return now && difference(*before, *now, window->client).has_value();
        }));
    }
    // The screen once the window has its text, which is of many colours, and nothing in it changes any more.
    static std::optional<ScreenImage> paintedScreen(const AxRect& window) {
        constexpr std::size_t kColorsOfText = 10;
        constexpr int kEnough = 10;
        std::optional<ScreenImage> last;
        int same = 0;
        const bool isPainted = await(kLimit, [&] {
            auto now = captureScreen();
            same = last && now && !difference(*last, *now, window) ? same + 1 : 0;
            last = std::move(now);
            return same >= kEnough && colorsIn(*last, window) > kColorsOfText;
        });
        return isPainted ? last : std::nullopt;
    }
    static std::size_t colorsIn(const ScreenImage& screen, const AxRect& region) {
        std::set<std::uint32_t> colors;
        for (int y = static_cast<int>(region.minY()); y < static_cast<int>(region.maxY()); ++y)
            for (int x = static_cast<int>(region.minX()); x < static_cast<int>(region.maxX()); ++x)
                colors.insert(screen.at(x, y));
        return colors.size();
    }

    std::optional<nlohmann::json> stored() const {
        std::ifstream in(std::filesystem::path(folder_.file("configuration")) / "tarvix/tarvix.json");
        const auto settings = nlohmann::json::parse(in, nullptr, false);
        if (!settings.is_object() || !settings.contains("KeyboardShortcuts_toggleWith")) return std::nullopt;
        return settings["KeyboardShortcuts_toggleWith"];
    }
    bool isStored(const nlohmann::json& value) {
        return await(kLimit, [&] { return stored() == value; });
    }
    static nlohmann::json shortcut(int keyCode, int modifiers) {
        return R"({"carbonKeyCode":)" + std::to_string(keyCode) + R"(,"carbonModifiers":)" + std::to_string(modifiers) +
               "}";
    }
    // The shortcut brings The Input and takes it away, and no other press so far has brought it.
    void expectSearches(const Keys& keys, int times) {
        const std::int64_t pressed = monotonicMicroseconds();
        keyboard_.chord(keys);
        ASSERT_TRUE(program_->reached(milestone::inputShown, pressed, kLimit));
        ASSERT_TRUE(program_->press(keyboard_, keysym::escape, milestone::inputHidden));
        const auto moments = program_->log().all();
        EXPECT_EQ(std::ranges::count(moments, milestone::inputShown, &Moment::name), times);
    }

    const std::unique_ptr<X11Windows> windows_ = std::move(X11Windows::open().value());
    ScratchFolder folder_;
    Process::Environment environment_{{"XDG_CONFIG_HOME", folder_.file("configuration")}};
    Keyboard keyboard_;
    std::optional<Program> program_;
};

TEST_F(RecorderProgramTest, TheStoreAndTheHotKeyFollowAtOnceAndTheOldShortcutIsDead) {
    record();
    keyboard_.chord(kAltShiftK);
    ASSERT_TRUE(isStored(shortcut(40, 0xa00)));
    expectSearches(kAltShiftK, 1);
    keyboard_.chord(kDefault);
    expectSearches(kAltShiftK, 2);
}

TEST_F(RecorderProgramTest, ThePresentShortcutStartsNothingWhileOneIsRecorded) {
    record();
    const std::int64_t pressed = monotonicMicroseconds();
    keyboard_.chord(kDefault);
    ASSERT_TRUE(program_->reached(milestone::hotKeyPressed, pressed, kLimit));
    // Recorded sooner or later, it leaves the keyboard to nobody; the tab key goes around until the field has it again.
    const auto isRecorded = [&] {
        keyboard_.chord({keysym::tab});
        keyboard_.chord(kAltShiftJ);
        return await(400ms, [&] { return stored() == shortcut(38, 0xa00); });
    };
    bool wasRecorded = false;
    for (int tries = 0; tries < 20 && !wasRecorded; ++tries) wasRecorded = isRecorded();
    ASSERT_TRUE(wasRecorded);
    expectSearches(kAltShiftJ, 1);
}

TEST_F(RecorderProgramTest, WhatIsClearedStaysCleared) {
    record();
    keyboard_.chord({kDeleteKey});
    ASSERT_TRUE(isStored(false));
    program_.emplace(TARVIX_PROGRAM, environment_);
    ASSERT_TRUE(program_->isReady());
    EXPECT_EQ(stored(), nlohmann::json(false));
}

TEST_F(RecorderProgramTest, TheProgramsMenuIsTakenAndRecordingGoesOn) {
    record();
    for (const std::uint32_t taken : {std::uint32_t{'q'}, std::uint32_t{','}}) {
        keyboard_.chord({keysym::super, taken});
        ASSERT_TRUE(comesInFront("Tarvix")) << "the alert";
        keyboard_.chord({keysym::returnKey});
        ASSERT_TRUE(comesInFront("Settings"));
    }
    EXPECT_EQ(stored(), shortcut(49, 0x300));
    keyboard_.chord(kAltShiftK);
    EXPECT_TRUE(isStored(shortcut(40, 0xa00)));
}

}  // namespace
}  // namespace tarvix
