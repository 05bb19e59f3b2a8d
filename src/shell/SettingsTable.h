// The table of all settings.
#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>
#include <variant>

#include "shell/SettingEnumerations.h"

namespace tarvix {

// What a setting holds: an enumeration by its raw value.
using SettingValue = std::variant<bool, double, std::string_view>;

// Both ends are reachable. A number outside is no mistake, only none that a slider offers.
struct SettingRange {
    double least, most;
};

struct SettingRow {
    std::string_view key;
    SettingValue defaultValue;
    SettingValue example;  // other than the default
    std::string_view meaning;
    std::string_view readBy;
    std::span<const SettingCase> cases = {};  // of an enumeration
    std::optional<SettingRange> range = {};   // of a number
    std::optional<double> paneDefault = {};   // of the view of the control, where it is another
};

namespace settingsTable {
inline constexpr std::span<const SettingCase> flavors = fuzzyMatchingFlavorCases;
inline constexpr std::span<const SettingCase> styles = hazeOverWindowStyleCases;
inline constexpr std::span<const SettingCase> colors = targetsColorCases;
inline constexpr std::span<const SettingCase> presets = inputPresetCases;
inline constexpr std::span<const SettingCase> positions = inputPositionCases;
}  // namespace settingsTable

// Every setting has one row, and the views are held to it when they are compiled. A marker in the `custom` colour has
// the hue 0.5 until the user moves the slider, which stands at 0.28 by then: two defaults, on purpose.
// clang-format off
inline constexpr auto settingRows = std::to_array<SettingRow>({
    {"searchIncludesAppMenus", true, false, "search the application menus", "SearchEngine"},
    {"searchIncludesStatusItems", true, false, "search the status items", "SearchEngine"},
    {"searchIncludesNotifications", true, false, "search the notifications", "SearchEngine"},
    {"searchIncludesDock", false, true, "search the dock", "SearchEngine"},
    {"searchIncludesTrafficLightButtons", false, true, "search a window's close, minimise and zoom buttons",
     "SearchEngine"},
    {"fuzzyMatchingFlavor", "tarvixClassic", "tarvixExtended",
     "how the query is matched: `tarvixClassic` takes any part of a word, `tarvixExtended` the first letters of "
     "consecutive words besides",
     "SearchEngine", settingsTable::flavors},
    {"ignoreSafariTabsAndURLs", false, true, "leave tabs and the address bar out of the search in Safari, which there is no Linux version of",
     "SearchEngine"},
    {"hazeOverWindowStyle", "fadeOutExceptDockMenuBarAndFrontmostApp", "onlyTargets",
     "what is dimmed during a search: nothing, the whole screen, or everything but the window, docks and panels",
     "HazeOverWindow, TarvixEngine", settingsTable::styles},
    {"hazeOverWindowOpacity", 0.2, 0.5, "how dark the dimming is", "HazeOverWindow", {}, SettingRange{0.1, 0.9}},
    {"targetsColor", "findHighlight", "qsFlamboyantFuchsia", "the colour of the markers", "TargetLook",
     settingsTable::colors},
    {"targetsCustomColorHue", 0.5, 0.77, "the hue of the colour `custom`, once around the circle from red to red",
     "TargetLook", {}, SettingRange{0, 1}, 0.28},
    {"inputTextSize", 16.0, 24.0, "the text size of The Input", "TheInput, TheInputMakeup", {}, SettingRange{12, 48}},
    {"inputBackgroundOpacity", 0.9, 1.0, "the opacity of The Input's background", "TheInput, TheInputMakeup", {},
     SettingRange{0, 1}},
    {"inputCornerRadius", 6.0, 12.5, "the corner radius of The Input", "TheInput, TheInputMakeup", {},
     SettingRange{0, 15}},
    {"inputBorderThickness", 2.0, 0.5, "the border thickness of The Input", "TheInput, TheInputMakeup", {},
     SettingRange{0, 10}},
    {"inputPreset", "tarvix", "spotlight", "the look of The Input by name", "TheInputMakeup", settingsTable::presets},
    {"inputPosition", "aboveWindow", "aboveMouse",
     "where The Input appears: where it was left, or above the window, the text field that has the focus, or the pointer",
     "TheInput", settingsTable::positions},
    {"dontFlushTheInput", false, true, "keep the last search, selected, so that typing replaces it", "TheInput"},
    {"hideMenuBarIcon", false, true, "hide the status item", "StatusBarController"},
    {"allowTemporaryHidingOfMenuBarIcon", false, true, "let the status item be dragged away until the next start",
     "StatusBarController"},
    {"preventScrollingWhenTarvixing", false, true, "freeze the wheel during a search, which it otherwise ends",
     "EventTapController"},
    {"allowCopyingOfTextAndMetadata", false, true, "enable the keys that copy", "KeyRouting"},
    {"allowCyclingThroughTargets", false, true, "next after the last Target is the first one", "TarvixEngine"},
    {"repositionMouseAfterClick", false, true, "put the pointer back after a click", "TarvixEngine"},
    {"SUEnableAutomaticChecks", true, false, "look for updates once a day, in a build that has a feed of them", "UpdateMemory"},
});
// clang-format on

// Whether a view's type and default are those of a row.
template <class T>
constexpr bool fits(const SettingRow& row, T defaultValue) {
    if constexpr (SettingEnumeration<T>) {
        return std::ranges::equal(row.cases, casesOf(std::type_identity<T>{}), {}, &SettingCase::rawValue,
                                  &SettingCase::rawValue) &&
               row.defaultValue == SettingValue(rawValue(defaultValue));
    } else if constexpr (std::is_same_v<T, double>) {
        return row.defaultValue == SettingValue(defaultValue) || row.paneDefault == defaultValue;
    } else {
        return row.defaultValue == SettingValue(defaultValue);
    }
}

template <class T>
constexpr bool isInSettingsTable(std::string_view key, T defaultValue) {
    return std::ranges::any_of(settingRows,
                               [&](const SettingRow& row) { return row.key == key && fits(row, defaultValue); });
}

}  // namespace tarvix
