// The status item and its menu.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "shell/StatusBarController.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

constexpr const char* kNobody = "\U0001F605\uFE0F";
constexpr std::size_t kReport = 2, kVersion = 4, kUpdates = 5;

class StatusBarControllerTest : public testing::Test {
protected:
    SimulatedStatusItem& item() const { return desk.statusBar.item(); }
    const Menu& openMenu() { return item().openMenu(); }
    // The user chooses the entry at an index.
    void choose(std::size_t index) { openMenu().at(index).action(); }
    void report(std::size_t way) { openMenu().at(kReport).submenu.at(way).action(); }
    Texts effects(Topic topic) const { return desk.journal({topic}); }

    SimulatedDesktop desk;
    UpdaterController updater{desk.updater};
    Deployment deployment{"1.2.3", "https://example.org/tracker", "help@example.org"};
    StatusBarController controller{desk.platform(), updater, [this] { desk.application.showSettingsWindow(); },
                                   deployment};
};

Texts titles(const Menu& menu) {
    Texts all;
    for (const MenuItem& entry : menu) all.push_back(entry.title);
    return all;
}

// --- The item

TEST_F(StatusBarControllerTest, TheItemSaysWhatItIs) {
    const StatusButton& button = item().button();
    EXPECT_EQ(button.symbol, "wind");
    EXPECT_EQ(button.imageDescription, "Tarvix");
    EXPECT_EQ(button.accessibilityLabel, "Tarvix status bar status item icon");
    EXPECT_EQ(button.accessibilityTitle, "Tarvix");
    EXPECT_EQ(button.accessibilityHelp, "access Ts' Settings here");
}

TEST_F(StatusBarControllerTest, TheItemShowsAndStaysUnlessTheSettingsSayOtherwise) {
    EXPECT_TRUE(item().isVisible());
    EXPECT_EQ(item().behavior(), StatusItemBehavior::none);
}

TEST_F(StatusBarControllerTest, ASettingThatIsChangedByAnyoneAppliesAtOnce) {
    desk.userDefaults.set("hideMenuBarIcon", true);
    EXPECT_FALSE(item().isVisible());
    desk.userDefaults.setFromOutside("hideMenuBarIcon", false);
    EXPECT_TRUE(item().isVisible());
    desk.userDefaults.setFromOutside("allowTemporaryHidingOfMenuBarIcon", true);
    EXPECT_EQ(item().behavior(), StatusItemBehavior::removalAllowed);
    desk.userDefaults.remove("allowTemporaryHidingOfMenuBarIcon");
    EXPECT_EQ(item().behavior(), StatusItemBehavior::none);
}

TEST_F(StatusBarControllerTest, AnItemThatWasTakenAwayStaysAwayWhileOtherSettingsChange) {
    desk.userDefaults.set("allowTemporaryHidingOfMenuBarIcon", true);
    item().takeAway();
    desk.userDefaults.set("targetsColor", "custom");
    desk.userDefaults.setFromOutside("inputTextSize", 20.0);
    EXPECT_FALSE(item().isVisible());
    EXPECT_EQ(desk.userDefaults.get("hideMenuBarIcon"), std::nullopt) << "nothing stores that it was taken away";
    controller.updateStatusItem();
    EXPECT_TRUE(item().isVisible());
}

TEST(StatusBarControllerAtTheStart, TheItemIsBackThoughItWasTakenAwayBefore) {
    SimulatedDesktop desk;
    desk.userDefaults.set("allowTemporaryHidingOfMenuBarIcon", true);
    UpdaterController updater(desk.updater);
    {
        const StatusBarController first(desk.platform(), updater, nullptr);
        desk.statusBar.item().takeAway();
    }
    const StatusBarController second(desk.platform(), updater, nullptr);
    EXPECT_TRUE(desk.statusBar.item().isVisible());
    EXPECT_EQ(desk.statusBar.item().behavior(), StatusItemBehavior::removalAllowed);
}

TEST(StatusBarControllerAtTheStart, AHiddenItemIsNeverShown) {
    SimulatedDesktop desk;
    desk.userDefaults.set("hideMenuBarIcon", true);
    UpdaterController updater(desk.updater);
    const StatusBarController controller(desk.platform(), updater, nullptr);
    EXPECT_FALSE(desk.statusBar.item().isVisible());
    EXPECT_THAT(desk.journal({Topic::statusItem}), IsEmpty());
}

