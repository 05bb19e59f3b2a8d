#include "linux/x11/X11KeyState.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <cstddef>
#include <vector>

#include "linux/x11/XcbXkb.h"

namespace tarvix {

namespace {

constexpr std::uint8_t kKeyClass = 0;  // of the input classes of a device's state

Keycodes keycodesOf(const std::uint8_t* bytes) {
    Keycodes keys;
    for (std::size_t k = 0; k < keys.size(); ++k) keys[k] = (bytes[k / 8] >> (k % 8) & 1) != 0;
    return keys;
}

}  // namespace

Keycodes keysDownForApplications(X11Connection& connection) {
    const auto map = connection.reply<xcb_query_keymap_reply>(xcb_query_keymap(connection.get()));
    return map ? keycodesOf(map->keys) : Keycodes();
}

Keycodes keysDownOn(X11Connection& connection, const std::vector<std::uint16_t>& devices) {
    std::vector<xcb_input_query_device_state_cookie_t> asked;
    for (const std::uint16_t device : devices)
        asked.push_back(xcb_input_query_device_state(connection.get(), static_cast<std::uint8_t>(device)));
    Keycodes keys;
    for (const auto cookie : asked) {
        const auto state = connection.reply<xcb_input_query_device_state_reply>(cookie);
        if (!state) continue;
        for (auto c = xcb_input_query_device_state_classes_iterator(state.get()); c.rem > 0;
             xcb_input_input_state_next(&c))
            if (c.data->class_id == kKeyClass)
                keys |= keycodesOf(reinterpret_cast<const xcb_input_key_state_t*>(c.data)->keys);
    }
    return keys;
}

void releaseForApplications(X11Connection& connection, const Keycodes& keys) {
    for (std::size_t k = 0; k < keys.size(); ++k)
        if (keys[k])
            xcb_test_fake_input(connection.get(), XCB_KEY_RELEASE, static_cast<std::uint8_t>(k), XCB_CURRENT_TIME,
                                XCB_WINDOW_NONE, 0, 0, 0);
}

void releaseStuckKeys(X11Connection& connection) {
    const auto down = keysDownForApplications(connection);
    if (down.none()) return;
    releaseForApplications(connection, down & ~keysDownOn(connection, readKeyboards(connection).all()));
}

std::vector<ModifierState> modifierStates(X11Connection& connection, const std::vector<std::uint16_t>& devices) {
    std::vector<xcb_xkb_get_state_cookie_t> asked;
    for (const std::uint16_t device : devices) asked.push_back(xcb_xkb_get_state(connection.get(), device));
    std::vector<ModifierState> states;
    for (const auto cookie : asked) {
        const auto state = connection.reply<xcb_xkb_get_state_reply>(cookie);
        states.push_back(state ? ModifierState{static_cast<std::uint8_t>(state->baseMods | state->latchedMods),
                                               state->lockedMods, state->lockedGroup}
                               : ModifierState{});
    }
    return states;
}

std::uint8_t modifiersHeldOn(X11Connection& connection, const std::vector<std::uint16_t>& devices) {
    std::uint8_t held = 0;
    for (const ModifierState& state : modifierStates(connection, devices)) held |= state.held;
    return held;
}

void lockModifiers(X11Connection& connection, std::uint8_t affected, std::uint8_t on) {
    if (affected != 0) xcb_xkb_latch_lock_state(connection.get(), XCB_XKB_ID_USE_CORE_KBD, affected, on, 0, 0, 0, 0, 0);
}

void lockGroup(X11Connection& connection, std::uint8_t group) {
    xcb_xkb_latch_lock_state(connection.get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, group, 0, 0, 0);
}

}  // namespace tarvix
