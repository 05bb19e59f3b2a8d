#include "linux/desktops/GnomeShortcuts.h"

#include <cstddef>

#include "linux/desktops/KeyNames.h"

namespace tarvix {

namespace {

// Of the user's own shortcuts one member is the key and the others are a name and a command.
constexpr std::string_view kCustomSchema = ".custom-keybinding";
constexpr std::string_view kCustomKey = "binding";
constexpr std::string_view kCustomList = "custom-keybindings";

// All texts in a value, which stand in single or double quotes, with backslashes before what would end them.
std::vector<std::string> textsIn(std::string_view value) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char quote = value[i];
        if (quote != '\'' && quote != '"') continue;
        std::string text;
        for (++i; i < value.size() && value[i] != quote; ++i) {
            if (value[i] == '\\' && i + 1 < value.size()) ++i;
            text += value[i];
        }
        if (i < value.size()) texts.push_back(std::move(text));
    }
    return texts;
}

struct Setting {
    std::string_view schema, key;
    std::vector<std::string> texts;
};

std::vector<Setting> settingsOf(std::string_view listing) {
    std::vector<Setting> settings;
    for (const std::string_view line : linesOf(listing)) {
        const auto words = wordsOf(line);
        if (words.size() < 3) continue;
        const auto value = static_cast<std::size_t>(words[2].data() - line.data());
        settings.push_back({words[0], words[1], textsIn(line.substr(value))});
    }
    return settings;
}

}  // namespace

DesktopShortcuts gnomeShortcuts(std::string_view listing) {
    DesktopShortcuts shortcuts;
    for (const Setting& setting : settingsOf(listing)) {
        if (setting.schema.ends_with(kCustomSchema) && setting.key != kCustomKey) continue;
        for (const std::string& text : setting.texts)
            if (const auto shortcut = gtkAccelerator(text)) shortcuts.push_back(*shortcut);
    }
    return shortcuts;
}

std::vector<std::string> gnomeCustomPaths(std::string_view listing) {
    std::vector<std::string> paths;
    for (const Setting& setting : settingsOf(listing))
        if (setting.key == kCustomList)
            for (const std::string& path : setting.texts)
                if (path.starts_with('/') && path.ends_with('/')) paths.push_back(path);
    return paths;
}

}  // namespace tarvix