// --- The menu

TEST_F(StatusBarControllerTest, TheMenuHasTheseEntriesBeforeItIsOpened) {
    const Menu& menu = item().menu();
    EXPECT_THAT(titles(menu), ElementsAre("Settings...", "", "Not working on \"\U0001F605\uFE0F\"?", "", "Tarvix 1.2.3",
                                          "Check for Updates...", "", "Quit"));
    Texts keys;
    for (const MenuItem& entry : menu) keys.push_back(entry.keyEquivalent);
    EXPECT_THAT(keys, ElementsAre(",", "", "", "", "", "u", "", "q"));
    for (const MenuItem& entry : menu) EXPECT_EQ(entry.keyEquivalentModifierMask, eventFlag::command);
    std::vector<bool> haveActions;
    for (const MenuItem& entry : menu) haveActions.push_back(entry.action != nullptr);
    EXPECT_THAT(haveActions, ElementsAre(true, false, false, false, false, true, false, true));
}

TEST_F(StatusBarControllerTest, BeforeTheFirstOpeningTheReportsHaveNeitherTitleNorAction) {
    const Menu& submenu = item().menu().at(kReport).submenu;
    EXPECT_THAT(titles(submenu), ElementsAre(kNobody, kNobody));
    for (const MenuItem& entry : submenu) EXPECT_FALSE(entry.action);
}

TEST_F(StatusBarControllerTest, EachOpeningNamesTheApplicationThatIsFrontmostThen) {
    desk.launch("Mail");
    EXPECT_EQ(openMenu().at(kReport).title, "Not working on \"Mail\"?");
    desk.launch("Text Editor");
    EXPECT_EQ(openMenu().at(kReport).title, "Not working on \"Text Editor\"?");
    EXPECT_THAT(titles(openMenu().at(kReport).submenu), ElementsAre("Drop an issue on GitHub", "Report by email"));
}

TEST_F(StatusBarControllerTest, WithoutAFrontmostApplicationTheEntryStaysAsItWas) {
    EXPECT_THAT(titles(openMenu().at(kReport).submenu), ElementsAre(kNobody, kNobody));
    desk.launch("Mail");
    openMenu();
    desk.activate(std::nullopt);
    EXPECT_EQ(openMenu().at(kReport).title, "Not working on \"Mail\"?");
    desk.workspace.launch({4711, std::nullopt, ""});
    desk.activate(4711);
    EXPECT_EQ(openMenu().at(kReport).title, "Not working on \"Mail\"?") << "nobody knows its name";
}

TEST_F(StatusBarControllerTest, AMenuThatHasLostItsEntriesIsLeftAlone) {
    desk.launch("Mail");
    Menu menu = {{.title = "one"}, {.title = "two"}};
    item().update(menu);
    EXPECT_THAT(titles(menu), ElementsAre("one", "two"));
}

TEST_F(StatusBarControllerTest, TheEntriesDoWhatTheySay) {
    choose(0);
    EXPECT_THAT(effects(Topic::settings), ElementsAre("settings shown"));
    desk.clearJournal();
    choose(kUpdates);
    EXPECT_THAT(effects(Topic::updates), ElementsAre("checked for updates"));
    choose(7);
    EXPECT_THAT(effects(Topic::application), ElementsAre("terminated"));
}

TEST_F(StatusBarControllerTest, TheCheckForUpdatesIsDisabledAtAnOpeningWhileThereCanBeNone) {
    desk.updater.setCanCheck(false);
    EXPECT_FALSE(openMenu().at(kUpdates).action);
    desk.updater.setCanCheck(true);
    EXPECT_TRUE(openMenu().at(kUpdates).action);
}

TEST(StatusBarControllerAtTheStart, WithoutAFeedTheCheckForUpdatesIsDisabled) {
    SimulatedDesktop desk;
    desk.updater.setCanCheck(false);
    UpdaterController updater(desk.updater);
    const StatusBarController controller(desk.platform(), updater, nullptr);
    EXPECT_FALSE(desk.statusBar.item().menu().at(kUpdates).action);
    EXPECT_EQ(desk.statusBar.item().menu().at(kUpdates).title, "Check for Updates...");
}

