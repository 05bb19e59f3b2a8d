// What becomes of the program as the desktop starts it, gives it its privilege and takes it away.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/AppDelegate.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

class AppDelegateTest : public testing::Test {
protected:
    AppDelegateTest() { mail.button("Send", {{10, 20}, {60, 20}}); }

    void launch(bool isTrusted) {
        desk.accessibility.trusted = isTrusted;
        delegate.applicationDidFinishLaunching();
    }
    void change(bool isTrusted) {
        desk.accessibility.trusted = isTrusted;
        desk.accessibility.noteTrustChange();
    }
    // With the time that it takes to count.
    void changeAndWait(bool isTrusted) {
        change(isTrusted);
        desk.turnClock(100ms);
    }
    void pressShortcut() { desk.press(49, eventFlag::shift | eventFlag::command); }
    // What a person sees of the program itself.
    Texts seen() const {
        return desk.journal({Topic::splash, Topic::settings, Topic::application, Topic::statusItem, Topic::updates});
    }
    bool splashIsShown() const { return desk.panels.hasSplash() && desk.panels.splash().isVisible(); }
    void expectOutOfService() {
        EXPECT_THAT(desk.hotKeys.registered(), IsEmpty());
        EXPECT_FALSE(desk.events.isMonitored());
        EXPECT_FALSE(desk.eventTaps.isTapped() && desk.eventTaps.isEnabled());
    }
    void expectInService() {
        EXPECT_EQ(desk.hotKeys.registered().size(), 1u);
        EXPECT_TRUE(desk.events.isMonitored());
        EXPECT_TRUE(desk.eventTaps.isTapped() && desk.eventTaps.isEnabled());
    }

    SimulatedDesktop desk;
    SimulatedWindow mail = desk.window("Mail");
    AppCore core{desk.platform()};
    AppDelegate delegate{desk.platform(), core};
};

// --- Launch

TEST_F(AppDelegateTest, WithThePrivilegeTheProgramStartsAndHides) {
    launch(true);
    EXPECT_THAT(seen(), ElementsAre("updater started", "status item shown", "hidden"));
    EXPECT_FALSE(desk.panels.hasSplash());
    expectInService();
}

TEST_F(AppDelegateTest, WithoutThePrivilegeTheSplashPanelIsAllThereIs) {
    launch(false);
    EXPECT_THAT(seen(), ElementsAre("splash in front", "activated"));
    EXPECT_EQ(desk.panels.splash().content().title, "To forage through the UI Tarvix needs access!");
    EXPECT_FALSE(core.isStarted());
    EXPECT_FALSE(desk.statusBar.hasItem());
    EXPECT_FALSE(desk.panels.hasInput());
    EXPECT_EQ(desk.userDefaults.get("KeyboardShortcuts_toggleWith"), std::nullopt);
    expectOutOfService();
    pressShortcut();
    EXPECT_THAT(desk.journal({Topic::key}), ElementsAre("key 49 reached the application"));
}

// --- The splash panel's buttons

TEST_F(AppDelegateTest, GrantAsksTheDesktopHoweverOftenAndChangesNothingByItself) {
    launch(false);
    desk.clearJournal();
    desk.panels.splash().press(SplashAction::grantPrivileges);
    desk.panels.splash().press(SplashAction::grantPrivileges);
    EXPECT_THAT(desk.journal({Topic::accessibility}),
                ElementsAre("asked for the accessibility privilege", "asked for the accessibility privilege"));
    EXPECT_THAT(seen(), IsEmpty());
    EXPECT_TRUE(splashIsShown());
    EXPECT_FALSE(core.isStarted());
}

TEST_F(AppDelegateTest, QuitEndsTheProgram) {
    launch(false);
    desk.clearJournal();
    desk.panels.splash().press(SplashAction::quit);
    EXPECT_THAT(seen(), ElementsAre("terminated"));
}

// --- The privilege gained

