#include "linux/desktops/DesktopFiles.h"

#include <glob.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "linux/desktops/GnomeShortcuts.h"
#include "linux/desktops/I3Shortcuts.h"
#include "linux/desktops/KdeShortcuts.h"
#include "linux/desktops/OpenboxShortcuts.h"
#include "linux/desktops/TextSources.h"
#include "linux/desktops/XfceShortcuts.h"

namespace tarvix {

namespace {

constexpr auto kListing = std::chrono::milliseconds(1000);  // takes 5 where nothing is wrong
constexpr std::size_t kMostCustom = 100;
constexpr std::size_t kMostIncluded = 100;

constexpr auto kGnomeSchemas = std::to_array<const char*>({
    "org.gnome.desktop.wm.keybindings",
    "org.gnome.shell.keybindings",
    "org.gnome.mutter.keybindings",
    "org.gnome.settings-daemon.plugins.media-keys",
});

std::string listing(const std::string& schema) {
    return outputOfProgram({"gsettings", "list-recursively", schema}, kListing);
}

DesktopShortcuts readGnome() {
    std::string all;
    for (const char* schema : kGnomeSchemas) all += listing(schema);
    std::vector<std::string> paths = gnomeCustomPaths(all);
    paths.resize(std::min(paths.size(), kMostCustom));
    for (const std::string& path : paths)
        all += listing("org.gnome.settings-daemon.plugins.media-keys.custom-keybinding:" + path);
    return gnomeShortcuts(all);
}

DesktopShortcuts readXfce() {
    const std::string name = "xfce4/xfconf/xfce-perchannel-xml/xfce4-keyboard-shortcuts.xml";
    return xfceShortcuts(userConfiguration(name).value_or(""), systemConfiguration(name).value_or(""));
}

std::string userElseSystem(const std::string& name) {
    if (const auto text = userConfiguration(name)) return *text;
    return systemConfiguration(name).value_or("");
}

DesktopShortcuts readKde() { return kdeShortcuts(userElseSystem("kglobalshortcutsrc")); }

DesktopShortcuts readOpenbox() { return openboxShortcuts(userElseSystem("openbox/rc.xml")); }

std::vector<std::string> filesNamed(const std::string& pattern) {
    std::vector<std::string> texts;
    glob_t found{};
    if (glob(pattern.c_str(), GLOB_TILDE, nullptr, &found) == 0)
        for (std::size_t i = 0; i < found.gl_pathc && i < kMostIncluded; ++i)
            if (auto text = textOfFile(found.gl_pathv[i])) texts.push_back(std::move(*text));
    globfree(&found);
    return texts;
}

DesktopShortcuts readI3() {
    const char* const home = std::getenv("HOME");
    auto text = userConfiguration("i3/config");
    if (!text) text = textOfFile(std::string(home ? home : "") + "/.i3/config");
    if (!text) text = systemConfiguration("i3/config");
    if (!text) text = textOfFile("/etc/i3/config");
    return i3Shortcuts(text.value_or(""), filesNamed);
}

struct Desktop {
    std::string_view desktop, windowManager;
    DesktopShortcuts (*read)();
};
constexpr auto kDesktops = std::to_array<Desktop>({
    {"GNOME", "GNOME Shell", readGnome},
    {"XFCE", "Xfwm4", readXfce},
    {"KDE", "KWin", readKde},
    {"Openbox", "Openbox", readOpenbox},
    {"i3", "i3", readI3},
});

bool isNamed(std::string_view name, std::string_view names) {
    const std::string among = ":" + std::string(names) + ":";
    return among.find(":" + std::string(name) + ":") != std::string::npos;
}

}  // namespace

std::optional<DesktopShortcuts> readDesktopShortcuts(const DesktopNames& names) {
    std::optional<DesktopShortcuts> all;
    for (const Desktop& each : kDesktops) {
        if (!isNamed(each.desktop, names.currentDesktop) && each.windowManager != names.windowManager) continue;
        if (!all) all.emplace();
        const DesktopShortcuts shortcuts = each.read();
        all->insert(all->end(), shortcuts.begin(), shortcuts.end());
    }
    return all;
}

}  // namespace tarvix
