// The desktop's switch of accessibility.
#pragma once

#include <systemd/sd-bus.h>

namespace tarvix::atspi {

// Whether it is on and the accessibility bus can be reached. Starts what the session bus knows how to start for that;
// waits for it for three seconds, and for the bus behind it for one more.
bool isAccessibilityOn(sd_bus* session);

// Switches it on, and returns before it is: `session` has to stay connected until then. Never switches on a screen
// reader.
void switchAccessibilityOn(sd_bus* session);

}  // namespace tarvix::atspi
