#include "linux/x11/X11KeyPoster.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "linux/x11/X11KeyEvent.h"
#include "linux/x11/XInputKeyboards.h"

namespace tarvix {

using Handled = X11Connection::Handled;

namespace {

constexpr std::size_t kMostWindowsKept = 8;
constexpr std::uint32_t kKeyMask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;

bool isNotBefore(std::uint32_t sequence, std::uint32_t other) {
    return static_cast<std::int32_t>(sequence - other) >= 0;
}

}  // namespace

X11KeyPoster::X11KeyPoster(X11Connection& connection, X11StandIns& standIns) : x_(connection), standIns_(standIns) {
    events_ = x_.onEvent([this](const xcb_generic_event_t& event) { return handle(event); });
}

// Everything that changes what the applications see is sent in one burst and without waiting, so that it is over at
// once.
void X11KeyPoster::post(std::uint8_t eventType, std::uint8_t keycode, std::uint8_t wanted, NumLock numLock,
                        const X11Modifiers& modifiers) {
    const ModifierState state = modifierStates(x_, {kMasterKeyboard}).front();
    const auto unwanted = static_cast<std::uint8_t>(state.held & ~wanted);
    const Unwanted keys = unwanted != 0 ? find(unwanted, modifiers) : Unwanted();
    const auto numLocked =
        static_cast<std::uint8_t>(modifiers.numLock & (numLock == NumLock::on ? modifiers.numLock : state.locked));
    const auto locks = static_cast<std::uint8_t>((wanted & ~state.held) | numLocked);
    const auto changed = static_cast<std::uint8_t>(locks ^ state.locked);

    X11Remains& remains = x_.remains();
    const std::uint32_t standing = remains.lockedModifiers;
    remains.lockedModifiers = standing | (changed & locks);
    if (eventType == XCB_KEY_PRESS) remains.noteKey(keycode, true);
    lift(keys, modifiers);
    lockModifiers(x_, changed, locks & changed);
    fake(eventType, keycode);
    lockModifiers(x_, changed, state.locked & changed);
    putBack(keys);
    x_.sync();  // whatever is locked or unlocked after this call stays so
    if (eventType == XCB_KEY_RELEASE) remains.noteKey(keycode, false);
    remains.lockedModifiers = standing;
    if (!keys.keyboards.empty()) standIns_.standIn(static_cast<std::uint8_t>(~modifiers.locks()));
}

X11KeyPoster::Unwanted X11KeyPoster::find(std::uint8_t unwanted, const X11Modifiers& modifiers) {
    Unwanted found;
    found.isMenuKey = (unwanted & (modifiers.option | modifiers.command)) != 0;
    const auto keyboards = readKeyboards(x_);
    const auto states = modifierStates(x_, keyboards.physical);
    for (std::size_t i = 0; i < states.size(); ++i)
        if ((states[i].held & unwanted) != 0) found.keyboards.push_back(keyboards.physical[i]);

    const Keycodes down = keysDownForApplications(x_);
    const Keycodes posted = keyboards.xtest ? keysDownOn(x_, {*keyboards.xtest}) : Keycodes();
    for (std::size_t k = 0; k < down.size(); ++k) {
        const auto keycode = static_cast<std::uint8_t>(k);
        if (!down[k] || (modifiers.maskOfKey(keycode) & unwanted) == 0) continue;
        found.keys.set(k);
        if (posted[k]) found.posted.push_back(keycode);
    }
    if (found.keys.none()) found.keyboards.clear();  // the hand has just let go
    return found;
}

// A key that a hand holds doesn't go up for the applications as long as its keyboard is theirs.
void X11KeyPoster::lift(const Unwanted& unwanted, const X11Modifiers& modifiers) {
    Window window{0, 0, unwanted.keyboards, {}};
    for (const std::uint16_t keyboard : unwanted.keyboards) {
        const auto grab = xcb_input_xi_grab_device_unchecked(x_.get(), x_.root(), XCB_CURRENT_TIME, XCB_NONE, keyboard,
                                                             XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
                                                             XCB_INPUT_GRAB_OWNER_NO_OWNER, 1, &kKeyMask);
        if (window.first == 0) window.first = grab.sequence;
        xcb_discard_reply(x_.get(), grab.sequence);
    }
    if (!window.keyboards.empty()) windows_.push_back(std::move(window));
    if (windows_.size() > kMostWindowsKept) windows_.pop_front();
    // Alt or Super that goes down and up with nothing in between opens a menu.
    if (unwanted.isMenuKey && modifiers.silentKey) tap(*modifiers.silentKey);
    releaseForApplications(x_, unwanted.keys);
}

// A posted key goes down again, while a hand's can't, since nobody knows whether it has let go meanwhile.
void X11KeyPoster::putBack(const Unwanted& unwanted) {
    for (const std::uint8_t keycode : unwanted.posted) fake(XCB_KEY_PRESS, keycode);
    for (const std::uint16_t keyboard : unwanted.keyboards)
        windows_.back().last = xcb_input_xi_ungrab_device(x_.get(), XCB_CURRENT_TIME, keyboard).sequence;
}

// What hands have typed within a window is given to the applications now. A key that went down goes up at once: its own
// release may have come already, and if not, it finds nothing to do.
Handled X11KeyPoster::handle(const xcb_generic_event_t& event) {
    const auto key = windows_.empty() ? std::nullopt : keyEventOf(x_, event);
    if (!key) return Handled::no;
    const auto window = std::ranges::find_if(windows_, [&](const Window& w) {
        return std::ranges::count(w.keyboards, key->device) > 0 && isNotBefore(key->sequence, w.first) &&
               isNotBefore(w.last, key->sequence);
    });
    if (window == windows_.end()) return Handled::no;
    if (key->isPress && !key->isRepeat) {
        window->pressed.set(key->keycode);
        tap(key->keycode);
    } else if (!key->isPress && !window->pressed[key->keycode]) {
        fake(XCB_KEY_RELEASE, key->keycode);
    }
    x_.flush();
    return Handled::yes;
}

void X11KeyPoster::tap(std::uint8_t keycode) {
    fake(XCB_KEY_PRESS, keycode);
    fake(XCB_KEY_RELEASE, keycode);
}

void X11KeyPoster::fake(std::uint8_t eventType, std::uint8_t keycode) {
    xcb_test_fake_input(x_.get(), eventType, keycode, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}

}  // namespace tarvix
