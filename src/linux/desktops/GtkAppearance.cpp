#include "linux/desktops/GtkAppearance.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <sstream>
#include <vector>

#include "linux/desktops/ColorText.h"
#include "linux/desktops/IniText.h"
#include "linux/desktops/KeyNames.h"
#include "linux/desktops/TextSources.h"

namespace tarvix {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr int kMostNames = 8;  // that stand for one another

// With the ends of lines, which may stand anywhere in a sheet.
std::string_view stripped(std::string_view text) {
    const auto begin = text.find_first_not_of(kBlanks);
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

// What a sheet says after "@define-color" and the name; the last one where it says so more than once.
std::string_view definitionOf(std::string_view name, std::string_view sheet) {
    constexpr std::string_view define = "@define-color";
    std::string_view definition;
    for (auto at = sheet.find(define); at != std::string_view::npos; at = sheet.find(define, at + 1)) {
        std::string_view rest = sheet.substr(at + define.size());
        rest = stripped(rest.substr(0, rest.find(';')));
        const auto blank = rest.find_first_of(kBlanks);
        if (rest.substr(0, blank) == name && blank != std::string_view::npos) definition = stripped(rest.substr(blank));
    }
    return definition;
}

std::optional<Color> namedColor(std::string_view name, std::string_view sheet) {
    constexpr std::string_view mix = "rgb(";
    for (int names = 0; names < kMostNames; ++names) {
        std::string_view value = definitionOf(name, sheet);
        if (value.starts_with('@')) {
            name = value.substr(1);
            continue;
        }
        if (value.starts_with(mix) && value.ends_with(')'))
            value = value.substr(mix.size(), value.size() - mix.size() - 1);
        return colorOfText(value);
    }
    return std::nullopt;
}

// "dark" as a word of its own: "Adwaita-dark", "Yaru-Dark-blue".
bool isDarkName(std::string_view theme) {
    const auto isLetter = [](char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; };
    std::string word;
    for (const char c : std::string(theme) + '-') {
        if (isLetter(c)) {
            word += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        } else {
            if (word == "dark") return true;
            word.clear();
        }
    }
    return false;
}

std::optional<bool> truth(std::string_view text) {
    if (text == "1" || text == "true") return true;
    if (text == "0" || text == "false") return false;
    return std::nullopt;
}

std::vector<std::string> themeFolders() {
    const auto variable = [](const char* name, const std::string& otherwise) {
        const char* value = std::getenv(name);
        return value && *value ? std::string(value) : otherwise;
    };
    const std::string home = variable("HOME", "");
    std::vector<std::string> folders{variable("XDG_DATA_HOME", home + "/.local/share") + "/themes", home + "/.themes"};
    std::istringstream shared(variable("XDG_DATA_DIRS", "/usr/local/share:/usr/share"));
    for (std::string folder; std::getline(shared, folder, ':');) folders.push_back(folder + "/themes");
    return folders;
}

// "url("gtk-contained.css")" of each line that includes another file; those of a library have a scheme in front.
std::string includedSheets(std::string_view sheet, const std::string& folder) {
    constexpr std::string_view import = "@import";
    std::string texts;
    for (std::string_view line : linesOf(sheet)) {
        line = trimmed(line);
        if (!line.starts_with(import)) continue;
        const auto begin = line.find_first_of("\"'");
        const auto end = line.find_last_of("\"'");
        if (begin == std::string_view::npos || end == begin) continue;
        const std::string_view name = line.substr(begin + 1, end - begin - 1);
        if (name.find("..") != std::string_view::npos || name.find(':') != std::string_view::npos) continue;
        texts += textOfFile(folder + std::string(name)).value_or("");
    }
    return texts;
}

}  // namespace

GtkChoice gtkChoice(std::string_view settingsIni) {
    GtkChoice choice;
    if (const auto theme = iniValue(settingsIni, "Settings", "gtk-theme-name"); theme && !theme->empty())
        choice.theme = std::string(*theme);
    if (const auto dark = iniValue(settingsIni, "Settings", "gtk-application-prefer-dark-theme"))
        choice.prefersDark = truth(*dark);
    return choice;
}

AppearanceTold gtkAppearance(const GtkChoice& choice, const GtkThemeSheet& sheet) {
    AppearanceTold told;
    if (!choice.theme && !choice.prefersDark) return told;
    const bool prefersDark = choice.prefersDark.value_or(false);
    told.isDark = prefersDark || (choice.theme && isDarkName(*choice.theme));
    if (!choice.theme) return told;
    const std::string text = sheet(*choice.theme, prefersDark);
    if (const auto ground = namedColor("theme_bg_color", text)) told.isDark = isDarkGround(*ground);
    told.selection = namedColor("theme_selected_bg_color", text);
    told.accent = namedColor("accent_bg_color", text);
    if (!told.accent) told.accent = told.selection;
    return told;
}

std::string installedGtkThemeSheet(const std::string& theme, bool isDark) {
    if (theme.find('/') != std::string::npos || theme.starts_with('.')) return {};
    std::vector<std::string> names{"gtk.css"};
    if (isDark) names.insert(names.begin(), "gtk-dark.css");
    for (const std::string& themes : themeFolders())
        for (const std::string& name : names) {
            const std::string folder = themes + "/" + theme + "/gtk-3.0/";
            if (const auto text = textOfFile(folder + name)) return includedSheets(*text, folder) + *text;
        }
    return {};
}

}  // namespace tarvix
