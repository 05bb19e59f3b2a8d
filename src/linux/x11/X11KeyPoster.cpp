#include "linux/x11/X11KeyPoster.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <cstddef>

#include "linux/x11/X11KeyState.h"
#include "linux/x11/XInputKeyboards.h"

namespace tarvix {

// Everything between the first lock and its end is sent in one burst, so that nothing stays when the process is killed.
void X11KeyPoster::post(std::uint8_t eventType, std::uint8_t keycode, std::uint8_t wanted, NumLock numLock,
                        const X11Modifiers& modifiers) {
    ModifierState state = modifierStates(x_, {kMasterKeyboard}).front();
    Lifted lifted;
    if (const auto unwanted = static_cast<std::uint8_t>(state.held & ~wanted); unwanted != 0) {
        lifted = lift(unwanted, modifiers);
        state = modifierStates(x_, {kMasterKeyboard}).front();
    }
    const auto numLocked =
        static_cast<std::uint8_t>(modifiers.numLock & (numLock == NumLock::on ? modifiers.numLock : state.locked));
    const auto locks = static_cast<std::uint8_t>((wanted & ~state.held) | numLocked);
    const auto changed = static_cast<std::uint8_t>(locks ^ state.locked);
    lockModifiers(x_, changed, locks & changed);
    fake(eventType, keycode);
    lockModifiers(x_, changed, state.locked & changed);
    putBack(lifted);
    x_.flush();
}

// The applications see those keys go up. A key that a hand holds doesn't as long as its keyboard is theirs.
X11KeyPoster::Lifted X11KeyPoster::lift(std::uint8_t unwanted, const X11Modifiers& modifiers) {
    Lifted lifted;
    const auto keyboards = readKeyboards(x_);
    grab(lifted, keyboards.physical, unwanted);
    // Alt or Super that goes down and up with nothing in between opens a menu.
    const bool isMenuKey = (unwanted & (modifiers.option | modifiers.command)) != 0;
    if (isMenuKey && modifiers.silentKey) tap(*modifiers.silentKey);

    Keycodes keys;
    const Keycodes down = keysDownForApplications(x_);
    const Keycodes posted = keyboards.xtest ? keysDownOn(x_, {*keyboards.xtest}) : Keycodes();
    for (std::size_t k = 0; k < down.size(); ++k) {
        const auto keycode = static_cast<std::uint8_t>(k);
        if (!down[k] || (modifiers.maskOfKey(keycode) & unwanted) == 0) continue;
        keys.set(k);
        if (posted[k]) lifted.posted.push_back(keycode);
    }
    releaseForApplications(x_, keys);
    return lifted;
}

// Frozen for as long: what is typed there meanwhile comes to whom it was meant for when the grab ends.
void X11KeyPoster::grab(Lifted& lifted, const std::vector<std::uint16_t>& keyboards, std::uint8_t unwanted) {
    constexpr std::uint32_t noEvents = 0;
    const auto states = modifierStates(x_, keyboards);
    for (std::size_t i = 0; i < keyboards.size(); ++i) {
        if ((states[i].held & unwanted) == 0) continue;
        const auto grabbed = x_.reply<xcb_input_xi_grab_device_reply>(xcb_input_xi_grab_device(
            x_.get(), x_.root(), XCB_CURRENT_TIME, XCB_NONE, keyboards[i], XCB_INPUT_GRAB_MODE_22_SYNC,
            XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, 1, &noEvents));
        if (!grabbed || grabbed->status != XCB_GRAB_STATUS_SUCCESS) continue;
        lifted.keyboards.push_back(keyboards[i]);
        lifted.modifiers |= static_cast<std::uint8_t>(states[i].held & unwanted);
    }
}

// A posted key goes down again, while a hand's can't, since nobody knows whether it has let go meanwhile.
void X11KeyPoster::putBack(const Lifted& lifted) {
    for (const std::uint8_t keycode : lifted.posted) fake(XCB_KEY_PRESS, keycode);
    for (const std::uint16_t keyboard : lifted.keyboards)
        xcb_input_xi_ungrab_device(x_.get(), XCB_CURRENT_TIME, keyboard);
    if (lifted.modifiers != 0) standIns_.standIn(static_cast<std::uint8_t>(lifted.modifiers | standIns_.modifiers()));
}

void X11KeyPoster::tap(std::uint8_t keycode) {
    fake(XCB_KEY_PRESS, keycode);
    fake(XCB_KEY_RELEASE, keycode);
}

void X11KeyPoster::fake(std::uint8_t eventType, std::uint8_t keycode) {
    xcb_test_fake_input(x_.get(), eventType, keycode, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}

}  // namespace tarvix
