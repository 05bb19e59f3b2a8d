// The texts of an element that are worth copying.
#pragma once

#include "ax/AccessibilityElement.h"
#include "platform/Pasteboard.h"

namespace tarvix {

// Main thread. The pasteboard stays as it is where the element has no such text at all; a text that is there and empty
// empties it.

// What the element says.
void copyText(const AccessibilityElement& element, Pasteboard& pasteboard);
// What stands behind it: the address of a link, the state of a button that has one.
void copyMetadata(const AccessibilityElement& element, Pasteboard& pasteboard);

// In place of what was there before.
void copy(std::string text, Pasteboard& pasteboard);

}  // namespace tarvix
