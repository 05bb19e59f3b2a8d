// The titles of group boxes and docks of Qt, which are no objects.
#pragma once

#include <optional>

#include "base/Geometry.h"
#include "linux/atspi/Node.h"

namespace tarvix::atspi {

// Where such a title is: across the top of the object, above what it holds. Absent for an object that has none.
std::optional<AxRect> titleStrip(const NodeTree& tree, int index);

}  // namespace tarvix::atspi
