// The objects of the program: when they are there, and in which order they come to life.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/AppCore.h"
#include "core/TarvixApp.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Value = UserDefaults::Value;

class AppCoreTest : public testing::Test {
protected:
    SimulatedDesktop desk;
    AppCore core{desk.platform()};
};

TEST_F(AppCoreTest, BeforeTheStartThereIsNothing) {
    EXPECT_FALSE(core.isStarted());
    EXPECT_FALSE(core.isRunning());
    EXPECT_THAT(desk.journal(), IsEmpty());
    EXPECT_FALSE(desk.statusBar.hasItem());
    EXPECT_FALSE(desk.panels.hasInput());
    EXPECT_FALSE(desk.eventTaps.isTapped());
}

TEST_F(AppCoreTest, TheStartHidesTheProgramLast) {
    core.start();
    EXPECT_THAT(desk.journal(), ElementsAre("updater started", "status item shown", "hidden"));
    EXPECT_TRUE(core.isRunning());
}

TEST_F(AppCoreTest, WhatIsThereStaysAtTheNextStart) {
    core.start();
    const void* const objects[] = {&core.updaterController(),      &core.statusBarController(), &core.axEngine(),
                                   &core.displayEngine(),          &core.tarvixEngine(),        &core.theInput(),
                                   &core.localMonitorController(), &core.eventTapController()};
    core.start();
    EXPECT_THAT(objects, ElementsAre(&core.updaterController(), &core.statusBarController(), &core.axEngine(),
                                     &core.displayEngine(), &core.tarvixEngine(), &core.theInput(),
                                     &core.localMonitorController(), &core.eventTapController()));
    EXPECT_THAT(desk.journal(), ElementsAre("updater started", "status item shown", "hidden", "hidden"));
}

TEST_F(AppCoreTest, AnyOneOfTheThreeThatIsOffMakesTheProgramNotRunning) {
    core.start();
    core.eventTapController().enable(false);
    EXPECT_FALSE(core.isRunning());
    core.start();
    core.localMonitorController().removeLocalMonitor();
    EXPECT_FALSE(core.isRunning());
    core.start();
    core.keyboardShortcuts().setEnabled(false);
    EXPECT_FALSE(core.isRunning());
    core.start();
    EXPECT_TRUE(core.isRunning());
}

TEST_F(AppCoreTest, TheShortcutIsHadAgainAfterASuspension) {
    core.start();
    const auto registered = desk.hotKeys.registered();
    core.suspend();
    EXPECT_THAT(desk.hotKeys.registered(), IsEmpty());
    core.start();
    EXPECT_EQ(desk.hotKeys.registered().size(), registered.size());
}

using AppCoreDeathTest = AppCoreTest;

TEST_F(AppCoreDeathTest, AUseBeforeTheStartEndsTheProcess) {
    EXPECT_DEATH(core.tarvixEngine(), "big issue: tarvixEngine is used before the start");
    EXPECT_DEATH(core.theInput(), "big issue: theInput is used before the start");
    EXPECT_DEATH(core.axEngine(), "big issue: axEngine is used before the start");
    EXPECT_DEATH(core.displayEngine(), "big issue: displayEngine is used before the start");
    EXPECT_DEATH(core.toggleTheInput(), "is used before the start");
}

TEST_F(AppCoreDeathTest, ASuspensionWithoutAnEventTapEndsTheProcess) {
    EXPECT_DEATH(core.suspend(), "big issue: .* before there is an event tap to disable");
}

// --- The program as a whole

TEST(TarvixApp, CarriesTheEntryAtLoginOverBeforeThereIsAnythingElse) {
    SimulatedDesktop desk;
    const std::string helper = desk.workspace.ownBundleIdentifier() + "-LaunchAtLoginHelper";
    desk.loginItems.helpers.insert(helper);
    TarvixApp app(desk.platform());
    EXPECT_THAT(desk.journal(), ElementsAre("enabled login item", "removed helper " + helper));
    EXPECT_TRUE(app.launchAtLogin().isEnabled());
    EXPECT_EQ(desk.userDefaults.get("LaunchAtLogin__hasMigrated"), Value(true));
    EXPECT_FALSE(app.core().isStarted());
}

TEST(TarvixApp, TheEntryIsCarriedOverOnce) {
    SimulatedDesktop desk;
    { const TarvixApp first(desk.platform()); }
    desk.clearJournal();
    const TarvixApp second(desk.platform());
    EXPECT_THAT(desk.journal(), IsEmpty());
}

}  // namespace
}  // namespace tarvix