TEST(StatusBarControllerAtTheStart, AnUnknownVersionIsASign) {
    SimulatedDesktop desk;
    UpdaterController updater(desk.updater);
    const StatusBarController controller(desk.platform(), updater, nullptr,
                                         {"", "https://example.org", "a@example.org"});
    EXPECT_EQ(desk.statusBar.item().menu().at(kVersion).title, "Tarvix \u26A0\uFE0F");
}

// --- The reports

TEST_F(StatusBarControllerTest, AReportNamesTheApplication) {
    desk.launch("Mail");
    report(0);
    report(1);
    EXPECT_THAT(effects(Topic::application),
                ElementsAre("opened https://example.org/tracker/issues/new?title=not+working+on+Mail",
                            "opened mailto:help@example.org?subject=not%20working%20on%20Mail"));
}

TEST_F(StatusBarControllerTest, ABlankInTheNameIsEncodedAndAnAmpersandCutsTheQuery) {
    desk.launch("Q & A");
    report(0);
    EXPECT_THAT(effects(Topic::application),
                ElementsAre("opened https://example.org/tracker/issues/new?title=not+working+on+Q%20&%20A"));
}

TEST_F(StatusBarControllerTest, TheReportIsAboutTheApplicationThatIsFrontmostWhenItIsChosen) {
    desk.launch("Mail");
    const Menu menu = openMenu();
    desk.launch("Notes");
    menu.at(kReport).submenu.at(1).action();
    EXPECT_THAT(effects(Topic::application),
                ElementsAre("opened mailto:help@example.org?subject=not%20working%20on%20Notes"));
}

TEST_F(StatusBarControllerTest, WithoutAFrontmostApplicationOrAUsableNameTheReportNamesNone) {
    desk.launch("Mail");
    const Menu menu = openMenu();
    const auto reportBoth = [&] {
        desk.clearJournal();
        for (const MenuItem& way : menu.at(kReport).submenu) way.action();
        return effects(Topic::application);
    };
    const auto namesNone = ElementsAre(
        "opened https://example.org/tracker/issues/new",
        "opened "
        "mailto:help@example.org?subject=not%20working%20on%20some%20app%20we%20can't%20even%20determine%20:(%20sad");
    desk.activate(std::nullopt);
    EXPECT_THAT(reportBoth(), namesNone);
    desk.launch("not UTF-8: \xFF");
    EXPECT_THAT(reportBoth(), namesNone);
    desk.launch("with a bell \x07");
    EXPECT_THAT(reportBoth(), namesNone);
}

TEST(Deployment, HasAddressesAndAVersion) {
    const Deployment ours = Deployment::ofThisBuild();
    EXPECT_FALSE(ours.version.empty());
    SimulatedDesktop desk;
    desk.launch("Mail");
    UpdaterController updater(desk.updater);
    const StatusBarController controller(desk.platform(), updater, nullptr);
    const Menu& menu = desk.statusBar.item().openMenu();
    EXPECT_EQ(menu.at(kVersion).title, "Tarvix " + ours.version);
    for (const MenuItem& way : menu.at(kReport).submenu) way.action();
    EXPECT_THAT(desk.journal({Topic::application}),
                ElementsAre("opened " + ours.issueTracker + "/issues/new?title=not+working+on+Mail",
                            "opened mailto:" + ours.supportAddress + "?subject=not%20working%20on%20Mail"));
}

TEST(StatusBarControllerDeathTest, ABuildWithABrokenAddressEndsTheProcessWhenItIsTheLastResort) {
    SimulatedDesktop desk;
    desk.launch("Mail");
    UpdaterController updater(desk.updater);
    const StatusBarController controller(desk.platform(), updater, nullptr, {"1", "not an address", "a@example.org"});
    const Menu& menu = desk.statusBar.item().openMenu();
    EXPECT_DEATH(menu.at(kReport).submenu.at(0).action(), "big issue: this build's address for reports is none");
}

}  // namespace
}  // namespace tarvix
