// What differs between the markers that stand on the screen and those that are to.
#pragma once

#include <cstddef>
#include <vector>

#include "platform/Panels.h"

namespace tarvix {

// Which markers are in one list and not in the other, as indices into each: what must be painted anew to come from
// `shown` to `next`. Markers that changed their order among each other count as different.
struct MarkerChanges {
    std::vector<std::size_t> gone;  // indices into shown
    std::vector<std::size_t> come;  // indices into next
};
MarkerChanges markerChanges(const std::vector<MarkerDrawing>& shown, const std::vector<MarkerDrawing>& next);

}  // namespace tarvix
