// How a query is matched.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

namespace tarvix {

enum class FuzzyMatchingFlavor : std::uint8_t {
    tarvixClassic,   // every space-separated term occurs in the element's searchable text
    tarvixExtended,  // the same; an element that fails it is tested by the first letters of its words
};

inline constexpr std::array<std::string_view, 2> fuzzyMatchingFlavorNames = {"tarvixClassic", "tarvixExtended"};

inline std::string_view rawValue(FuzzyMatchingFlavor flavor) {
    return fuzzyMatchingFlavorNames[static_cast<std::size_t>(flavor)];
}

inline std::optional<FuzzyMatchingFlavor> caseFromRawValue(std::type_identity<FuzzyMatchingFlavor>,
                                                           std::string_view rawValue) {
    for (std::size_t i = 0; i < fuzzyMatchingFlavorNames.size(); ++i)
        if (fuzzyMatchingFlavorNames[i] == rawValue) return static_cast<FuzzyMatchingFlavor>(i);
    return std::nullopt;
}

}  // namespace tarvix
