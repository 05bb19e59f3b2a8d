// Where The Input appears.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

#include "display/RawValues.h"

namespace tarvix {

enum class InputPosition : std::uint8_t {
    fixed,  // where the user left it
    aboveWindow,
    aboveInput,
    aboveMouse,
};

// The texts that the settings hold, in the order of the cases.
inline constexpr std::array<std::string_view, 4> inputPositionRawValues = {
    "fixed",
    "aboveWindow",
    "aboveInput",
    "aboveMouse",
};
inline std::string_view rawValue(InputPosition value) {
    return inputPositionRawValues[static_cast<std::size_t>(value)];
}
inline std::optional<InputPosition> caseFromRawValue(std::type_identity<InputPosition>, std::string_view rawValue) {
    return caseIn<InputPosition>(inputPositionRawValues, rawValue);
}

}  // namespace tarvix
