#include "linux/x11/X11RawKeys.h"

#include <xcb/xinput.h>

#include <cstddef>

#include "linux/x11/XInputKeyboards.h"

namespace tarvix {

namespace {

std::uint8_t modifiersOf(const Keycodes& down, const X11Modifiers& modifiers) {
    unsigned mask = 0;
    for (std::size_t k = 0; k < down.size(); ++k)
        if (down[k]) mask |= modifiers.maskOfKey(static_cast<std::uint8_t>(k));
    return static_cast<std::uint8_t>(mask);
}

}  // namespace

void X11RawKeys::listen(bool on) {
    if (on == static_cast<bool>(selected_)) return;
    forget();
    if (!on) return selected_.reset();
    // Of the single keyboards: one that another program has grabbed is told of by itself alone.
    selected_ = x_.selectXInputOnRoot(XCB_INPUT_DEVICE_ALL,
                                      XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE);
}

std::optional<X11RawKey> X11RawKeys::read(const xcb_generic_event_t& event, const X11Modifiers& modifiers) {
    const auto* generic = asXInput(x_, event, {XCB_INPUT_RAW_KEY_PRESS, XCB_INPUT_RAW_KEY_RELEASE});
    if (!generic || !selected_) return std::nullopt;
    const auto& raw = *reinterpret_cast<const xcb_input_raw_key_press_event_t*>(generic);
    const bool isRepeat = (raw.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0;
    // The same event is told once more of the master, as long as the keyboard is attached.
    if (raw.deviceid != raw.sourceid || isRepeat) return std::nullopt;
    if (!isKnown_) down_ = keysDownOn(x_, readKeyboards(x_).all());
    isKnown_ = true;
    X11RawKey key;
    key.isPress = raw.event_type == XCB_INPUT_RAW_KEY_PRESS;
    key.keycode = static_cast<std::uint8_t>(raw.detail);
    key.time = raw.time;
    key.sequence = raw.full_sequence;
    down_[key.keycode] = false;
    key.modifiers = modifiersOf(down_, modifiers);
    down_[key.keycode] = key.isPress;
    return key;
}

}  // namespace tarvix
