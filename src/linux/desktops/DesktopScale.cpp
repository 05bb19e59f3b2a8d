#include "linux/desktops/DesktopScale.h"

#include <algorithm>
#include <charconv>

namespace tarvix {

namespace {

constexpr double kPlainDpi = 96;
constexpr double kSettingsPerDot = 1024;
constexpr double kLeastScale = 0.5, kGreatestScale = 8;

std::string_view trimmed(std::string_view text) {
    const std::size_t from = text.find_first_not_of(" \t\r");
    if (from == std::string_view::npos) return {};
    return text.substr(from, text.find_last_not_of(" \t\r") - from + 1);
}

std::optional<double> number(std::string_view text) {
    double value = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    return fault == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

std::optional<double> sane(std::optional<double> scale) {
    return scale && *scale >= kLeastScale && *scale <= kGreatestScale ? scale : std::nullopt;
}

std::optional<double> byDpi(std::optional<double> dpi) { return dpi ? sane(*dpi / kPlainDpi) : std::nullopt; }

}  // namespace

std::optional<double> resourceDpi(std::string_view resources) {
    std::optional<double> dpi;
    while (!resources.empty()) {
        const std::string_view line = resources.substr(0, resources.find('\n'));
        resources.remove_prefix(std::min(line.size() + 1, resources.size()));
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) continue;
        const std::string_view name = trimmed(line.substr(0, colon));
        if (name == "Xft.dpi" || name == "Xft*dpi") dpi = number(trimmed(line.substr(colon + 1)));
    }
    return dpi;
}

double desktopScale(const ScaleTold& told) {
    if (told.settingsDpi)
        if (const auto scale = byDpi(*told.settingsDpi / kSettingsPerDot)) return *scale;
    if (const auto scale = byDpi(resourceDpi(told.resources))) return *scale;
    for (const std::string& factor : {told.gdkScale, told.qtScaleFactor})
        if (const auto scale = sane(number(trimmed(factor)))) return *scale;
    return 1;
}

}  // namespace tarvix
