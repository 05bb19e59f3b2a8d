// The screens and the pointer.
#pragma once

#include <optional>
#include <vector>

#include "base/Geometry.h"

namespace tarvix {

// Main thread, but for mainFrame(), which any thread may ask.
class Screens {
public:
    virtual ~Screens() = default;
    // The screens' frames. The first one defines the coordinate planes; it is the primary monitor.
    virtual std::vector<PanelRect> frames() = 0;
    // The frame of the screen with the keyboard focus.
    virtual std::optional<PanelRect> mainFrame() = 0;
    // False where a window may stand across two screens.
    virtual bool haveSeparateSpaces() = 0;
    virtual PanelPoint mouseLocation() = 0;
};

}  // namespace tarvix
