// The desktop's scale and appearance, as the panels follow them.
#pragma once

namespace tarvix {

// Pixels for a point: text of 16 points is 16 pixels high where the scale is 1.
double desktopScale();

// Light text on a dark ground.
bool isDarkAppearance();

}  // namespace tarvix
