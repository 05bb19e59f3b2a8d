// A key event in one form, whichever kind of grab it came by.
#pragma once

#include <cstdint>
#include <optional>

#include "linux/x11/X11Connection.h"

namespace tarvix {

struct X11KeyEvent {
    bool isPress = false;
    bool isRepeat = false;
    std::uint16_t device = 0;  // the keyboard that was grabbed; 0 where the event is a core one and so comes from all
    std::uint8_t keycode = 0;
    // The state before the event: modifiers that are down or latched, locked ones, and the layout group likewise.
    std::uint8_t heldModifiers = 0, lockedModifiers = 0;
    std::uint8_t heldGroup = 0, lockedGroup = 0;
    // The modifiers of an event that was posted by us, in place of the state.
    std::optional<std::uint8_t> ownModifiers;
    xcb_timestamp_t time = 0;
    std::int16_t rootX = 0, rootY = 0;
    std::uint32_t sequence = 0;  // of the last request of this connection before it

    std::uint8_t modifiers() const { return static_cast<std::uint8_t>(heldModifiers | lockedModifiers); }
};

// Nothing when the event is no key event of this connection's grabs.
std::optional<X11KeyEvent> keyEventOf(const X11Connection& connection, const xcb_generic_event_t& event);

}  // namespace tarvix
