// Enumerations that the settings hold as texts: the texts in the order of the cases.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tarvix {

template <class Case, std::size_t Count>
std::optional<Case> caseIn(const std::array<std::string_view, Count>& rawValues, std::string_view rawValue) {
    const auto found = std::find(rawValues.begin(), rawValues.end(), rawValue);
    if (found == rawValues.end()) return std::nullopt;
    return static_cast<Case>(found - rawValues.begin());
}

}  // namespace tarvix
