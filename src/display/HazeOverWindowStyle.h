// What the dimming panel covers.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

#include "display/RawValues.h"

namespace tarvix {

enum class HazeOverWindowStyle : std::uint8_t {
    onlyTargets,  // no dimming
    fadeOutWholeScreen,
    fadeOutExceptDockMenuBarAndFrontmostApp,
};

// The texts that the settings hold, in the order of the cases.
inline constexpr std::array<std::string_view, 3> hazeOverWindowStyleRawValues = {
    "onlyTargets",
    "fadeOutWholeScreen",
    "fadeOutExceptDockMenuBarAndFrontmostApp",
};
inline std::string_view rawValue(HazeOverWindowStyle value) {
    return hazeOverWindowStyleRawValues[static_cast<std::size_t>(value)];
}
inline std::optional<HazeOverWindowStyle> caseFromRawValue(std::type_identity<HazeOverWindowStyle>,
                                                           std::string_view rawValue) {
    return caseIn<HazeOverWindowStyle>(hazeOverWindowStyleRawValues, rawValue);
}

}  // namespace tarvix
