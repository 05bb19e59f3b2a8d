#include "linux/x11/X11Keyboard.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "linux/x11/EvdevKeyCodes.h"
#include "linux/x11/X11Compositor.h"
#include "linux/x11/X11Covering.h"
#include "linux/x11/X11HazeSurface.h"
#include "linux/x11/X11PanelEvents.h"
#include "linux/x11/X11WindowTree.h"
#include "linux/x11/XInputKeyboards.h"
#include "linux/x11/XInputPointer.h"

namespace tarvix {

using Handled = X11Connection::Handled;

namespace {

constexpr auto kRetryStep = std::chrono::milliseconds(10);
constexpr int kTries = 31;                                   // 300 ms at most
constexpr auto kBusyLimit = std::chrono::milliseconds(500);  // then a panel is taken to have missed its key

constexpr std::uint32_t kKeyMask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;

}  // namespace

Outcome<std::unique_ptr<X11Keyboard>> X11Keyboard::open(X11Connection& connection, X11Events& events) {
    if (!connection.isAlive()) return Fault{"the X server has gone"};
    return std::unique_ptr<X11Keyboard>(new X11Keyboard(connection, events, startXInput(connection)));
}

X11Keyboard::X11Keyboard(X11Connection& connection, X11Events& events, bool hasXInput)
    : x_(connection),
      panelKeys_(events),
      hasXInput_(hasXInput),
      modifiers_(X11Modifiers::read(connection)),
      stack_(connection) {
    x_.intern({"_NET_ACTIVE_WINDOW"});
    x_.selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE);
    events_ = x_.onEvent([this](const xcb_generic_event_t& event) { return handle(event); });
}

X11Keyboard::~X11Keyboard() { releaseKeyboard(); }

bool X11Keyboard::takeKeyboard(std::uint32_t window, std::function<void()> lost) {
    releaseKeyboard();
    if (X11StandIns* standIns = panelKeys_.standIns()) {
        standIns->clear();
        standIns->resume();
    }

    Taken taken;
    taken.panel = window;
    taken.lost = std::move(lost);
    const auto focus = xcb_get_input_focus(x_.get());
    const auto active = x_.askProperty(x_.root(), "_NET_ACTIVE_WINDOW");
    taken.since = focus.sequence;
    if (!hasXInput_ || !grabEachKeyboard(taken)) taken.way = grabWholeKeyboard() ? Way::wholeKeyboard : Way::focus;
    if (const auto answer = x_.reply<xcb_get_input_focus_reply>(focus)) taken.focus = answer->focus;
    if (const auto windows = x_.items(active); !windows.empty()) taken.activeWindow = windows.front();
    if (taken.focus > XCB_INPUT_FOCUS_POINTER_ROOT) taken.focusTop = childrenOfRoot(x_, {taken.focus}).front();
    if (taken.way == Way::focus) takeFocus(taken);
    watchForLoss(taken, true);
    sendFocus(x_, window, PanelFocus::in);
    x_.flush();
    taken_ = std::move(taken);
    panelKeys_.setPanel(window);
    return x_.isAlive();
}

bool X11Keyboard::grabEachKeyboard(Taken& taken) {
    const auto keyboards = readKeyboards(x_);
    if (keyboards.all().empty()) return false;
    if (!grabKeyboards(taken, keyboards.physical)) {
        endGrabs(taken);
        taken.keyboards.clear();
        return false;
    }
    // The applications believe that what is down now stays down, unless they are told. A hot key that was posted has
    // grabbed the keyboard of posted keys, and the telling would come to us.
    if (keyboards.xtest) xcb_input_xi_ungrab_device(x_.get(), XCB_CURRENT_TIME, *keyboards.xtest);
    releaseForApplications(x_, keysDownForApplications(x_));
    if (keyboards.xtest) grabKeyboards(taken, {*keyboards.xtest});

    auto asked = taken.keyboards;
    asked.push_back(kMasterKeyboard);
    const auto states = modifierStates(x_, asked);
    taken.locksBefore = taken.locks = states.back();
    for (std::size_t i = 0; i < taken.keyboards.size(); ++i) taken.states[taken.keyboards[i]] = states[i];
    return true;
}

