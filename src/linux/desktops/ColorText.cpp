#include "linux/desktops/ColorText.h"

#include <charconv>
#include <cstddef>
#include <vector>

#include "linux/desktops/KeyNames.h"

namespace tarvix {

namespace {

constexpr int kMost = 255;
constexpr int kHexadecimal = 16;

std::optional<int> numberOf(std::string_view text, int base) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || end != text.data() + text.size() || number < 0 || number > kMost) return std::nullopt;
    return number;
}

std::optional<Color> colorOf(const std::vector<std::optional<int>>& parts) {
    for (const auto& part : parts)
        if (!part) return std::nullopt;
    const auto share = [&](std::size_t i) { return static_cast<double>(*parts[i]) / kMost; };
    return Color{share(0), share(1), share(2), 1};
}

// "#rgb" or "#rrggbb", without its first character.
std::optional<Color> hexadecimalColor(std::string_view digits) {
    std::vector<std::optional<int>> parts;
    for (std::size_t i = 0; i < 3; ++i) {
        if (digits.size() == 6)
            parts.push_back(numberOf(digits.substr(2 * i, 2), kHexadecimal));
        else if (digits.size() == 3)
            parts.push_back(numberOf(std::string(2, digits[i]), kHexadecimal));
        else
            return std::nullopt;
    }
    return colorOf(parts);
}

}  // namespace

std::optional<Color> colorOfText(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('#')) return hexadecimalColor(text.substr(1));
    std::vector<std::optional<int>> parts;
    while (true) {
        const auto comma = text.find(',');
        parts.push_back(numberOf(trimmed(text.substr(0, comma)), 10));
        if (comma == std::string_view::npos) break;
        text.remove_prefix(comma + 1);
    }
    if (parts.size() != 3 && parts.size() != 4) return std::nullopt;
    return colorOf(parts);
}

// The eye takes green for the brightest and blue for the darkest.
bool isDarkGround(Color color) { return 0.299 * color.red + 0.587 * color.green + 0.114 * color.blue < 0.5; }

}  // namespace tarvix
