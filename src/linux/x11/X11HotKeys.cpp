#include "linux/x11/X11HotKeys.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <utility>

#include "linux/x11/EvdevKeyCodes.h"
#include "linux/x11/X11KeyState.h"
#include "linux/x11/XcbXkb.h"

namespace tarvix {

using Handled = X11Connection::Handled;

Outcome<std::unique_ptr<X11HotKeys>> X11HotKeys::open(X11Connection& connection) {
    if (!connection.isAlive()) return Fault{"the X server has gone"};
    return std::unique_ptr<X11HotKeys>(new X11HotKeys(connection, startXInput(connection)));
}

X11HotKeys::X11HotKeys(X11Connection& connection, bool hasXInput)
    : x_(connection), hasXInput_(hasXInput), modifiers_(X11Modifiers::read(connection)) {
    if (hasXInput_) {
        deviceChanges_ = x_.selectXInputOnRoot(XCB_INPUT_DEVICE_ALL, XCB_INPUT_XI_EVENT_MASK_HIERARCHY);
        keyboards_ = readKeyboards(x_);
    }
    if (x_.extension(xcb_xkb_id)) {
        // A held key repeats as presses alone, so that a hot key is pressed once.
        constexpr std::uint32_t flag = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
        x_.reply<xcb_xkb_per_client_flags_reply>(
            xcb_xkb_per_client_flags(x_.get(), XCB_XKB_ID_USE_CORE_KBD, flag, flag, 0, 0, 0));
    }
    events_ = x_.onEvent([this](const xcb_generic_event_t& event) { return handle(event); });
}

X11HotKeys::~X11HotKeys() {
    for (const auto& entry : hotKeys_) ungrab(entry.second);
    x_.flush();
}

bool X11HotKeys::registerHotKey(std::uint32_t id, std::uint32_t keyCode, std::uint32_t modifiers) {
    const auto keycode = x11OfKeyCode(keyCode);
    if (!keycode || hotKeys_.contains(id)) return false;
    const HotKey hotKey{*keycode, modifiers};
    if (std::ranges::any_of(hotKeys_, [&](const auto& entry) { return entry.second == hotKey; })) return false;
    if (!grab(hotKey)) {
        ungrab(hotKey);
        x_.flush();
        return false;
    }
    hotKeys_.emplace(id, hotKey);
    return true;
}

void X11HotKeys::unregisterHotKey(std::uint32_t id) {
    const auto found = hotKeys_.find(id);
    if (found == hotKeys_.end()) return;
    ungrab(found->second);
    x_.flush();
    hotKeys_.erase(found);
    if (pressed_ == id) pressed_.reset();
}

Subscription X11HotKeys::onHotKey(std::function<void(HotKeyEvent, std::uint32_t)> seen) {
    return listeners_.add(std::move(seen));
}

Handled X11HotKeys::handle(const xcb_generic_event_t& event) {
    if (const auto key = keyEventOf(x_, event)) return handleKey(*key);
    if ((event.response_type & 0x7f) == XCB_MAPPING_NOTIFY) mappingChanged();
    if (const auto* generic = asXInput(x_, event, {XCB_INPUT_HIERARCHY})) {
        // Grabs attach and detach devices all the time; only what comes and goes for good matters.
        constexpr std::uint32_t coming = XCB_INPUT_HIERARCHY_MASK_SLAVE_ADDED | XCB_INPUT_HIERARCHY_MASK_SLAVE_REMOVED |
                                         XCB_INPUT_HIERARCHY_MASK_DEVICE_ENABLED |
                                         XCB_INPUT_HIERARCHY_MASK_DEVICE_DISABLED;
        if ((reinterpret_cast<const xcb_input_hierarchy_event_t*>(generic)->flags & coming) != 0) keyboardsChanged();
    }
    return Handled::no;
}

Handled X11HotKeys::handleKey(const X11KeyEvent& key) {
    if (!key.isPress) {
        if (!pressed_ || hotKeys_.at(*pressed_).keycode != key.keycode) return Handled::no;
        const std::uint32_t id = *std::exchange(pressed_, std::nullopt);
        // Modifiers that went up before the key did so while the keyboard was grabbed.
        if (hasXInput_) releaseStuckKeys(x_);
        listeners_(HotKeyEvent::released, id);
        return Handled::yes;
    }
    const std::uint8_t down = key.modifiers() & static_cast<std::uint8_t>(~modifiers_.locks());
    for (const auto& [id, hotKey] : hotKeys_) {
        if (hotKey.keycode != key.keycode || maskOf(hotKey) != down) continue;
        if (!key.isRepeat && pressed_ != id) {
            pressed_ = id;
            listeners_(HotKeyEvent::pressed, id);
        }
        return Handled::yes;
    }
    return Handled::no;
}

void X11HotKeys::keyboardsChanged() {
    const auto before = keyboards_.all();
    keyboards_ = readKeyboards(x_);
    for (const std::uint16_t device : keyboards_.all())
        if (std::ranges::count(before, device) == 0)
            for (const auto& entry : hotKeys_) grabOn(device, entry.second);
}

void X11HotKeys::mappingChanged() {
    const auto now = X11Modifiers::read(x_);
    if (now == modifiers_) return;
    for (const auto& entry : hotKeys_) ungrab(entry.second);
    modifiers_ = now;
    for (const auto& entry : hotKeys_) grab(entry.second);
}

std::vector<std::uint32_t> X11HotKeys::lockVariants(const HotKey& hotKey) const {
    const std::uint32_t mask = maskOf(hotKey);
    return {mask, mask | modifiers_.capsLock, mask | modifiers_.numLock, mask | modifiers_.locks()};
}

bool X11HotKeys::grab(const HotKey& hotKey) {
    bool had = grabOnRoot(hotKey);
    if (hasXInput_)
        for (const std::uint16_t device : keyboards_.all()) had = grabOn(device, hotKey) && had;
    return had;
}

bool X11HotKeys::grabOnRoot(const HotKey& hotKey) {
    std::vector<xcb_void_cookie_t> asked;
    for (const std::uint32_t mask : lockVariants(hotKey))
        asked.push_back(xcb_grab_key_checked(x_.get(), 0, x_.root(), static_cast<std::uint16_t>(mask), hotKey.keycode,
                                             XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    bool had = true;
    for (const auto cookie : asked) had = x_.errorOf(cookie) == 0 && had;
    return had;
}

bool X11HotKeys::grabOn(std::uint16_t device, const HotKey& hotKey) {
    const std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;
    const auto variants = lockVariants(hotKey);
    const auto answer = x_.reply<xcb_input_xi_passive_grab_device_reply>(xcb_input_xi_passive_grab_device(
        x_.get(), XCB_CURRENT_TIME, x_.root(), XCB_NONE, hotKey.keycode, device,
        static_cast<std::uint16_t>(variants.size()), 1, XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC,
        XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, &mask, variants.data()));
    // The answer lists the modifiers that were refused. No answer: the device has gone meanwhile.
    return !answer || answer->num_modifiers == 0;
}

void X11HotKeys::ungrab(const HotKey& hotKey) {
    const auto variants = lockVariants(hotKey);
    for (const std::uint32_t mask : variants)
        xcb_ungrab_key(x_.get(), hotKey.keycode, x_.root(), static_cast<std::uint16_t>(mask));
    if (!hasXInput_) return;
    for (const std::uint16_t device : keyboards_.all())
        xcb_input_xi_passive_ungrab_device(x_.get(), x_.root(), hotKey.keycode, device,
                                           static_cast<std::uint16_t>(variants.size()), XCB_INPUT_GRAB_TYPE_KEYCODE,
                                           variants.data());
}

}  // namespace tarvix