// False when one of them is refused. The grab stands on the root window, which never ceases to be viewable.
bool X11Keyboard::grabKeyboards(Taken& taken, const std::vector<std::uint16_t>& devices) {
    std::vector<xcb_input_xi_grab_device_cookie_t> asked;
    for (const std::uint16_t device : devices)
        asked.push_back(xcb_input_xi_grab_device(x_.get(), x_.root(), XCB_CURRENT_TIME, XCB_NONE, device,
                                                 XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
                                                 XCB_INPUT_GRAB_OWNER_NO_OWNER, 1, &kKeyMask));
    bool all = true;
    for (std::size_t i = 0; i < devices.size(); ++i) {
        const auto answer = x_.reply<xcb_input_xi_grab_device_reply>(asked[i]);
        const bool had = answer && answer->status == XCB_GRAB_STATUS_SUCCESS;
        if (had) taken.keyboards.push_back(devices[i]);
        all = all && had;
    }
    return all;
}

bool X11Keyboard::grabWholeKeyboard() {
    for (int tries = 0; tries < kTries; ++tries) {
        if (tries > 0) std::this_thread::sleep_for(kRetryStep);
        const auto answer = x_.reply<xcb_grab_keyboard_reply>(
            xcb_grab_keyboard(x_.get(), 0, x_.root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        if (!answer) return false;
        if (answer->status == XCB_GRAB_STATUS_SUCCESS) return true;
    }
    return false;
}

// A window of this connection gets the focus and not the panel, so that the monitor sees the keys first.
void X11Keyboard::takeFocus(const Taken& taken) {
    x_.remains().focus = taken.focus;
    if (focusWindow_ == XCB_WINDOW_NONE) {
        focusWindow_ = xcb_generate_id(x_.get());
        const std::uint32_t values[] = {
            1, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_FOCUS_CHANGE};
        xcb_create_window(x_.get(), XCB_COPY_FROM_PARENT, focusWindow_, x_.root(), -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                          XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    }
    xcb_map_window(x_.get(), focusWindow_);
    xcb_set_input_focus(x_.get(), XCB_INPUT_FOCUS_POINTER_ROOT, focusWindow_, XCB_CURRENT_TIME);
}

void X11Keyboard::watchForLoss(const Taken& taken, bool on) {
    buttonPresses_.reset();
    if (on)
        x_.selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    else
        x_.deselectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    if (hasXInput_ && on)
        buttonPresses_ = x_.selectXInputOnRoot(XCB_INPUT_DEVICE_ALL_MASTER, XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS);
    // Somebody's grab of the whole keyboard, such as a screen lock's, shows as the application's loss of the focus.
    if (taken.way != Way::eachKeyboard || taken.focusTop == XCB_WINDOW_NONE) return;
    const std::uint32_t mask = on ? XCB_EVENT_MASK_FOCUS_CHANGE : XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(x_.get(), taken.focus, XCB_CW_EVENT_MASK, &mask);
}

void X11Keyboard::releaseKeyboard() {
    if (!taken_) return;
    // The key that ends a search is being dealt with: what was typed after it is the application's.
    const bool isEndedByKey = isOffering_ || (taken_->busySince && !x_.isHandingOut());
    const bool passesOn = isEndedByKey && taken_->way == Way::eachKeyboard;
    if (taken_->way == Way::eachKeyboard) noteStates();
    const Taken taken = std::move(*taken_);
    taken_.reset();
    busyLimit_.reset();
    panelKeys_.setPanel(0);

    X11KeyEvent up;
    for (std::size_t k = 0; k < taken.forwarded.size(); ++k) {
        up.keycode = static_cast<std::uint8_t>(k);
        if (taken.forwarded[k]) sendKey(x_, taken.panel, up, 0, 0);
    }
    sendFocus(x_, taken.panel, PanelFocus::out);
    watchForLoss(taken, false);
    // Other programs that post keys wait meanwhile, so that all keys come in their order.
    if (passesOn) xcb_grab_server(x_.get());
    const auto typedSince = passesOn ? keysSince(taken) : std::vector<X11KeyEvent>();
    endGrabs(taken);
    passOn(typedSince);
    if (passesOn) xcb_ungrab_server(x_.get());
    if (taken.way == Way::eachKeyboard) {
        const std::uint8_t changed = taken.locks.locked ^ taken.locksBefore.locked;
        lockModifiers(x_, changed, changed & taken.locks.locked);
        if (taken.locks.lockedGroup != taken.locksBefore.lockedGroup) lockGroup(x_, taken.locks.lockedGroup);
        if (X11StandIns* standIns = panelKeys_.standIns()) standIns->standIn(modifiers_.four());
    }
    x_.flush();
}

// The presses that wait, and those that are still on their way to us; up to one that may be a hot key.
std::vector<X11KeyEvent> X11Keyboard::keysSince(const Taken& taken) {
    std::vector<X11KeyEvent> presses;
    const auto commands = static_cast<std::uint8_t>(modifiers_.four() & ~modifiers_.shift);
    bool isOver = false;
    const auto add = [&](const X11KeyEvent& key) {
        isOver = isOver || (key.isPress && (key.heldModifiers & commands) != 0);
        const bool isTyped = key.isPress && !key.isRepeat && modifiers_.maskOfKey(key.keycode) == 0;
        if (!isOver && isTyped) presses.push_back(key);
        return !isOver;
    };
    for (const X11KeyEvent& key : taken.waiting) add(key);
    x_.sync();
    x_.takeArrived([&](const xcb_generic_event_t& event) {
        const auto key = keyEventOf(x_, event);
        return key && taken.states.contains(key->device) && add(*key);
    });
    return presses;
}

// Each with the modifiers that it had. Where it is still down it doesn't repeat.
void X11Keyboard::passOn(const std::vector<X11KeyEvent>& keys) {
    if (keys.empty()) return;
    X11Remains& remains = x_.remains();
    remains.lockedModifiers = modifiers_.four();
    for (const X11KeyEvent& key : keys) {
        remains.noteKey(key.keycode, true);
        lockModifiers(x_, modifiers_.four(), key.heldModifiers & modifiers_.four());
        xcb_test_fake_input(x_.get(), XCB_KEY_PRESS, key.keycode, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
        xcb_test_fake_input(x_.get(), XCB_KEY_RELEASE, key.keycode, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
    }
    lockModifiers(x_, modifiers_.four(), 0);
    x_.sync();
    remains.lockedModifiers = 0;
    for (const X11KeyEvent& key : keys) remains.noteKey(key.keycode, false);
}

void X11Keyboard::endGrabs(const Taken& taken) {
    switch (taken.way) {
        case Way::eachKeyboard:
            for (const std::uint16_t device : taken.keyboards)
                xcb_input_xi_ungrab_device(x_.get(), XCB_CURRENT_TIME, device);
            return;
        case Way::wholeKeyboard:
            xcb_ungrab_keyboard(x_.get(), XCB_CURRENT_TIME);
            return;
        case Way::focus: {
            const auto focus = x_.reply<xcb_get_input_focus_reply>(xcb_get_input_focus(x_.get()));
            if (focus && focus->focus == focusWindow_)
                xcb_set_input_focus(x_.get(), XCB_INPUT_FOCUS_POINTER_ROOT, taken.focus, XCB_CURRENT_TIME);
            xcb_unmap_window(x_.get(), focusWindow_);
            x_.sync();
            x_.remains().focus = XCB_WINDOW_NONE;
            return;
        }
    }
}

bool X11Keyboard::isComposited() { return tarvix::isComposited(x_); }

std::unique_ptr<HazeSurface> X11Keyboard::makeHazeSurface() { return std::make_unique<X11HazeSurface>(x_, stack_); }

Handled X11Keyboard::handle(const xcb_generic_event_t& event) {
    const int type = event.response_type & 0x7f;
    if (type == XCB_MAPPING_NOTIFY) modifiers_ = X11Modifiers::read(x_);
    if (!taken_) return Handled::no;
    if (auto key = keyEventOf(x_, event)) {
        key->ownModifiers = panelKeys_.takeOwnKey(key->sequence);
        return handleKey(*key);
    }
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto& changed = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (changed.window == x_.root() && changed.atom == x_.atom("_NET_ACTIVE_WINDOW")) activeWindowChanged();
    } else if (type == XCB_MAP_NOTIFY) {
        // A screen lock. It may be waiting for a keyboard that is ours, and what is typed next may be a password.
        if (coversAScreen(x_, reinterpret_cast<const xcb_map_notify_event_t&>(event), taken_->panel)) lose();
    } else if (type == XCB_FOCUS_OUT) {
        focusLeft(reinterpret_cast<const xcb_focus_out_event_t&>(event));
    } else if (const auto* raw = asXInput(x_, event, {XCB_INPUT_RAW_BUTTON_PRESS})) {
        buttonPressed(*reinterpret_cast<const xcb_input_raw_button_press_event_t*>(raw));
    } else if (const auto* devices = asXInput(x_, event, {XCB_INPUT_HIERARCHY})) {
        constexpr std::uint32_t coming = XCB_INPUT_HIERARCHY_MASK_SLAVE_ADDED | XCB_INPUT_HIERARCHY_MASK_DEVICE_ENABLED;
        if ((reinterpret_cast<const xcb_input_hierarchy_event_t*>(devices)->flags & coming) != 0) keyboardsChanged();
    }
    return Handled::no;
}

Handled X11Keyboard::handleKey(const X11KeyEvent& key) {
    if (taken_->way == Way::eachKeyboard && !taken_->states.contains(key.device)) return Handled::no;
    taken_->waiting.push_back(key);
    processWaiting();
    return Handled::yes;
}

bool X11Keyboard::panelIsBusy() const {
    return taken_->busySince && std::chrono::steady_clock::now() - *taken_->busySince < kBusyLimit;
}

void X11Keyboard::processWaiting() {
    while (taken_ && !taken_->waiting.empty() && !panelIsBusy()) {
        const X11KeyEvent key = taken_->waiting.front();
        taken_->waiting.pop_front();
        taken_->busySince.reset();
        process(key);
    }
    waitForPanel();
}

void X11Keyboard::waitForPanel() {
    if (!taken_ || taken_->waiting.empty()) return busyLimit_.reset();
    if (!busyLimit_)
        busyLimit_ = x_.after(kBusyLimit, [this] {
            busyLimit_.reset();
            processWaiting();
        });
}

void X11Keyboard::readyForKeyPress() {
    if (!taken_) return;
    taken_->isPaced = true;
    taken_->busySince.reset();
    processWaiting();
}

void X11Keyboard::process(const X11KeyEvent& key) {
    if (taken_->way == Way::eachKeyboard) {
        ModifierState before{key.heldModifiers, key.lockedModifiers, key.lockedGroup};
        noteState(key.device, before);
    }
    if (!key.isPress) {
        const bool known = taken_->forwarded[key.keycode];
        taken_->down[key.keycode] = taken_->forwarded[key.keycode] = false;
        if (known) forward(key);
    } else {
        // A key that was down before, such as the hot key's, only repeats.
        if (key.isRepeat && !taken_->down[key.keycode]) return;
        taken_->down[key.keycode] = true;
        if (isConsumed(key)) return;
        taken_->forwarded[key.keycode] = true;
        if (taken_->isPaced) taken_->busySince = std::chrono::steady_clock::now();
        forward(key);
    }
    noteModifierKey(key);
}

// True also when the monitor has given the keyboard back.
bool X11Keyboard::isConsumed(const X11KeyEvent& key) {
    const auto keyCode = keyCodeOfX11(key.keycode);
    if (!keyCode) return false;
    const std::uint32_t since = taken_->since;
    isOffering_ = true;
    const Verdict verdict =
        panelKeys_.offer({KeyEventType::keyDown, *keyCode, modifiers_.eventFlags(modifiersOf(key))});
    isOffering_ = false;
    return verdict == Verdict::consume || !taken_ || taken_->since != since;
}

void X11Keyboard::forward(const X11KeyEvent& key) {
    const auto group = static_cast<std::uint8_t>(key.heldGroup + taken_->locks.lockedGroup);
    sendKey(x_, taken_->panel, key, modifiersOf(key), group);
    x_.flush();
}

std::uint8_t X11Keyboard::modifiersOf(const X11KeyEvent& key) const {
    if (key.ownModifiers) return *key.ownModifiers;
    std::uint8_t modifiers = key.heldModifiers | taken_->locks.locked;
    for (const auto& [device, state] : taken_->states)
        if (device != key.device) modifiers |= state.held;
    return modifiers;
}

// The locks of a grabbed keyboard are its own, for instance without what a program has locked for all; but what changes
// there now would have changed for all.
void X11Keyboard::noteState(std::uint16_t device, const ModifierState& now) {
    ModifierState& last = taken_->states[device];
    taken_->locks.locked ^= static_cast<std::uint8_t>(last.locked ^ now.locked);
    if (last.lockedGroup != now.lockedGroup) taken_->locks.lockedGroup = now.lockedGroup;
    last = now;
}

// An event tells the state before it, and the keys of the other keyboards need the one after it. The next event of the
// same keyboard tells it exactly.
void X11Keyboard::noteModifierKey(const X11KeyEvent& key) {
    const auto state = taken_->states.find(key.device);
    if (state == taken_->states.end()) return;
    const std::uint8_t own = modifiers_.maskOfKey(key.keycode) & static_cast<std::uint8_t>(~modifiers_.locks());
    std::uint8_t& held = state->second.held;
    held = static_cast<std::uint8_t>(key.isPress ? held | own : held & ~own);
}

void X11Keyboard::noteStates() {
    const auto states = modifierStates(x_, taken_->keyboards);
    for (std::size_t i = 0; i < states.size(); ++i) noteState(taken_->keyboards[i], states[i]);
}

// A keyboard that was plugged in during a search.
void X11Keyboard::keyboardsChanged() {
    if (taken_->way != Way::eachKeyboard) return;
    std::vector<std::uint16_t> added;
    for (const std::uint16_t device : readKeyboards(x_).all())
        if (!taken_->states.contains(device)) added.push_back(device);
    if (added.empty()) return;
    const std::size_t before = taken_->keyboards.size();
    grabKeyboards(*taken_, added);
    for (std::size_t i = before; i < taken_->keyboards.size(); ++i)
        taken_->states[taken_->keyboards[i]] = modifierStates(x_, {taken_->keyboards[i]}).front();
}

void X11Keyboard::activeWindowChanged() {
    const auto active = x_.items(x_.root(), "_NET_ACTIVE_WINDOW");
    // None is passed through on the way from one window to another, and stands while a focus is ours.
    if (active.empty() || active.front() == XCB_WINDOW_NONE) return;
    if (active.front() != taken_->activeWindow && active.front() != taken_->panel) lose();
}

void X11Keyboard::focusLeft(const xcb_focus_out_event_t& event) {
    if (event.detail == XCB_NOTIFY_DETAIL_POINTER || event.detail == XCB_NOTIFY_DETAIL_INFERIOR) return;
    if (taken_->way == Way::focus) return event.event == focusWindow_ ? lose() : void();
    if (event.event != taken_->focus) return;
    if (event.mode == XCB_NOTIFY_MODE_GRAB) return lose();
    if (event.mode == XCB_NOTIFY_MODE_UNGRAB) return;
    // The focus may also go from one inner window of the application to another.
    const auto focus = x_.reply<xcb_get_input_focus_reply>(xcb_get_input_focus(x_.get()));
    if (!focus || focus->focus <= XCB_INPUT_FOCUS_POINTER_ROOT) return;
    if (childrenOfRoot(x_, {focus->focus}).front() != taken_->focusTop) lose();
}

void X11Keyboard::buttonPressed(const xcb_input_raw_button_press_event_t& event) {
    const bool isOld = static_cast<std::int32_t>(event.full_sequence - taken_->since) < 0;
    if (isOld || panelKeys_.tookOwnPress(event.full_sequence) || isWheelButton(event.detail)) return;
    if (!pointerIsIn(taken_->panel)) lose();
}

bool X11Keyboard::pointerIsIn(xcb_window_t window) {
    const auto pointerAsked = xcb_query_pointer(x_.get(), window);
    const auto geometryAsked = xcb_get_geometry(x_.get(), window);
    const auto pointer = x_.reply<xcb_query_pointer_reply>(pointerAsked);
    const auto geometry = x_.reply<xcb_get_geometry_reply>(geometryAsked);
    return pointer && geometry && pointer->win_x >= 0 && pointer->win_y >= 0 && pointer->win_x < geometry->width &&
           pointer->win_y < geometry->height;
}

void X11Keyboard::lose() {
    const auto lost = std::move(taken_->lost);
    releaseKeyboard();
    if (lost) lost();
}

}  // namespace tarvix
