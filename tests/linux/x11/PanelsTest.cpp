#include <gtest/gtest.h>

#include "linux/x11/Panels.h"

namespace tarvix {
namespace {

constexpr AxRect kBottomBar{{0, 1050}, {1920, 30}};
constexpr AxRect kScreen{{0, 0}, {1920, 1080}};

X11Window window(std::uint32_t number, std::int32_t pid, AxRect box) {
    X11Window made;
    made.number = number;
    made.pid = pid;
    made.client = box;
    return made;
}

X11Window panel(std::uint32_t number, std::int32_t pid, AxRect box, const char* windowClass = "Xfce4-panel") {
    X11Window made = window(number, pid, box);
    made.types = {"DOCK"};
    made.windowClass = windowClass;
    made.clickable = box;
    return made;
}

X11Window withButtonAt(AxRect button) {
    X11Window made = window(90, 900, {{300, 300}, {400, 300}});
    made.iconGeometry = button;
    return made;
}

std::vector<std::uint32_t> numbersShowing(const std::vector<X11Window>& windows) {
    std::vector<std::uint32_t> numbers;
    for (const X11Window& each : panelsThatShow(windows)) numbers.push_back(each.number);
    return numbers;
}

using Numbers = std::vector<std::uint32_t>;

TEST(Panels, AreTheWindowsOfTheTypeDock) {
    EXPECT_EQ(numbersShowing({window(1, 10, kScreen), panel(2, 20, kBottomBar)}), Numbers{});
    EXPECT_EQ(numbersShowing({panel(2, 20, kBottomBar), window(1, 10, kScreen)}), Numbers{2});
}

TEST(Panels, AHiddenOneThatLeavesAStripIsNotSeen) {
    for (const double thickness : {1.0, 3.0, 4.0, 6.0}) {
        X11Window hidden = panel(1, 10, kBottomBar);
        hidden.clickable = {{0, 1080 - thickness}, {1920, thickness}};
        EXPECT_EQ(numbersShowing({hidden}), Numbers{}) << thickness;
        hidden.clickable = {{0, 0}, {thickness, 1080}};
        EXPECT_EQ(numbersShowing({hidden}), Numbers{}) << thickness;
    }
    EXPECT_EQ(numbersShowing({panel(1, 10, {{0, 0}, {1920, 16}})}), Numbers{1});
}

TEST(Panels, OneThatTakesNoClicksOrIsOffTheScreenIsNotSeen) {
    X11Window gone = panel(1, 10, {{-9999, -9999}, {1920, 30}});
    gone.clickable = AxRect::null();
    EXPECT_EQ(numbersShowing({gone}), Numbers{});
}

TEST(Panels, OneBehindAWindowIsNotSeenUnlessSomeOfItSticksOut) {
    EXPECT_EQ(numbersShowing({window(1, 10, kScreen), panel(2, 20, kBottomBar)}), Numbers{});
    EXPECT_EQ(numbersShowing({window(1, 10, {{0, 0}, {1919, 1080}}), panel(2, 20, kBottomBar)}), Numbers{2});
    X11Window popup = window(1, 10, kScreen);
    popup.isOverrideRedirect = true;
    EXPECT_EQ(numbersShowing({popup, panel(2, 20, kBottomBar)}), Numbers{2}) << "a panel of ours, or a menu";
    popup.isFullScreen = true;
    EXPECT_EQ(numbersShowing({popup, panel(2, 20, kBottomBar)}), Numbers{}) << "a film";
    X11Window background = window(1, 10, kScreen);
    background.types = {"DESKTOP"};
    EXPECT_EQ(numbersShowing({background, panel(2, 20, kBottomBar)}), Numbers{2});
    EXPECT_EQ(numbersShowing({panel(1, 10, kScreen), panel(2, 20, kBottomBar)}), (Numbers{1, 2}));
}

TEST(DockProcess, IsAbsentWithoutAPanel) {
    EXPECT_EQ(dockProcess({window(1, 10, kScreen)}, {withButtonAt({{0, 0}, {10, 10}})}), std::nullopt);
}

TEST(DockProcess, IsTheProgramThatIsNothingElse) {
    const X11Window button = withButtonAt({{140, 1050}, {200, 30}});
    for (const char* name : {"Plank", "Cairo-dock"}) {
        const auto dock = panel(2, 20, {{800, 1000}, {300, 50}}, name);
        EXPECT_EQ(dockProcess({panel(1, 10, kBottomBar), dock}, {button}), 20) << name;
    }
}

TEST(DockProcess, IsTheDockProgramWhileThatHides) {
    X11Window dock = panel(2, 20, {{0, 900}, {1920, 140}}, "Plank");
    dock.clickable = {{800, 1039}, {300, 1}};
    EXPECT_EQ(dockProcess({dock, panel(1, 10, kBottomBar)}, {}), 20);
}

TEST(DockProcess, IsElseThePanelWithTheButtonsOfTasks) {
    const auto tray = panel(1, 10, {{0, 0}, {1920, 40}}, "Trayer"), tasks = panel(2, 20, kBottomBar, "Tint2");
    const X11Window button = withButtonAt({{140, 1050}, {200, 30}});
    EXPECT_EQ(dockProcess({tray, tasks}, {button}), 20);
    EXPECT_EQ(dockProcess({tasks, tray}, {button}), 20);
}

TEST(DockProcess, IsTheLargestPanelWhereNoneSaysThatItHasTasks) {
    const auto tray = panel(1, 10, {{1800, 0}, {120, 40}}, "Trayer"), bar = panel(2, 20, kBottomBar, "Lxqt-panel");
    EXPECT_EQ(dockProcess({tray, bar}, {}), 20);
    const X11Window elsewhere = withButtonAt({{500, 500}, {200, 30}});
    EXPECT_EQ(dockProcess({tray, bar}, {elsewhere}), 20) << "what a panel has left that has gone";
}

}  // namespace
}  // namespace tarvix
