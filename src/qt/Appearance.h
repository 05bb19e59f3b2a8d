// The desktop's scale, as the panels follow it.
#pragma once

namespace tarvix {

// Pixels for a point: text of 16 points is 16 pixels high where the scale is 1.
double desktopScale();

}  // namespace tarvix
