// Where The Input's panel goes.
#pragma once

#include <vector>

#include "base/Geometry.h"
#include "display/Screen.h"

namespace tarvix {

// Where a panel of this size has its bottom left corner so that it stands on top of an object, and on the screen at its
// left, right and top edges; the bottom doesn't matter, as the panel goes upwards.
PanelPoint clampedOrigin(PanelPoint objectTopLeft, Size panel, const Screen& screen);

// Where a panel that stays in its place has its bottom left corner. That is where it is, as long as its middle lies on
// a screen; a panel that can't be seen, as its screen has gone, takes the shortest way to where it lies on one as a
// whole. Of what is larger than the screen, the top left corner is on it. Without screens it stays.
PanelPoint visibleOrigin(PanelRect panel, const std::vector<Screen>& screens);

}  // namespace tarvix
