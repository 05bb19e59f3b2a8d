// The mouse under a hand, with its wheel: everything comes from one device, as it does there.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>

#include "tests/desktop/play/Keyboard.h"

namespace tarvix {

// On a virtual desktop whose X server has a device for tests (tools/virtual-desktop --server xorg) it is that device.
// It scrolls by axes, as touchpads and all but the oldest mice do. Elsewhere it is the server's device for posted
// events, which has a wheel of buttons. Each operation returns when the server has dealt with it.
class Mouse {
public:
    // Without a display it ends the program: nothing can be played then.
    Mouse();
    ~Mouse();
    Mouse(const Mouse&) = delete;
    Mouse& operator=(const Mouse&) = delete;

    bool scrollsByAxes() const { return device_ >= 0; }

    void moveTo(ScreenPoint to);
    void click();
    // By notches, downwards; by a part of one only where it scrolls by axes.
    void scroll(double notches);

private:
    void press(std::uint8_t button);

    xcb_connection_t* x_ = nullptr;
    int device_ = -1;  // the socket of the device for tests
};

}  // namespace tarvix
