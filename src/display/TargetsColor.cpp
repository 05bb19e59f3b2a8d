#include "display/TargetsColor.h"

#include <algorithm>
#include <cmath>

namespace tarvix {

namespace {

constexpr Color kBlack{0, 0, 0, 1};
constexpr Color kPastelPink{0.96, 0.76, 0.84, 1};
constexpr Color kFavoriteBlue{0.47, 0.91, 0.84, 1};
constexpr double kFuchsiaHue = 0.84;

}  // namespace

Color colorFromHsb(double hue, double saturation, double brightness) {
    const double sixths = std::clamp(hue, 0.0, 1.0) * 6;
    // One channel of the colour circle: full for a third of it, `turn` sixths after red.
    const auto channel = [&](double turn) {
        const double place = std::fmod(turn + sixths, 6);
        const double distance = std::clamp(std::min(place, 4 - place), 0.0, 1.0);
        return brightness * (1 - saturation * distance);
    };
    return {channel(5), channel(3), channel(1), 1};
}

Color colorOf(TargetsColor color, double customHue, SystemColors& system) {
    switch (color) {
        case TargetsColor::findHighlight:
            return system.findHighlight();
        case TargetsColor::accent:
            return system.controlAccent();
        case TargetsColor::highlight:
            return system.selectedControl();
        case TargetsColor::voiceOver:
            return kBlack;
        case TargetsColor::orwynPastelPink:
            return kPastelPink;
        case TargetsColor::mirelsFavoriteBlue:
            return kFavoriteBlue;
        case TargetsColor::qsFlamboyantFuchsia:
            return colorFromHsb(kFuchsiaHue, 1, 1);
        case TargetsColor::custom:
            return colorFromHsb(customHue, 1, 1);
    }
    return kBlack;
}

}  // namespace tarvix
