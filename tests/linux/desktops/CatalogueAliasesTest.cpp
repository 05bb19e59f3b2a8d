#include <gtest/gtest.h>

#include <string>

#include "ax/AppCatalog.h"
#include "linux/desktops/CatalogueAliases.h"

namespace tarvix {
namespace {

struct Known {
    std::string_view id, windowClass;
    std::optional<std::string_view> identifier;
};

// Ids and classes as packages install them: Debian's, the vendors', Flathub's and the Snap store's.
TEST(CatalogueAliases, ApplicationsAreFoundHoweverTheyWereInstalled) {
    const Known known[] = {
        {"firefox-esr", "firefox-esr", "org.mozilla.firefox"},
        {"firefox", "firefox", "org.mozilla.firefox"},
        {"org.mozilla.firefox", "firefox", "org.mozilla.firefox"},
        {"firefox_firefox", "firefox", "org.mozilla.firefox"},
        {"firefox-developer-edition", "firefox-aurora", "org.mozilla.firefoxdeveloperedition"},
        {"thunderbird", "thunderbird", "org.mozilla.thunderbird"},
        {"org.mozilla.Thunderbird", "thunderbird", "org.mozilla.thunderbird"},
        {"io.gitlab.librewolf-community", "librewolf", "org.mozilla.librewolf"},
        {"google-chrome", "Google-chrome", "com.google.Chrome"},
        {"com.google.Chrome", "google-chrome", "com.google.Chrome"},
        {"brave-browser", "Brave-browser", "com.brave.Browser"},
        {"microsoft-edge", "Microsoft-edge", "com.microsoft.edgemac"},
        {"vivaldi-stable", "Vivaldi-stable", "com.vivaldi.Vivaldi"},
        {"code", "Code", "com.microsoft.VSCode"},
        {"com.visualstudio.code", "Code", "com.microsoft.VSCode"},
        {"code_code", "Code", "com.microsoft.VSCode"},
        {"code-insiders", "Code - Insiders", "com.microsoft.VSCodeInsiders"},
        {"zotero", "Zotero", "org.zotero.zotero"},
        {"spotify_spotify", "Spotify", "com.spotify.client"},
        {"com.slack.Slack", "Slack", "com.tinyspeck.slackmacgap"},
        {"discord", "discord", "com.hnc.Discord"},
        {"signal-desktop", "Signal", "org.whispersystems.signal-desktop"},
        {"org.signal.Signal", "Signal", "org.whispersystems.signal-desktop"},
        {"md.obsidian.Obsidian", "obsidian", "md.obsidian"},
        {"element-desktop", "Element", "im.riot.app"},
        {"com.bitwarden.desktop", "Bitwarden", "com.bitwarden.desktop"},
        {"1password", "1Password", "com.1password.1password"},
        {"com.github.IsmaelMartinez.teams_for_linux", "teams-for-linux", "com.microsoft.teams"},
        {"appimagekit_0123456789abcdef-Logseq", "Logseq", "com.electron.logseq"},
        {"my-own-launcher-of-code", "Code", "com.microsoft.VSCode"},
        {"chromium", "Chromium", std::nullopt},
        {"chromium_chromium", "Chromium", std::nullopt},
        {"org.gnome.Calculator", "gnome-calculator", std::nullopt},
        {"featherpad", "featherpad", std::nullopt},
        {"", "", std::nullopt},
    };
    for (const Known& each : known) {
        EXPECT_EQ(catalogueIdentifier({each.id, each.windowClass}), each.identifier) << each.id;
    }
}

TEST(CatalogueAliases, EachLeadsToARowOfTheCatalogue) {
    for (const CatalogueAlias& alias : kCatalogueAliases) {
        EXPECT_TRUE(AppCatalog::shared().detail(std::string(alias.bundleIdentifier))) << alias.name;
        EXPECT_TRUE(std::ranges::none_of(alias.name, [](char c) { return c >= 'A' && c <= 'Z'; })) << alias.name;
    }
}

TEST(CatalogueAliases, TheFirstNameDecides) {
    EXPECT_EQ(catalogueIdentifier({"slack", "Code"}), "com.tinyspeck.slackmacgap");
    EXPECT_EQ(catalogueIdentifier({"code-oss-like", "Code"}), "com.microsoft.VSCode");
    EXPECT_EQ(catalogueIdentifier({"cod", "codes", "code "}), std::nullopt) << "no part of a name is a name";
}

}  // namespace
}  // namespace tarvix
