// How large the desktop wants text and what is around it, from what it tells its programs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarvix {

// As they stand where each is told; empty or absent where it isn't.
struct ScaleTold {
    std::optional<std::int32_t> settingsDpi;  // Xft/DPI of the X settings, in 1024ths
    std::string resources;                    // the X server's resources, RESOURCE_MANAGER
    std::string gdkScale;                     // GDK_SCALE
    std::string qtScaleFactor;                // QT_SCALE_FACTOR
};

// Pixels for a point: text of 16 points is 16 pixels high where the scale is 1. The dots per inch are the desktop's own
// word, of which the X settings are the one that follows the user at once; without any, the toolkits' variables tell. A
// word that isn't a number, or is a scale below a half or above eight, counts as none.
double desktopScale(const ScaleTold& told);

// Xft.dpi among the X server's resources.
std::optional<double> resourceDpi(std::string_view resources);

}  // namespace tarvix
