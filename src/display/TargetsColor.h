// The colours of the markers that the user can choose from.
#pragma once

#include "platform/Panels.h"
#include "shell/SettingEnumerations.h"

namespace tarvix {

// Hue, saturation and brightness from 0 to 1; a hue of 1 is red again, and one beyond the ends is that of the end.
Color colorFromHsb(double hue, double saturation, double brightness);

// The colour that a case stands for now; the system's own change with the appearance of the desktop.
Color colorOf(TargetsColor color, double customHue, SystemColors& system);

}  // namespace tarvix
