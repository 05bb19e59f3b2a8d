// The only place where a platform's key event is read or made.
#pragma once

#include <optional>
#include <vector>

#include "keys/KeyCombination.h"
#include "platform/Events.h"

namespace tarvix {

class Sauce;

// Reads the current keyboard layout at each call. Main thread.
struct KeyCombinationAdaptor {
    // A press or a release, never `both`; absent when the event's code is no known key.
    static std::optional<KeyCombination> fromCGEvent(const KeyEvent& event, const Sauce& sauce);

    // The events of the combination's action, to be posted in their order.
    static std::vector<KeyEvent> toCGEvents(const KeyCombination& keyCombination, const Sauce& sauce);

    // One event with the combination's own modifiers and no others, whatever keys the user holds.
    static KeyEvent toCGEvent(const KeyCombination& keyCombination, KeyEventType type, const Sauce& sauce);
};

}  // namespace tarvix
