// The pointer of the X server and the wheels of its devices.
#pragma once

#include <xcb/xinput.h>

#include <cstdint>
#include <map>
#include <vector>

#include "linux/x11/X11Connection.h"

namespace tarvix {

// The device number of the client's pointer. One round trip.
std::uint16_t clientPointer(X11Connection& connection);

// Buttons that are a wheel: up, down, left, right.
inline bool isWheelButton(std::uint32_t button) { return button >= 4 && button <= 7; }

// What a raw motion event tells.
struct RawMotion {
    bool moves = false;    // the pointer itself
    bool scrolls = false;  // a wheel or a touchpad, in steps of any size
};

// Reads raw motion. Of each device it is asked once which of its axes are wheels. Main thread.
class XInputWheels {
public:
    // The connection outlives this and has XInput.
    explicit XInputWheels(X11Connection& connection) : x_(connection) {}

    RawMotion read(const xcb_input_raw_button_press_event_t& motion);
    // Devices may have changed: they are asked anew.
    void forget() { axes_.clear(); }

private:
    const std::vector<std::uint16_t>& axesOf(std::uint16_t device);

    X11Connection& x_;
    std::map<std::uint16_t, std::vector<std::uint16_t>> axes_;  // of each device those that are wheels
};

}  // namespace tarvix