TEST_F(AppDelegateTest, ATenthOfASecondAfterTheGrantTheSettingsAreInFrontInPlaceOfTheSplashPanel) {
    launch(false);
    desk.clearJournal();
    change(true);
    desk.turnClock(99ms);
    EXPECT_TRUE(splashIsShown());
    EXPECT_FALSE(core.isStarted());
    desk.turnClock(1ms);
    EXPECT_THAT(seen(), ElementsAre("splash hidden", "updater started", "status item shown", "hidden", "settings shown",
                                    "activated"));
    expectInService();
}

TEST_F(AppDelegateTest, WhatCountsIsTheAnswerAfterTheTenthOfASecond) {
    launch(false);
    change(false);
    desk.accessibility.trusted = true;
    desk.turnClock(100ms);
    EXPECT_TRUE(core.isRunning());
}

TEST_F(AppDelegateTest, ASecondNotificationWhileRunningDoesNothing) {
    launch(false);
    change(true);
    desk.turnClock(50ms);
    change(true);
    desk.turnClock(50ms);
    EXPECT_TRUE(core.isRunning());
    desk.clearJournal();
    desk.turnClock(50ms);
    EXPECT_THAT(desk.journal(), IsEmpty());
    EXPECT_EQ(desk.runLoop.timers(), 0u);
    changeAndWait(true);
    EXPECT_THAT(desk.journal(), IsEmpty()) << "in particular no settings";
}

TEST_F(AppDelegateTest, TwoNotificationsAtOnceAreAnsweredOneAfterTheOther) {
    launch(false);
    change(true);
    change(true);
    desk.turnClock(100ms);
    EXPECT_THAT(desk.journal({Topic::settings}), ElementsAre("settings shown"));
    EXPECT_EQ(desk.runLoop.timers(), 0u);
}

// --- The privilege lost

TEST_F(AppDelegateTest, ATenthOfASecondAfterTheLossNoKeyIsInterceptedAndTheSplashPanelIsInFront) {
    launch(true);
    desk.clearJournal();
    change(false);
    desk.turnClock(99ms);
    expectInService();
    desk.turnClock(1ms);
    expectOutOfService();
    EXPECT_THAT(seen(), ElementsAre("splash in front", "activated"));
    EXPECT_TRUE(desk.statusBar.item().isVisible());
    EXPECT_TRUE(core.isStarted());
    EXPECT_FALSE(core.isRunning());
    pressShortcut();
    EXPECT_FALSE(desk.panels.input().isVisible());
    EXPECT_THAT(desk.journal({Topic::key}), ElementsAre("key 49 reached the application"));
}

TEST_F(AppDelegateTest, ASearchThatIsUpEndsWithThePrivilegeAndGivesTheKeyboardBack) {
    launch(true);
    pressShortcut();
    desk.settle();
    desk.type("send");
    ASSERT_TRUE(desk.panels.input().isVisible());
    desk.clearJournal();
    changeAndWait(false);
    EXPECT_FALSE(desk.panels.input().isVisible());
    EXPECT_FALSE(desk.panels.input().isKey());
    EXPECT_THAT(desk.journal({Topic::theInput, Topic::canvas, Topic::splash, Topic::notification}),
                ElementsAre("canvas hidden", "The Input hidden", "posted TarvixInputDidDisappear", "splash in front"));
    desk.type("x");
    EXPECT_THAT(desk.journal({Topic::key}), ElementsAre("key 7 reached the application"));
}

// Nothing could take its Targets off the screen: the shortcut is out of service.
TEST_F(AppDelegateTest, WhatASearchHasReadWhenThePrivilegeGoesIsNotShown) {
    desk.userDefaults.set("dontFlushTheInput", true);
    launch(true);
    pressShortcut();
    desk.type("send");
    ASSERT_TRUE(desk.runLoop.runBackgroundBody());
    changeAndWait(false);
    desk.settle();
    EXPECT_FALSE(core.tarvixEngine().allElements().empty()) << "the reading has come to its end";
    EXPECT_TRUE(core.tarvixEngine().targets().empty());
    EXPECT_FALSE(desk.panels.canvas().isVisible());
}

