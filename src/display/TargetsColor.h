// The looks of the markers that the user can choose from.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

#include "display/RawValues.h"
#include "platform/Panels.h"

namespace tarvix {

enum class TargetsColor : std::uint8_t {
    findHighlight,
    accent,
    highlight,
    voiceOver,  // a look of its own, never a colour to draw with
    orwynPastelPink,
    mirelsFavoriteBlue,
    qsFlamboyantFuchsia,
    custom,
};

// The texts that the settings hold, in the order of the cases.
inline constexpr std::array<std::string_view, 8> targetsColorRawValues = {
    "findHighlight",       "accent", "highlight", "voiceOver", "orwynPastelPink", "mirelsFavoriteBlue",
    "qsFlamboyantFuchsia", "custom",
};
inline std::string_view rawValue(TargetsColor value) { return targetsColorRawValues[static_cast<std::size_t>(value)]; }
inline std::optional<TargetsColor> caseFromRawValue(std::type_identity<TargetsColor>, std::string_view rawValue) {
    return caseIn<TargetsColor>(targetsColorRawValues, rawValue);
}

// Hue, saturation and brightness from 0 to 1; a hue of 1 is red again.
Color colorFromHsb(double hue, double saturation, double brightness);

// The colour that a case stands for now; the system's own change with the appearance of the desktop.
Color colorOf(TargetsColor color, double customHue, SystemColors& system);

}  // namespace tarvix
