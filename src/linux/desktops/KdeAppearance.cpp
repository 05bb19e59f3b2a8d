#include "linux/desktops/KdeAppearance.h"

#include "linux/desktops/ColorText.h"
#include "linux/desktops/IniText.h"

namespace tarvix {

AppearanceTold kdeAppearance(std::string_view kdeglobals) {
    const auto color = [&](std::string_view group, std::string_view key) {
        const auto value = iniValue(kdeglobals, group, key);
        return value ? colorOfText(*value) : std::nullopt;
    };
    AppearanceTold told;
    if (const auto ground = color("Colors:Window", "BackgroundNormal")) told.isDark = isDarkGround(*ground);
    told.selection = color("Colors:Selection", "BackgroundNormal");
    told.accent = color("General", "AccentColor");
    if (!told.accent) told.accent = color("Colors:View", "DecorationFocus");
    if (!told.accent) told.accent = told.selection;
    return told;
}

}  // namespace tarvix
