// The settings window of the running program, by the keyboard alone, and what its controls show on the screen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "linux/x11/X11Windows.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"
#include "tests/desktop/play/ScreenImage.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;

constexpr auto kLimit = 15s;

class SettingsProgramTest : public testing::Test {
protected:
    ~SettingsProgramTest() override {
        program_.reset();
        fixture_.reset();
    }

    void openSettings(const std::string& settings) {
        fixture_.emplace("gtk3-grid.py",
                         std::vector<std::string>{"8", "6"});  // as large as the screen, and little to read
        ASSERT_TRUE(fixture_->isReady());
        std::filesystem::create_directories(file().parent_path());
        std::ofstream(file()) << settings;
        environment_ = {{"XDG_CONFIG_HOME", folder_.file("configuration")}};
        program_.emplace(TARVIX_PROGRAM, environment_);
        ASSERT_TRUE(program_->isReady());
        Process second({TARVIX_PROGRAM}, environment_);
        ASSERT_EQ(second.waitForEnd(kLimit), 0);
        ASSERT_TRUE(await(kLimit, [this] {
            const auto active = windows_->active();
            return active && active->title.starts_with("Settings");
        }));
    }
    // Waits for each tab to show: the panes differ in height.
    void turnTabs(int count) {
        for (int i = 0; i < count; ++i) {
            const double before = height();
            keyboard_.chord({keysym::control, keysym::tab});
            ASSERT_TRUE(await(kLimit, [&] { return height() != before; }));
        }
    }
    double height() {
        const auto active = windows_->active();
        return active ? active->client.height() : 0;
    }
    std::filesystem::path file() const {
        return std::filesystem::path(folder_.file("configuration")) / "tarvix/tarvix.json";
    }
    nlohmann::json stored(const std::string& key) const {
        std::ifstream in(file());
        const auto settings = nlohmann::json::parse(in, nullptr, false);
        return settings.is_object() ? settings.value(key, nlohmann::json()) : nlohmann::json();
    }
    bool isStored(const std::string& key, const nlohmann::json& value) {
        return await(kLimit, [&] { return stored(key) == value; });
    }
    bool theInputShows() {
        for (const X11Window& window : windows_->onScreen())
            if (window.title.starts_with("The Input")) return true;
        return false;
    }
    // Once a part of it has stayed the same for a while: the compositor paints windows later than they come.
    static std::optional<ScreenImage> screenAtRest(const AxRect& part) {
        std::optional<ScreenImage> last;
        int same = 0;
        const bool isAtRest = await(kLimit, [&] {
            auto now = captureScreen();
            same = last && now && !difference(*last, *now, part) ? same + 1 : 0;
            last = std::move(now);
            return same >= 10;
        });
        return isAtRest ? std::move(last) : std::nullopt;
    }
    // Of one that the settings don't cover.
    std::optional<AxRect> controlInSight() {
        const auto settings = windows_->active();
        for (const KnownControl& control : fixture_->controls())
            if (settings && control.visible == KnownControl::Visible::yes &&
                !intersects(control.frame, AxRect{settings->client.origin, {settings->client.width(), 1000}}))
                return control.frame;
        return std::nullopt;
    }

    const std::unique_ptr<X11Windows> windows_ = std::move(X11Windows::open().value());
    ScratchFolder folder_;
    Process::Environment environment_;
    Keyboard keyboard_;
    std::optional<Fixture> fixture_;
    std::optional<Program> program_;
};

TEST_F(SettingsProgramTest, AToggleIsReachedByTheKeyboardAndInTheFileAtOnce) {
    openSettings(R"({"searchIncludesDock": true})");
    turnTabs(1);
    keyboard_.chord({keysym::tab});
    keyboard_.chord({keysym::space});
    EXPECT_TRUE(isStored("searchIncludesAppMenus", false));
    EXPECT_EQ(stored("searchIncludesDock"), true);
    keyboard_.chord({keysym::space});
    EXPECT_TRUE(isStored("searchIncludesAppMenus", true));
    keyboard_.chord({keysym::escape});
    EXPECT_TRUE(await(kLimit, [this] {
        const auto active = windows_->active();
        return active && active->pid == fixture_->pid();
    })) << "closed, the application behind has the keyboard";
}

TEST_F(SettingsProgramTest, APositionShowsTheInputForAMomentAndTheKeyboardStaysWithThePicker) {
    openSettings("{}");
    turnTabs(3);
    keyboard_.chord({keysym::tab});
    keyboard_.chord({keysym::down});
    EXPECT_TRUE(isStored("inputPosition", "aboveInput"));
    EXPECT_TRUE(await(kLimit, [this] { return theInputShows(); }));
    keyboard_.chord({keysym::down});
    EXPECT_TRUE(isStored("inputPosition", "aboveMouse")) << "the second press reached the picker as well";
    EXPECT_TRUE(await(kLimit, [this] { return !theInputShows(); }));
    EXPECT_TRUE(windows_->active()->title.starts_with("Settings"));
}

TEST_F(SettingsProgramTest, AColourMarksTheWindowBehindForAMoment) {
    openSettings(R"({"hazeOverWindowStyle": "onlyTargets"})");
    turnTabs(2);
    const auto control = controlInSight();
    ASSERT_TRUE(control);
    const auto before = screenAtRest(*control);
    ASSERT_TRUE(before);
    const auto differs = [&] {
        const auto now = captureScreen();
        return now && difference(*before, *now, *control).has_value();
    };
    ASSERT_FALSE(differs());
    for (int i = 0; i < 8; ++i) keyboard_.chord({keysym::tab});
    keyboard_.chord({keysym::down});
    EXPECT_TRUE(isStored("targetsColor", "accent"));
    // A busy machine may be too slow to read the application in the time that there is for it; the next try isn't.
    bool marked = await(5s, differs);
    for (int i = 0; i < 5 && !marked; ++i) {
        keyboard_.chord({i % 2 == 0 ? keysym::up : keysym::down});
        marked = await(5s, differs);
    }
    EXPECT_TRUE(marked);
    EXPECT_TRUE(await(kLimit, [&] { return !differs(); }));
}

TEST_F(SettingsProgramTest, DimmingShowsWhileItIsTriedAndNotLonger) {
    openSettings("{}");
    turnTabs(2);
    const auto control = controlInSight();
    ASSERT_TRUE(control);
    const int x = static_cast<int>(control->minX()) - 3, y = static_cast<int>(control->minY()) - 3;
    ASSERT_TRUE(screenAtRest(*control));
    const auto before = capturePixel(x, y);
    for (int i = 0; i < 10; ++i) keyboard_.chord({keysym::tab});
    keyboard_.chord({keysym::end});
    EXPECT_TRUE(isStored("hazeOverWindowOpacity", 0.9));
    keyboard_.chord({keysym::home});  // once more while it is dimmed
    keyboard_.chord({keysym::end});
    EXPECT_TRUE(await(kLimit, [&] { return capturePixel(x, y) != before; }));
    EXPECT_TRUE(await(kLimit, [&] { return capturePixel(x, y) == before; }));
    EXPECT_TRUE(program_->process().isRunning());
}

}  // namespace
}  // namespace tarvix
