// The enumerations that settings hold. Their order is that of the cases in a picker.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <type_traits>

#include "shell/SettingCases.h"

namespace tarvix {

// How a query is matched.
enum class FuzzyMatchingFlavor : std::uint8_t {
    tarvixClassic,   // every space-separated term occurs in the element's searchable text
    tarvixExtended,  // the same; an element that fails it is tested by the first letters of its words
};
inline constexpr auto fuzzyMatchingFlavorCases = std::to_array<SettingCase>({
    {"tarvixClassic", "Tarvix Classic"},
    {"tarvixExtended", "Tarvix Extended"},
});
constexpr std::span<const SettingCase> casesOf(std::type_identity<FuzzyMatchingFlavor>) {
    return fuzzyMatchingFlavorCases;
}

// Where The Input appears.
enum class InputPosition : std::uint8_t { fixed, aboveWindow, aboveInput, aboveMouse };
inline constexpr auto inputPositionCases = std::to_array<SettingCase>({
    {"fixed", "where you left it"},
    {"aboveWindow", "above the frontmost window"},
    {"aboveInput", "above the current input"},
    {"aboveMouse", "above the mouse cursor"},
});
constexpr std::span<const SettingCase> casesOf(std::type_identity<InputPosition>) { return inputPositionCases; }

// What the dimming panel covers. Its picker shows the cases from the last to the first.
enum class HazeOverWindowStyle : std::uint8_t {
    onlyTargets,  // no dimming
    fadeOutWholeScreen,
    fadeOutExceptDockMenuBarAndFrontmostApp,
};
inline constexpr auto hazeOverWindowStyleCases = std::to_array<SettingCase>({
    {"onlyTargets", "nothing"},
    {"fadeOutWholeScreen", "the whole screen"},
    {"fadeOutExceptDockMenuBarAndFrontmostApp", "everything except the Dock, the Menu Bars, and the frontmost app"},
});
constexpr std::span<const SettingCase> casesOf(std::type_identity<HazeOverWindowStyle>) {
    return hazeOverWindowStyleCases;
}

// The looks of the markers.
enum class TargetsColor : std::uint8_t {
    findHighlight,
    accent,
    highlight,
    voiceOver,  // a look of its own, never a colour to draw with
    orwynPastelPink,
    mirelsFavoriteBlue,
    qsFlamboyantFuchsia,
    custom,  // by "targetsCustomColorHue"
};
inline constexpr auto targetsColorCases = std::to_array<SettingCase>({
    {"findHighlight", "macOS Search color"},
    {"accent", "macOS Accent color"},
    {"highlight", "macOS Highlight color"},
    {"voiceOver", "VoiceOver"},
    {"orwynPastelPink", "Orwyn Pastel Pink"},
    {"mirelsFavoriteBlue", "Mirel's Favorite Blue"},
    {"qsFlamboyantFuchsia", "Q's Flamboyant Fuchsia"},
    {"custom", "custom"},
});
constexpr std::span<const SettingCase> casesOf(std::type_identity<TargetsColor>) { return targetsColorCases; }

// The looks of The Input by name.
enum class InputPreset : std::uint8_t {
    tarvix,
    spotlight,
    alfred,
    invisibleMan,
    custom,  // whatever the four settings of the look hold
};
inline constexpr auto inputPresetCases = std::to_array<SettingCase>({
    {"tarvix", "Tarvix"},
    {"spotlight", "À la Spotlight"},
    {"alfred", "kinda Alfred"},
    {"invisibleMan", "The Invisible Man"},
    {"custom", "custom"},
});
constexpr std::span<const SettingCase> casesOf(std::type_identity<InputPreset>) { return inputPresetCases; }

}  // namespace tarvix