TEST_F(AppDelegateTest, TheSplashPanelIsMadeOnceAndItsContentAnewEachTime) {
    launch(true);
    changeAndWait(false);
    const SimulatedSplashPanel* first = &desk.panels.splash();
    changeAndWait(true);
    EXPECT_FALSE(splashIsShown());
    changeAndWait(false);
    EXPECT_EQ(&desk.panels.splash(), first);
    EXPECT_TRUE(splashIsShown());
    EXPECT_EQ(desk.panels.splash().contents(), 2u);
}

TEST_F(AppDelegateTest, ANewGrantBringsEverythingBackOnceAndShowsTheSettings) {
    launch(true);
    changeAndWait(false);
    desk.clearJournal();
    changeAndWait(true);
    EXPECT_THAT(seen(), ElementsAre("splash hidden", "hidden", "settings shown", "activated"))
        << "the updater and the status item are there already";
    expectInService();
    pressShortcut();
    EXPECT_TRUE(desk.panels.input().isVisible());
}

TEST_F(AppDelegateTest, ALossThatIsToldTwiceLeavesTheSplashPanelInFront) {
    launch(true);
    changeAndWait(false);
    changeAndWait(false);
    EXPECT_TRUE(splashIsShown());
    expectOutOfService();
}

using AppDelegateDeathTest = AppDelegateTest;

TEST_F(AppDelegateDeathTest, ANotificationAboutAnotherProgramWhileTheSplashPanelWaitsEndsTheProcess) {
    launch(false);
    EXPECT_DEATH(changeAndWait(false), "big issue: the accessibility privilege is lost before there is an event tap");
}

TEST_F(AppDelegateDeathTest, ADesktopWithoutAnEventTapEndsTheProcessAtTheStart) {
    desk.faults.fail("createEventTap");
    EXPECT_DEATH(launch(true), "big issue: can't create event tap");
}

// --- The program opened again, and its last window closed

TEST_F(AppDelegateTest, OpeningTheProgramAgainShowsTheSettings) {
    launch(true);
    desk.clearJournal();
    EXPECT_FALSE(delegate.applicationShouldHandleReopen());
    EXPECT_THAT(seen(), ElementsAre("settings shown", "activated"));
}

TEST_F(AppDelegateTest, OpeningItAgainBeforeTheStartShowsNothing) {
    launch(false);
    desk.clearJournal();
    EXPECT_FALSE(delegate.applicationShouldHandleReopen());
    EXPECT_THAT(seen(), IsEmpty());
}

TEST_F(AppDelegateTest, OpeningItAgainAfterALossOfThePrivilegeShowsTheSettings) {
    launch(true);
    changeAndWait(false);
    desk.clearJournal();
    delegate.applicationShouldHandleReopen();
    EXPECT_THAT(seen(), ElementsAre("settings shown", "activated"));
}

TEST_F(AppDelegateTest, WithTheLastWindowClosedTheProgramHidesAndGoesOn) {
    launch(true);
    delegate.applicationShouldHandleReopen();
    desk.clearJournal();
    desk.application.keyWindow = false;
    EXPECT_FALSE(delegate.applicationShouldTerminateAfterLastWindowClosed());
    EXPECT_THAT(seen(), ElementsAre("hidden"));
    pressShortcut();
    EXPECT_TRUE(desk.panels.input().isVisible());
}

TEST_F(AppDelegateTest, WhileAWindowHasTheKeyboardTheProgramIsNotHidden) {
    launch(true);
    desk.clearJournal();
    desk.application.keyWindow = true;
    EXPECT_FALSE(delegate.applicationShouldTerminateAfterLastWindowClosed());
    EXPECT_THAT(seen(), IsEmpty());
}

TEST_F(AppDelegateTest, WithTheDelegateTheWatchingEnds) {
    {
        AppDelegate another(desk.platform(), core);
        another.applicationDidFinishLaunching();
        desk.accessibility.noteTrustChange();
    }
    desk.clearJournal();
    desk.turnClock(100ms);
    desk.accessibility.noteTrustChange();
    EXPECT_EQ(desk.runLoop.timers(), 0u);
    EXPECT_THAT(desk.journal(), IsEmpty());
}

}  // namespace
}  // namespace tarvix
