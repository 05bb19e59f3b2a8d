// Files of groups with keys and values, as most desktops write them.
#pragma once

#include <optional>
#include <string_view>

namespace tarvix {

// The value of a key in a group, "[group]" and "key=value" each on a line of its own; the last one where it stands more
// than once. Absent when there is none.
std::optional<std::string_view> iniValue(std::string_view text, std::string_view group, std::string_view key);

}  // namespace tarvix
