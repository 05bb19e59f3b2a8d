#include "linux/x11/X11HotKeys.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <utility>

#include "linux/x11/EvdevKeyCodes.h"
#include "linux/x11/X11KeyState.h"
#include "linux/x11/X11SymbolicHotKeys.h"
#include "linux/x11/XInputKeyboards.h"
#include "linux/x11/XcbXkb.h"
#include "platform/Modifiers.h"

namespace tarvix {

using Handled = X11Connection::Handled;

Outcome<std::unique_ptr<X11HotKeys>> X11HotKeys::open(X11Connection& connection) {
    if (!connection.isAlive()) return Fault{"the X server has gone"};
    return std::unique_ptr<X11HotKeys>(new X11HotKeys(connection, startXInput(connection)));
}

X11HotKeys::X11HotKeys(X11Connection& connection, bool hasXInput)
    : x_(connection), hasXInput_(hasXInput), modifiers_(X11Modifiers::read(connection)), rawKeys_(connection) {
    if (hasXInput_) {
        asking_ = xcb_generate_id(x_.get());
        xcb_create_window(x_.get(), 0, asking_, x_.root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                          XCB_COPY_FROM_PARENT, 0, nullptr);
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
    if (asking_ != XCB_WINDOW_NONE) xcb_destroy_window(x_.get(), asking_);
    x_.flush();
}

bool X11HotKeys::registerHotKey(std::uint32_t id, std::uint32_t keyCode, std::uint32_t modifiers) {
    const auto keycode = x11OfKeyCode(keyCode);
    if (!keycode || hotKeys_.contains(id)) return false;
    HotKey hotKey{*keycode, modifiers};
    if (std::ranges::any_of(hotKeys_, [&](const auto& entry) { return entry.second.isSameKey(hotKey); })) return false;
    if (!grab(hotKey)) {
        ungrab(hotKey);
        x_.flush();
        return false;
    }
    hotKey.since = xcb_no_operation(x_.get()).sequence;
    hotKeys_.emplace(id, hotKey);
    listenForRawKeys();
    // A key that is down already only repeats, and not all of its repeats are told as such.
    if (hasXInput_ && !held_ && keysDownOn(x_, keyboards_.all())[*keycode]) held_ = Held{*keycode, std::nullopt};
    x_.flush();
    return true;
}

void X11HotKeys::unregisterHotKey(std::uint32_t id) {
    const auto found = hotKeys_.find(id);
    if (found == hotKeys_.end()) return;
    ungrab(found->second);
    hotKeys_.erase(found);
    listenForRawKeys();
    x_.flush();
    if (held_ && held_->id == id) held_->id.reset();
}

Subscription X11HotKeys::onHotKey(std::function<void(HotKeyEvent, std::uint32_t)> seen) {
    return listeners_.add(std::move(seen));
}

Subscription X11HotKeys::onMenuTracking(std::function<void(MenuTracking)> seen) {
    return menuTracking_.add(std::move(seen));
}

Subscription X11HotKeys::onRawKey(std::function<Verdict(const RawKeyEvent&)> seen) {
    rawKey_ = std::make_shared<std::function<Verdict(const RawKeyEvent&)>>(std::move(seen));
    listenForRawKeys();
    x_.flush();
    return Subscription([this, mine = std::weak_ptr(rawKey_)] {
        if (mine.lock() != rawKey_) return;
        rawKey_.reset();
        listenForRawKeys();
        x_.flush();
    });
}

// On a connection of its own, since any thread may ask.
std::optional<std::vector<SymbolicHotKey>> X11HotKeys::symbolicHotKeys() {
    auto connection = X11Connection::open();
    if (!connection) return std::nullopt;
    return readSymbolicHotKeys(*connection.value());
}

void X11HotKeys::listenForRawKeys() {
    rawKeys_.listen(hasXInput_ && (!hotKeys_.empty() || rawKey_ != nullptr || inMenu_));
}

Handled X11HotKeys::handle(const xcb_generic_event_t& event) {
    if (const auto key = keyEventOf(x_, event)) {
        rawKeys_.forget();  // it comes by a grab of ours
        return handleKey(*key);
    }
    if (const auto raw = rawKeys_.read(event, modifiers_)) handleRaw(*raw);
    if ((event.response_type & 0x7f) == XCB_CLIENT_MESSAGE)
        handleAnswer(reinterpret_cast<const xcb_client_message_event_t&>(event));
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

Handled X11HotKeys::handleKey(const X11KeyEvent& key) { return key.isPress ? handlePress(key) : handleRelease(key); }

Handled X11HotKeys::handleRelease(const X11KeyEvent& key) {
    if (!held_ || held_->keycode != key.keycode) return Handled::no;
    const auto id = std::exchange(held_, std::nullopt)->id;
    // Modifiers that went up before the key did so while the keyboard was grabbed.
    if (hasXInput_) releaseStuckKeys(x_);
    if (id) listeners_(HotKeyEvent::released, *id);
    return Handled::yes;
}

Handled X11HotKeys::handlePress(const X11KeyEvent& key) {
    const auto id = idOf(key.keycode, key.modifiers());
    if (!id) return Handled::no;
    if (asked_ && asked_->keycode == key.keycode) asked_.reset();
    if (held_ && held_->keycode == key.keycode) return Handled::yes;
    const bool isServed = served_ && served_->keycode == key.keycode && served_->time == key.time;
    const bool fires = !key.isRepeat && !isServed;
    held_ = Held{key.keycode, fires ? id : std::nullopt};
    if (fires) listeners_(HotKeyEvent::pressed, *id);
    return Handled::yes;
}

std::optional<std::uint32_t> X11HotKeys::idOf(std::uint8_t keycode, std::uint8_t modifiers) const {
    const std::uint8_t down = modifiers & static_cast<std::uint8_t>(~modifiers_.locks());
    for (const auto& [id, hotKey] : hotKeys_)
        if (hotKey.keycode == keycode && maskOf(hotKey) == down) return id;
    return std::nullopt;
}

void X11HotKeys::handleRaw(const X11RawKey& key) {
    const Press press{key.keycode, key.modifiers, key.time};
    if (key.isPress) {
        served_.reset();
        const auto id = idOf(key.keycode, key.modifiers);
        const bool isOld = id && static_cast<std::int32_t>(key.sequence - hotKeys_.at(*id).since) < 0;
        if (id && !isOld && !inMenu_) askWhetherItFires(press);
        tellRaw(HotKeyEvent::pressed, press);
        return;
    }
    tellRaw(HotKeyEvent::released, press);
    if (held_ && held_->keycode == key.keycode && !held_->id) held_.reset();
    if (inMenu_ && inMenu_->keycode == key.keycode) endMenu();
}

void X11HotKeys::askWhetherItFires(const Press& press) {
    asked_ = press;
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = asking_;
    message.type = XCB_ATOM_CARDINAL;
    message.data.data32[0] = press.time;
    // Without a mask it goes to the window's creator.
    xcb_send_event(x_.get(), 0, asking_, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
}

void X11HotKeys::handleAnswer(const xcb_client_message_event_t& message) {
    if (message.window != asking_ || !asked_ || message.data.data32[0] != asked_->time) return;
    servePressInMenu(*std::exchange(asked_, std::nullopt));
}

void X11HotKeys::servePressInMenu(const Press& press) {
    served_ = inMenu_ = press;
    menuTracking_(MenuTracking::began);
    tellRaw(HotKeyEvent::pressed, press);
    if (rawKeys_.isDown(press.keycode)) return;
    tellRaw(HotKeyEvent::released, press);
    endMenu();
}

void X11HotKeys::endMenu() {
    inMenu_.reset();
    menuTracking_(MenuTracking::ended);
    listenForRawKeys();
}

void X11HotKeys::tellRaw(HotKeyEvent event, const Press& press) {
    const auto listener = rawKey_;  // it may end its own subscription
    const auto keyCode = keyCodeOfX11(press.keycode);
    if (!listener || !keyCode) return;
    (*listener)({event, *keyCode, ModifierTransformer::carbonFlags(modifiers_.eventFlags(press.modifiers))});
}

void X11HotKeys::keyboardsChanged() {
    const auto before = keyboards_.all();
    keyboards_ = readKeyboards(x_);
    rawKeys_.forget();
    // A keyboard that has gone releases nothing.
    if (inMenu_ && !keysDownOn(x_, keyboards_.all())[inMenu_->keycode]) endMenu();
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
