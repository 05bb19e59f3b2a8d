// The appearance that GTK programs are given: a theme by its name, and whether its dark variant is wanted.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Appearance.h"

namespace tarvix {

struct GtkChoice {
    std::optional<std::string> theme;
    std::optional<bool> prefersDark;
    friend bool operator==(const GtkChoice&, const GtkChoice&) = default;
};

// From a file settings.ini.
GtkChoice gtkChoice(std::string_view settingsIni);

// The style sheet of a theme, or of its dark variant; empty when there is no such file.
using GtkThemeSheet = std::function<std::string(const std::string& theme, bool isDark)>;

// The named colours of a theme's sheet say what it looks like. Themes that keep theirs inside a library, as the one
// that comes with GTK does, go by their names: "Adwaita-dark".
AppearanceTold gtkAppearance(const GtkChoice& choice, const GtkThemeSheet& sheet);

// The sheet from the folders of the user and of the system, what it includes of the same folder with it; at most a
// megabyte of each.
std::string installedGtkThemeSheet(const std::string& theme, bool isDark);

}  // namespace tarvix
