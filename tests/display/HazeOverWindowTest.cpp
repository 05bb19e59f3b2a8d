// The dimming of a screen, and the panel's place among the windows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "display/DisplayEngine.h"
#include "display/HazeOverWindow.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class HazeOverWindowTest : public testing::Test {
protected:
    // What showing does to the panel.
    std::vector<std::string> shown() {
        desk.clearJournal();
        displayEngine.resetCaches();
        haze.show();
        return desk.journal({Topic::dimming});
    }

    SimulatedDesktop desk;
    DisplayEngine displayEngine{desk.platform()};
    HazeOverWindow haze{desk.platform(), displayEngine};
};

TEST_F(HazeOverWindowTest, GoesDirectlyBelowTheWindowAndOverItsScreen) {
    const SimulatedWindow window = desk.window("Mail");
    EXPECT_THAT(shown(), ElementsAre("dimming level 0", "dimming alpha 0.2", "dimming at 0,0 1600x1000",
                                     "dimming below window " + std::to_string(window.number)));
}

TEST_F(HazeOverWindowTest, OverTheWholeScreenItIsAtTheLevelOfOurOwnPanels) {
    desk.window("Mail");
    desk.userDefaults.set("hazeOverWindowStyle", "fadeOutWholeScreen");
    EXPECT_EQ(shown().front(), "dimming level 1000");
}

TEST_F(HazeOverWindowTest, AnUnknownStyleReadsAsTheDefaultAndStaysInTheStore) {
    desk.window("Mail");
    desk.userDefaults.set("hazeOverWindowStyle", "fadeOutTheWorld");
    EXPECT_EQ(shown().front(), "dimming level 0");
    EXPECT_EQ(desk.userDefaults.get("hazeOverWindowStyle"), UserDefaults::Value(std::string("fadeOutTheWorld")));
}

TEST_F(HazeOverWindowTest, TheOpacityIsReadAtEachShowing) {
    desk.window("Mail");
    shown();
    desk.userDefaults.set("hazeOverWindowOpacity", 0.75);
    EXPECT_EQ(desk.panels.dimming().alpha(), 0.2);
    shown();
    EXPECT_EQ(desk.panels.dimming().alpha(), 0.75);
}

TEST_F(HazeOverWindowTest, AFullScreenWindowGetsNoDimmingInEitherStyle) {
    desk.window("Mail").set(ax::fullScreen, true);
    EXPECT_THAT(shown(), IsEmpty());
    desk.userDefaults.set("hazeOverWindowStyle", "fadeOutWholeScreen");
    EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(HazeOverWindowTest, NeitherDoesAWindowThatDoesNotTell) {
    desk.window("Mail").set(ax::fullScreen, std::monostate{});
    EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(HazeOverWindowTest, WithoutAFocusedApplicationOrItsIdentifierNothingHappens) {
    const SimulatedWindow window = desk.window("Mail");
    desk.workspace.launch({window.pid, std::nullopt, "Mail"});
    EXPECT_THAT(shown(), IsEmpty());
    desk.workspace.quit(window.pid);
    EXPECT_THAT(shown(), IsEmpty());
    desk.activate(std::nullopt);
    EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(HazeOverWindowTest, WithoutAWindowTheMainScreenIsDimmedInFront) {
    desk.launch("Mail");
    desk.screens.main = PanelRect{{1600, 0}, {800, 600}};
    EXPECT_THAT(shown(),
                ElementsAre("dimming level 0", "dimming alpha 0.2", "dimming at 1600,0 800x600", "dimming in front"));
    desk.screens.main.reset();
    EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(HazeOverWindowTest, AWindowOnNoScreenDimsTheMainOneIfThereIsAny) {
    const SimulatedWindow window = desk.window("Mail");
    displayEngine.mainWindow();
    desk.screens.screens.clear();
    desk.clearJournal();
    haze.show();
    EXPECT_THAT(desk.journal({Topic::dimming}),
                ElementsAre("dimming level 0", "dimming alpha 0.2", "dimming at 0,0 1600x1000",
                            "dimming below window " + std::to_string(window.number)));
    desk.screens.main.reset();
    desk.clearJournal();
    haze.show();
    EXPECT_THAT(desk.journal({Topic::dimming}), IsEmpty());
}

TEST_F(HazeOverWindowTest, AnApplicationWithANonActivatingPanelIsDimmedBelowItsFocusedWindow) {
    const SimulatedWindow panel = desk.window("Launcher", {{300, 300}, {400, 60}}, "com.apple.Spotlight");
    const SimulatedWindow front = desk.window("Mail");
    desk.accessibility.setFocusedApplication(panel.pid);
    EXPECT_EQ(shown().back(), "dimming below window " + std::to_string(panel.number));
}

TEST_F(HazeOverWindowTest, WithoutAFrontmostApplicationItIsBelowTheWindowAllTheSame) {
    const SimulatedWindow window = desk.window("Mail");
    displayEngine.mainWindow();
    desk.workspace.activate(std::nullopt);
    desk.clearJournal();
    haze.show();
    EXPECT_EQ(desk.journal({Topic::dimming}).back(), "dimming below window " + std::to_string(window.number));
}

TEST_F(HazeOverWindowTest, WithAWindowOfOurOwnInFrontItIsBelowTheLastOfOurs) {
    const std::string own = desk.workspace.ownBundleIdentifier();
    SimulatedWindow preferences = desk.window("Preferences", {{100, 100}, {500, 400}}, own);
    desk.windowServer.remove(preferences.number);
    desk.windowServer.add({77, preferences.pid, "tarvix", 25, {{0, 0}, {20, 20}}});
    desk.windowServer.add({78, preferences.pid, "tarvix", 0, {{0, 0}, {500, 400}}});
    desk.windowServer.add({79, preferences.pid + 1, "other", 0, {{0, 0}, {500, 400}}});
    desk.windowServer.add({80, preferences.pid, "tarvix", 0, {{0, 0}, {500, 400}}});
    EXPECT_EQ(shown().back(), "dimming below window 78");
}

TEST_F(HazeOverWindowTest, WithAWindowOfOurOwnInFrontAndNoListItIsNotPlacedInTheStack) {
    desk.window("Preferences", {{100, 100}, {500, 400}}, desk.workspace.ownBundleIdentifier());
    desk.faults.fail("onScreenWindows");
    EXPECT_EQ(shown().back(), "dimming at 0,0 1600x1000");
}

TEST_F(HazeOverWindowTest, ItAppearsAtOnceAndFadesOut) {
    desk.window("Mail");
    shown();
    desk.clearJournal();
    haze.fadeOut();
    EXPECT_THAT(desk.journal({Topic::dimming}), ElementsAre("dimming fades to 0"));
}

}  // namespace
}  // namespace tarvix
