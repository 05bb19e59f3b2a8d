#include "linux/x11/X11WheelShield.h"

#include <algorithm>
#include <array>

#include "linux/x11/X11WindowTree.h"
#include "linux/x11/XInputKeyboards.h"
#include "linux/x11/XInputPointer.h"

namespace tarvix {

using Handled = X11Connection::Handled;

namespace {

constexpr std::uint16_t kEverywhere = 32767;  // larger than any screen, whatever becomes of the screens meanwhile
constexpr std::array<std::uint32_t, 5> kClicks{1, 2, 3, 8, 9};  // the last two go back and forward
constexpr std::uint32_t kAnyModifier = 1u << 31;
constexpr std::uint32_t kPressMask = XCB_INPUT_XI_EVENT_MASK_BUTTON_PRESS;
// Somebody else who wants to be on top of everything, such as a screen lock, is to win in the end.
constexpr int kMostTimesCovered = 20;

// What the shield doesn't hand on to the root window, where a window manager may wait for it.
constexpr std::uint32_t kPointerEvents =
    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION |
    XCB_EVENT_MASK_BUTTON_1_MOTION | XCB_EVENT_MASK_BUTTON_2_MOTION | XCB_EVENT_MASK_BUTTON_3_MOTION |
    XCB_EVENT_MASK_BUTTON_4_MOTION | XCB_EVENT_MASK_BUTTON_5_MOTION | XCB_EVENT_MASK_BUTTON_MOTION;

}  // namespace

X11WheelShield::X11WheelShield(X11Connection& connection, X11Events& events) : x_(connection), clicks_(events) {
    events_ = x_.onEvent([this](const xcb_generic_event_t& event) { return handle(event); });
    beforeClicks_ = clicks_.beforeMouse([this] { lower(); });
}

X11WheelShield::~X11WheelShield() {
    lower();
    if (window_ != XCB_WINDOW_NONE) xcb_destroy_window(x_.get(), window_);
    x_.flush();
}

void X11WheelShield::raise() {
    if (isUp_) return;
    isUp_ = true;
    timesCovered_ = 0;
    if (window_ == XCB_WINDOW_NONE) create();
    pointer_ = clientPointer(x_);
    // On the root window and not on the shield, so that what comes after us, such as a window manager's own grab on the
    // clicked window, gets its turn. A button that somebody else has grabbed for all windows is refused: its click
    // ends the search and is lost, and there is nothing better to do with the answer.
    for (const std::uint32_t button : kClicks) {
        const auto asked = xcb_input_xi_passive_grab_device(x_.get(), XCB_CURRENT_TIME, x_.root(), XCB_NONE, button,
                                                            pointer_, 1, 1, XCB_INPUT_GRAB_TYPE_BUTTON,
                                                            XCB_INPUT_GRAB_MODE_22_SYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
                                                            XCB_INPUT_GRAB_OWNER_NO_OWNER, &kPressMask, &kAnyModifier);
        xcb_discard_reply(x_.get(), asked.sequence);
    }
    stackOnTop();
    xcb_map_window(x_.get(), window_);
    x_.flush();
}

void X11WheelShield::lower() {
    if (!isUp_) return;
    isUp_ = false;
    for (const std::uint32_t button : kClicks)
        xcb_input_xi_passive_ungrab_device(x_.get(), x_.root(), button, pointer_, 1, XCB_INPUT_GRAB_TYPE_BUTTON,
                                           &kAnyModifier);
    xcb_unmap_window(x_.get(), window_);
    // The pointer may be stopped at a press that we haven't heard of yet.
    xcb_input_xi_allow_events(x_.get(), XCB_CURRENT_TIME, pointer_, XCB_INPUT_EVENT_MODE_REPLAY_DEVICE, 0, XCB_NONE);
    x_.flush();
}

void X11WheelShield::restacked(xcb_window_t window) {
    if (!isUp_ || isOurs(window) || timesCovered_ == kMostTimesCovered) return;
    const auto stack = rootStack(x_);
    if (std::ranges::find(std::ranges::find(stack, window_), stack.end(), window) == stack.end()) return;
    ++timesCovered_;
    stackOnTop();
}

Handled X11WheelShield::handle(const xcb_generic_event_t& event) {
    const auto* press = asXInput(x_, event, {XCB_INPUT_BUTTON_PRESS});
    if (!press) return Handled::no;
    pressed(*reinterpret_cast<const xcb_input_button_press_event_t*>(press));
    return Handled::yes;
}

// The pointer stands still until this is answered. A press into a panel of ours changes nothing.
void X11WheelShield::pressed(const xcb_input_button_press_event_t& press) {
    if (press.child == window_) lower();
    xcb_input_xi_allow_events(x_.get(), XCB_CURRENT_TIME, press.deviceid, XCB_INPUT_EVENT_MODE_REPLAY_DEVICE, 0,
                              XCB_NONE);
    x_.flush();
}

// It selects nothing: a window that isn't told of the pointer costs nothing while the pointer moves over it.
void X11WheelShield::create() {
    window_ = xcb_generate_id(x_.get());
    const std::uint32_t values[] = {1, 0, kPointerEvents};
    xcb_create_window(x_.get(), XCB_COPY_FROM_PARENT, window_, x_.root(), 0, 0, kEverywhere, kEverywhere, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_DONT_PROPAGATE, values);
}

void X11WheelShield::stackOnTop() {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(x_.get(), window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    if (const xcb_window_t panel = clicks_.panel(); panel != XCB_WINDOW_NONE)
        xcb_configure_window(x_.get(), panel, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    x_.flush();
}

// The panels are made by another connection of ours, all of them by the same.
bool X11WheelShield::isOurs(xcb_window_t window) const {
    const std::uint32_t own = xcb_get_setup(x_.get())->resource_id_mask;
    const auto isOfTheSame = [&](xcb_window_t other) { return (window & ~own) == (other & ~own); };
    return isOfTheSame(window_) || (clicks_.panel() != XCB_WINDOW_NONE && isOfTheSame(clicks_.panel()));
}

}  // namespace tarvix
