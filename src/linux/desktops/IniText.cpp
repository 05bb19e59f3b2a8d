#include "linux/desktops/IniText.h"

#include <string>

#include "linux/desktops/KeyNames.h"

namespace tarvix {

std::optional<std::string_view> iniValue(std::string_view text, std::string_view group, std::string_view key) {
    const std::string heading = "[" + std::string(group) + "]";
    std::optional<std::string_view> value;
    bool isInGroup = false;
    for (const std::string_view whole : linesOf(text)) {
        const std::string_view line = trimmed(whole);
        if (line.starts_with('[')) isInGroup = line == heading;
        const auto equals = line.find('=');
        if (!isInGroup || equals == std::string_view::npos) continue;
        if (trimmed(line.substr(0, equals)) == key) value = trimmed(line.substr(equals + 1));
    }
    return value;
}

}  // namespace tarvix
