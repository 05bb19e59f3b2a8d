#include "ax/AppCatalog.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarvix {

namespace {

using enum SpecialAXAttribute;

// clang-format off
constexpr auto kApps = std::to_array<AppDetail>({
    {"Arc", "company.thebrowser.Browser", enhancedUserInterface},
    {"Brave Browser", "com.brave.Browser", enhancedUserInterface},
    {"Firefox", "org.mozilla.firefox", enhancedUserInterface},
    {"Firefox Developer Edition", "org.mozilla.firefoxdeveloperedition", enhancedUserInterface},
    {"Google Chrome", "com.google.Chrome", enhancedUserInterface},
    {"LibreWolf", "org.mozilla.librewolf", enhancedUserInterface},
    {"Microsoft Edge", "com.microsoft.edgemac", enhancedUserInterface},
    {"Shift", "com.rdbrck.shift", enhancedUserInterface},
    {"Thunderbird", "org.mozilla.thunderbird", enhancedUserInterface},
    {"Visual Studio Code", "com.microsoft.VSCode", enhancedUserInterface},
    {"Visual Studio Code - Insiders", "com.microsoft.VSCodeInsiders", enhancedUserInterface},
    {"Vivaldi", "com.vivaldi.Vivaldi", enhancedUserInterface},
    {"Zotero", "org.zotero.zotero", enhancedUserInterface},
    {"Zotero", "org.zotero.zotero-beta", enhancedUserInterface},
    {"Zotero", "org.zotero.zotero-dev", enhancedUserInterface},
    {"Zotero", "org.zotero.zotero-source", enhancedUserInterface},
    {"Spotify", "com.spotify.client", both},
    {"1Password", "com.1password.1password", manual},
    {"Anytype", "com.anytype.anytype", manual},
    {"Asana", "com.electron.asana", manual},
    {"Basecamp 3", "com.basecamp.basecamp3", manual},
    {"Bitwarden", "com.bitwarden.desktop", manual},
    {"Canva", "com.canva.CanvaDesktop", manual},
    {"ClickUp", "com.clickup.desktop-app", manual},
    {"Cron", "com.cron.electron", manual},
    {"Discord", "com.hnc.Discord", manual},
    {"Discord Canary", "com.hnc.DiscordCanary", manual},
    {"Discord PTB", "com.hnc.DiscordPTB", manual},
    {"Element", "im.riot.app", manual},
    {"Ferdium", "org.ferdium.ferdium-app", manual},
    {"Figma", "com.figma.Desktop", manual},
    {"Figma Beta", "com.figma.DesktopBeta.dua", manual},
    {"GitHub Desktop", "com.github.GitHubClient", manual},
    {"Height", "app.height", manual},
    {"Hepta", "app.projectmeta.projectmeta", manual},
    {"HEY", "com.hey.app.desktop", manual},
    {"Heynote", "com.heynote.app", manual},
    {"Insomnia", "com.insomnia.app", manual},
    {"Lens", "com.electron.kontena-lens", manual},
    {"Linear", "com.linear", manual},
    {"Local", "com.getflywheel.lightning.local", manual},
    {"Logseq", "com.electron.logseq", manual},
    {"Mailspring", "com.mailspring.mailspring", manual},
    {"Mattermost", "Mattermost.Desktop", manual},
    {"Microsoft Teams", "com.microsoft.teams", manual},
    {"Nota", "md.nota.macos", manual},
    {"Notion", "notion.id", manual},
    {"Notion Enhanced", "com.github.notion-repackaged", manual},
    {"Obsidian", "md.obsidian", manual},
    {"port", "dev.hmiller.port", manual},
    {"Postman", "com.postmanlabs.mac", manual},
    {"Raindrop", "io.raindrop.macapp", manual},
    {"Rambox", "com.rambox", manual},
    {"Reflect", "app.reflect.ReflectDesktop", manual},
    {"RemNote", "io.remnote", manual},
    {"Roam Research", "com.roam-research.desktop-app", manual},
    {"Signal", "org.whispersystems.signal-desktop", manual},
    {"Skype", "com.skype.skype", manual},
    {"Slack", "com.tinyspeck.slackmacgap", manual},
    {"Spark Desktop", "com.readdle.SparkDesktop", manual},
    {"Spark Desktop", "com.readdle.SparkDesktop-setapp", manual},
    {"Sunsama", "com.sunsama.native-app", manual},
    {"Superhuman", "com.superhuman.electron", manual},
    {"Tangent", "com.SuchnSuch.Tangent", manual},
    {"Todoist", "com.todoist.mac.Todoist", manual},
    {"Unity Hub", "com.unity3d.unityhub", manual},
    {"UpNote", "com.getupnote.desktop", manual},
    {"Vimcal", "com.vimcal.app", manual},
    {"WebCatalog", "com.webcatalog.jordan", manual},
    {"WhatsApp", "WhatsApp", manual},
    {"WhatsApp", "desktop.WhatsApp", manual},
    {"Yac", "com.yac.chat", manual},
});
// clang-format on

constexpr bool everyIdentifierOnce() {
    for (std::size_t i = 0; i < kApps.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (kApps[i].bundleIdentifier == kApps[j].bundleIdentifier) return false;
    return true;
}
static_assert(everyIdentifierOnce());

}  // namespace

const AppCatalog& AppCatalog::shared() {
    static const AppCatalog catalog{{kApps.begin(), kApps.end()}};
    return catalog;
}

std::optional<AppDetail> AppCatalog::detail(const std::optional<std::string>& bundleIdentifier) const {
    const auto row =
        std::ranges::find_if(apps, [&](const AppDetail& each) { return each.bundleIdentifier == bundleIdentifier; });
    return row == apps.end() ? std::nullopt : std::optional(*row);
}

}  // namespace tarvix
