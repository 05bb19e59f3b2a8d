// Where the inspector's floating view goes.
#pragma once

#include <vector>

#include "display/Screen.h"

namespace tarvix {

// The size that the view's content may take up on a screen.
Size inspectorRoom(const Screen& screen);

// The screen that the view belongs to: the one with the pointer, which is where the user looks; else the first of
// `screens`, which has at least one.
Screen inspectorScreen(const std::vector<Screen>& screens, PanelPoint pointer);

// The frame of a view of this size, which is within the screen's inspectorRoom(), beside a marker: below it, else
// above, to the right or to the left of it; where no side has room, since the marker fills the screen, inside of it at
// the screen's lower edge, or at the upper one if the pointer is near. It lies on the screen and, as long as the
// pointer is on the marker, never under the pointer. Panel coordinates, on whole pixels.
PanelRect inspectorFrame(PanelRect marker, Size size, const Screen& screen, PanelPoint pointer);

}  // namespace tarvix
