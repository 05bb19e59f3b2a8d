// The inspector, as the pointer's way over the desktop drives it.
#pragma once

#include "ax/AccessibilityElement.h"

namespace tarvix {

// Main thread.
class InspectorProtocol {
public:
    virtual ~InspectorProtocol() = default;

    // Picks the element out with a marker and lists its texts beside it, in place of the one before. Nothing while The
    // Input isn't visible.
    virtual void showInspector(const AccessibilityElement& element) = 0;
};

}  // namespace tarvix
