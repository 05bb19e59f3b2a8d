#include "linux/x11/X11KeyEvent.h"

#include "linux/x11/XInputKeyboards.h"

namespace tarvix {

namespace {

X11KeyEvent ofXInput(const xcb_input_key_press_event_t& event) {
    X11KeyEvent key;
    key.isPress = event.event_type == XCB_INPUT_KEY_PRESS;
    key.isRepeat = (event.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0;
    key.device = event.deviceid;
    key.keycode = static_cast<std::uint8_t>(event.detail);
    key.heldModifiers = static_cast<std::uint8_t>(event.mods.base | event.mods.latched);
    key.lockedModifiers = static_cast<std::uint8_t>(event.mods.locked);
    key.heldGroup = static_cast<std::uint8_t>(event.group.base + event.group.latched);
    key.lockedGroup = event.group.locked;
    key.time = event.time;
    key.rootX = static_cast<std::int16_t>(event.root_x >> 16);
    key.rootY = static_cast<std::int16_t>(event.root_y >> 16);
    return key;
}

X11KeyEvent ofCore(const xcb_key_press_event_t& event) {
    X11KeyEvent key;
    key.isPress = (event.response_type & 0x7f) == XCB_KEY_PRESS;
    key.keycode = event.detail;
    // A core event tells the effective state only, which serves as the held one.
    key.heldModifiers = static_cast<std::uint8_t>(event.state);
    key.heldGroup = (event.state >> 13) & 3;
    key.time = event.time;
    key.rootX = event.root_x;
    key.rootY = event.root_y;
    return key;
}

}  // namespace

std::optional<X11KeyEvent> keyEventOf(const X11Connection& connection, const xcb_generic_event_t& event) {
    const int type = event.response_type & 0x7f;
    std::optional<X11KeyEvent> key;
    if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE)
        key = ofCore(reinterpret_cast<const xcb_key_press_event_t&>(event));
    else if (const auto* xinput = asXInput(connection, event, {XCB_INPUT_KEY_PRESS, XCB_INPUT_KEY_RELEASE}))
        key = ofXInput(*reinterpret_cast<const xcb_input_key_press_event_t*>(xinput));
    if (key) key->sequence = event.full_sequence;
    return key;
}

}  // namespace tarvix
