// The program as its user meets it: the first start, the privilege, the status item, addresses from scripts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/TarvixApp.h"
#include "keys/KeyCombinationAdaptor.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

class ProgramLife : public testing::Test {
protected:
    ProgramLife() { desk.window("Mail").button("Archive", {{10, 20}, {60, 20}}).button("Send", {{90, 20}, {80, 20}}); }

    void start() { app.appDelegate().applicationDidFinishLaunching(); }
    void setPrivilege(bool isThere) {
        desk.accessibility.trusted = isThere;
        desk.accessibility.noteTrustChange();
        desk.turnClock(100ms);
        desk.settle();
    }
    void press(Key key, std::uint64_t flags = 0) { desk.press(qwertyKeyCode(key), flags); }
    void pressShortcut() { press(Key::space, eventFlag::shift | eventFlag::command); }
    void open(const std::string& url) { app.appDelegate().openURLs(Texts{url}); }
    bool inputIsShown() const { return desk.panels.hasInput() && desk.panels.input().isVisible(); }
    // The search that everything is for.
    void expectASearchClicksSend() {
        desk.clearJournal();
        pressShortcut();
        desk.settle();
        desk.type("send");
        press(Key::return_);
        EXPECT_THAT(desk.journal({Topic::theInput, Topic::mouse, Topic::key}),
                    ElementsAre("The Input shown", "moved to 130,30", "left down", "left up", "The Input hidden"));
    }

    SimulatedDesktop desk;
    TarvixApp app{desk.platform()};
};

TEST_F(ProgramLife, FromTheFirstStartToTheFirstClick) {
    desk.accessibility.trusted = false;
    start();
    ASSERT_TRUE(desk.panels.splash().isVisible());
    desk.panels.splash().press(SplashAction::grantPrivileges);
    setPrivilege(true);
    EXPECT_FALSE(desk.panels.splash().isVisible());
    EXPECT_TRUE(desk.application.keyWindow) << "the settings are in front";
    desk.application.keyWindow = false;
    EXPECT_FALSE(app.appDelegate().applicationShouldTerminateAfterLastWindowClosed());
    expectASearchClicksSend();
}

TEST_F(ProgramLife, TheSplashPanelIsBackWhenThePrivilegeIsTakenDuringASearch) {
    start();
    pressShortcut();
    desk.type("send");
    setPrivilege(false);
    EXPECT_FALSE(inputIsShown());
    EXPECT_TRUE(desk.panels.splash().isVisible());
    desk.clearJournal();
    pressShortcut();
    press(Key::return_);
    EXPECT_THAT(desk.journal({Topic::key, Topic::mouse}),
                ElementsAre("key 49 reached the application", "key 36 reached the application"));
    EXPECT_TRUE(desk.scroll());
    setPrivilege(true);
    EXPECT_FALSE(desk.panels.splash().isVisible());
    expectASearchClicksSend();
}

TEST_F(ProgramLife, AddressesDoNothingWhileTheSplashPanelStandsForTheFirstTime) {
    desk.accessibility.trusted = false;
    start();
    desk.clearJournal();
    for (const char* command : {"open", "close", "toggle"})
        open("tarvix://" + std::string(command) + "TheInput?with=send");
    desk.settle();
    EXPECT_THAT(desk.journal(), IsEmpty());
    setPrivilege(true);
    EXPECT_FALSE(inputIsShown()) << "nor are they kept for later";
}

// A search would have the keyboard, and nothing that handles its keys.
TEST_F(ProgramLife, AddressesDoNothingWhileTheSplashPanelIsBack) {
    start();
    setPrivilege(false);
    desk.clearJournal();
    open("tarvix://openTheInput?with=send");
    open("tarvix://toggleTheInput?with=send");
    desk.settle();
    EXPECT_THAT(desk.journal(), IsEmpty());
    setPrivilege(true);
    EXPECT_FALSE(inputIsShown()) << "nor are they kept for later";
    open("tarvix://openTheInput");
    EXPECT_TRUE(inputIsShown());
    EXPECT_EQ(app.core().theInput().value(), "");
}

TEST_F(ProgramLife, AnAddressDrivesASearchUpToItsTargets) {
    start();
    open("tarvix://openTheInput?with=send");
    desk.settle();
    ASSERT_EQ(app.core().tarvixEngine().targets().size(), 1u);
    press(Key::return_);
    EXPECT_THAT(desk.journal({Topic::theInput, Topic::mouse}),
                ElementsAre("The Input shown", "moved to 130,30", "left down", "left up", "The Input hidden"));
}

TEST_F(ProgramLife, TheStatusItemLeadsToTheSettingsTheCheckForUpdatesAndTheEnd) {
    start();
    desk.clearJournal();
    const Menu menu = desk.statusBar.item().openMenu();
    EXPECT_EQ(menu.at(2).title, "Not working on \"Mail\"?");
    for (const std::size_t entry : {0U, 5U, 7U}) menu.at(entry).action();
    EXPECT_THAT(desk.journal({Topic::settings, Topic::application, Topic::updates}),
                ElementsAre("settings shown", "activated", "checked for updates", "terminated"));
}

TEST_F(ProgramLife, TheSettingsThatASearchAsksForEndIt) {
    start();
    pressShortcut();
    desk.clearJournal();
    press(Key::comma, eventFlag::command);
    EXPECT_THAT(desk.journal({Topic::settings, Topic::application, Topic::theInput}),
                ElementsAre("settings shown", "activated", "The Input hidden"));
}

TEST_F(ProgramLife, WithTheStatusItemHiddenTheSettingsAreReachedByOpeningTheProgramAgain) {
    desk.userDefaults.set("hideMenuBarIcon", true);
    start();
    EXPECT_FALSE(desk.statusBar.item().isVisible());
    desk.clearJournal();
    app.appDelegate().applicationShouldHandleReopen();
    EXPECT_THAT(desk.journal({Topic::settings}), ElementsAre("settings shown"));
}

}  // namespace
}  // namespace tarvix
