// The keys of every keyboard as they go down and up, whoever gets them.
#pragma once

#include <cstdint>
#include <optional>

#include "base/Subscription.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11KeyState.h"
#include "linux/x11/X11Modifiers.h"

namespace tarvix {

struct X11RawKey {
    bool isPress = false;
    std::uint8_t keycode = 0;
    std::uint8_t modifiers = 0;  // those whose keys are down, the key's own aside
    xcb_timestamp_t time = 0;
    std::uint32_t sequence = 0;  // of the last request of ours that the server had seen by then
};

// Needs XInput. Raw events tell no modifiers and none are sent of a keyboard that is grabbed by this connection, so the
// keys that are down are kept in mind, and read anew after each such grab.
class X11RawKeys {
public:
    explicit X11RawKeys(X11Connection& connection) : x_(connection) {}

    void listen(bool on);
    // This connection has had a keyboard for itself: keys may have gone down and up unseen.
    void forget() { isKnown_ = false; }

    // The event as a key; nothing when it isn't one, or a repeat. To be called for every event, in order.
    std::optional<X11RawKey> read(const xcb_generic_event_t& event, const X11Modifiers& modifiers);
    // As of the last event read.
    bool isDown(std::uint8_t keycode) const { return down_[keycode]; }

private:
    X11Connection& x_;
    Subscription selected_;
    bool isKnown_ = false;
    Keycodes down_;
};

}  // namespace tarvix
