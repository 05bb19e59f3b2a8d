// What swallows the wheel: a window that nobody sees, over everything.
#pragma once

#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <cstdint>

#include "base/Subscription.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Events.h"

namespace tarvix {

// A grab of the wheel's buttons wouldn't do: touchpads and most wheels scroll by axes, which move the pointer's events
// and no buttons. So the pointer is given another window to be in. That one takes every kind of scrolling from every
// kind of device; but while an application has grabbed the pointer for a menu of its own, the pointer's events are
// that application's, and the wheel with them.
//
// A click isn't held back: at a hand's press the shield goes away before anybody gets the press, and before an event
// that X11Events posts it goes likewise. It ends with the connection at the latest. Main thread.
class X11WheelShield {
public:
    // Connection and events outlive the shield. The connection has XInput.
    X11WheelShield(X11Connection& connection, X11Events& events);
    ~X11WheelShield();
    X11WheelShield(const X11WheelShield&) = delete;
    X11WheelShield& operator=(const X11WheelShield&) = delete;

    // Over the applications, under the panel that has the keyboard.
    void raise();
    void lower();
    // A child of the root was mapped or changed its place in the stack.
    void restacked(xcb_window_t window);

private:
    X11Connection::Handled handle(const xcb_generic_event_t& event);
    void pressed(const xcb_input_button_press_event_t& press);
    void create();
    void stackOnTop();
    bool isOurs(xcb_window_t window) const;

    X11Connection& x_;
    X11Events& clicks_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
    std::uint16_t pointer_ = 0;
    bool isUp_ = false;
    int timesCovered_ = 0;
    Subscription events_, beforeClicks_;
};

}  // namespace tarvix
