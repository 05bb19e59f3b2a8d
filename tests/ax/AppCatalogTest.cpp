// The catalogue of applications that need a switch, against the list of those that are known to.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "ax/AppCatalog.h"

namespace tarvix {
namespace {

using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;
using Row = std::pair<std::string_view, std::string_view>;

std::vector<Row> rowsWith(SpecialAXAttribute attribute) {
    std::vector<Row> rows;
    for (const AppDetail& each : AppCatalog::shared().apps)
        if (each.specialAXAttribute == attribute) rows.emplace_back(each.name, each.bundleIdentifier);
    return rows;
}

// clang-format off
const std::vector<Row> kEnhanced = {
    {"Brave Browser", "com.brave.Browser"},
    {"Google Chrome", "com.google.Chrome"},
    {"Visual Studio Code", "com.microsoft.VSCode"},
    {"Visual Studio Code - Insiders", "com.microsoft.VSCodeInsiders"},
    {"Microsoft Edge", "com.microsoft.edgemac"},
    {"Shift", "com.rdbrck.shift"},
    {"Vivaldi", "com.vivaldi.Vivaldi"},
    {"Arc", "company.thebrowser.Browser"},
    {"Firefox", "org.mozilla.firefox"},
    {"Firefox Developer Edition", "org.mozilla.firefoxdeveloperedition"},
    {"LibreWolf", "org.mozilla.librewolf"},
    {"Thunderbird", "org.mozilla.thunderbird"},
    {"Zotero", "org.zotero.zotero"},
    {"Zotero", "org.zotero.zotero-beta"},
    {"Zotero", "org.zotero.zotero-dev"},
    {"Zotero", "org.zotero.zotero-source"}};
const std::vector<Row> kManual = {
    {"Mattermost", "Mattermost.Desktop"},
    {"WhatsApp", "WhatsApp"},
    {"Height", "app.height"},
    {"Hepta", "app.projectmeta.projectmeta"},
    {"Reflect", "app.reflect.ReflectDesktop"},
    {"1Password", "com.1password.1password"},
    {"Tangent", "com.SuchnSuch.Tangent"},
    {"Anytype", "com.anytype.anytype"},
    {"Basecamp 3", "com.basecamp.basecamp3"},
    {"Bitwarden", "com.bitwarden.desktop"},
    {"Canva", "com.canva.CanvaDesktop"},
    {"ClickUp", "com.clickup.desktop-app"},
    {"Cron", "com.cron.electron"},
    {"Asana", "com.electron.asana"},
    {"Lens", "com.electron.kontena-lens"},
    {"Logseq", "com.electron.logseq"},
    {"Figma", "com.figma.Desktop"},
    {"Figma Beta", "com.figma.DesktopBeta.dua"},
    {"Local", "com.getflywheel.lightning.local"},
    {"UpNote", "com.getupnote.desktop"},
    {"GitHub Desktop", "com.github.GitHubClient"},
    {"Notion Enhanced", "com.github.notion-repackaged"},
    {"HEY", "com.hey.app.desktop"},
    {"Heynote", "com.heynote.app"},
    {"Discord", "com.hnc.Discord"},
    {"Discord Canary", "com.hnc.DiscordCanary"},
    {"Discord PTB", "com.hnc.DiscordPTB"},
    {"Insomnia", "com.insomnia.app"},
    {"Linear", "com.linear"},
    {"Mailspring", "com.mailspring.mailspring"},
    {"Microsoft Teams", "com.microsoft.teams"},
    {"Postman", "com.postmanlabs.mac"},
    {"Rambox", "com.rambox"},
    {"Spark Desktop", "com.readdle.SparkDesktop"},
    {"Spark Desktop", "com.readdle.SparkDesktop-setapp"},
    {"Roam Research", "com.roam-research.desktop-app"},
    {"Skype", "com.skype.skype"},
    {"Sunsama", "com.sunsama.native-app"},
    {"Superhuman", "com.superhuman.electron"},
    {"Slack", "com.tinyspeck.slackmacgap"},
    {"Todoist", "com.todoist.mac.Todoist"},
    {"Unity Hub", "com.unity3d.unityhub"},
    {"Vimcal", "com.vimcal.app"},
    {"WebCatalog", "com.webcatalog.jordan"},
    {"Yac", "com.yac.chat"},
    {"WhatsApp", "desktop.WhatsApp"},
    {"port", "dev.hmiller.port"},
    {"Element", "im.riot.app"},
    {"Raindrop", "io.raindrop.macapp"},
    {"RemNote", "io.remnote"},
    {"Nota", "md.nota.macos"},
    {"Obsidian", "md.obsidian"},
    {"Notion", "notion.id"},
    {"Ferdium", "org.ferdium.ferdium-app"},
    {"Signal", "org.whispersystems.signal-desktop"}};
// clang-format on

TEST(AppCatalog, HasSixteenApplicationsThatNeedTheEnhancedInterface) {
    EXPECT_THAT(kEnhanced, SizeIs(16));
    EXPECT_THAT(rowsWith(SpecialAXAttribute::enhancedUserInterface), UnorderedElementsAreArray(kEnhanced));
}

TEST(AppCatalog, HasFiftyFiveApplicationsThatNeedTheManualSwitch) {
    EXPECT_THAT(kManual, SizeIs(55));
    EXPECT_THAT(rowsWith(SpecialAXAttribute::manual), UnorderedElementsAreArray(kManual));
}

TEST(AppCatalog, HasOneApplicationThatNeedsBoth) {
    EXPECT_THAT(rowsWith(SpecialAXAttribute::both), UnorderedElementsAre(Row("Spotify", "com.spotify.client")));
}

TEST(AppCatalog, HasSeventyTwoRowsAndNoIdentifierTwice) {
    std::set<std::string_view> identifiers;
    for (const AppDetail& each : AppCatalog::shared().apps) identifiers.insert(each.bundleIdentifier);
    EXPECT_THAT(AppCatalog::shared().apps, SizeIs(72));
    EXPECT_THAT(identifiers, SizeIs(72));
}

TEST(AppCatalog, FindsEachRowByItsIdentifier) {
    for (const AppDetail& each : AppCatalog::shared().apps)
        EXPECT_EQ(AppCatalog::shared().detail(std::string(each.bundleIdentifier)), each) << each.bundleIdentifier;
}

TEST(AppCatalog, FindsOnlyWhatIsExactlyEqual) {
    for (const char* other : {"", "Org.mozilla.firefox", "org.mozilla.firefox ", "org.mozilla", "firefox", "whatsapp"})
        EXPECT_EQ(AppCatalog::shared().detail(other), std::nullopt) << other;
    EXPECT_EQ(AppCatalog::shared().detail(std::nullopt), std::nullopt);
}

TEST(AppCatalog, KnowsOneMessengerByAnIdentifierThatIsItsName) {
    for (const char* identifier : {"WhatsApp", "desktop.WhatsApp"}) {
        const auto detail = AppCatalog::shared().detail(identifier);
        ASSERT_TRUE(detail) << identifier;
        EXPECT_EQ(detail->name, "WhatsApp");
        EXPECT_EQ(detail->specialAXAttribute, SpecialAXAttribute::manual);
    }
}

TEST(AppCatalog, GivesTheFirstOfTwoRowsWithOneIdentifier) {
    const AppCatalog catalog{{{"First", "org.example", std::nullopt}, {"Second", "org.example", std::nullopt}}};
    EXPECT_EQ(catalog.detail("org.example")->name, "First");
}

TEST(AppCatalog, WithoutRowsFindsNothing) {
    EXPECT_EQ(AppCatalog().detail("org.example"), std::nullopt);
    EXPECT_EQ(AppCatalog().detail(std::nullopt), std::nullopt);
}

TEST(AppCatalog, TheKindsOfSwitchesHaveTheirOrder) {
    EXPECT_EQ(static_cast<int>(SpecialAXAttribute::enhancedUserInterface), 0);
    EXPECT_EQ(static_cast<int>(SpecialAXAttribute::manual), 1);
    EXPECT_EQ(static_cast<int>(SpecialAXAttribute::both), 2);
}

TEST(AppsWithNonActivatingPanel, AreTwo) {
    EXPECT_THAT(AppsWithNonActivatingPanelThatDoesNotHideAutomatically::bundleIdentifiers(),
                UnorderedElementsAre("com.apple.Spotlight", "com.culturedcode.ThingsMac"));
}

}  // namespace
}  // namespace tarvix
