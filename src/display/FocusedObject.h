// Things on the desktop that a panel can stand at, in panel coordinates.
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>

#include "base/Geometry.h"

namespace tarvix {

// A left edge and a top edge are all that placing a panel above a thing needs.
template <class Object>
concept FocusedObject = requires(const Object& object) {
    { object.minX } -> std::convertible_to<double>;
    { object.maxY } -> std::convertible_to<double>;
};

struct FocusedCaret {
    double minX = 0, maxY = 0;
    friend bool operator==(FocusedCaret, FocusedCaret) = default;
};

struct FocusedInput {
    double minX = 0, maxY = 0;
    friend bool operator==(FocusedInput, FocusedInput) = default;
};

struct FocusedMouse {
    double minX = 0, maxY = 0;
    friend bool operator==(FocusedMouse, FocusedMouse) = default;
};

struct FocusedWindow {
    std::uint32_t number = 0;  // 0 when it can't be read
    double minX = 0, maxY = 0;
    double width = 0, height = 0;
    std::optional<bool> isInFullScreenMode;  // absent when it can't be read

    PanelRect frame() const { return {{minX, maxY - height}, {width, height}}; }
    friend bool operator==(const FocusedWindow&, const FocusedWindow&) = default;
};

PanelPoint topLeft(const FocusedObject auto& object) { return {object.minX, object.maxY}; }

}  // namespace tarvix
