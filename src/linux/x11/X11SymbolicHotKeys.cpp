#include "linux/x11/X11SymbolicHotKeys.h"

#include <xkbcommon/xkbcommon.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>

#include "linux/desktops/DesktopFiles.h"
#include "linux/x11/EvdevKeyCodes.h"

namespace tarvix {

namespace {

std::string windowManagerName(X11Connection& connection) {
    const auto check = connection.items(connection.root(), "_NET_SUPPORTING_WM_CHECK");
    return check.empty() ? "" : connection.text(check.front(), "_NET_WM_NAME").value_or("");
}

using KeycodeOfKeysym = std::map<xkb_keysym_t, std::uint8_t>;

// The key that types a keysym most easily: of the first layout, without Shift.
KeycodeOfKeysym readKeysyms(X11Connection& connection) {
    KeycodeOfKeysym keycodes;
    const auto* setup = xcb_get_setup(connection.get());
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto map = connection.reply<xcb_get_keyboard_mapping_reply>(
        xcb_get_keyboard_mapping(connection.get(), setup->min_keycode, count));
    if (!map) return keycodes;
    const xcb_keysym_t* keysyms = xcb_get_keyboard_mapping_keysyms(map.get());
    for (std::size_t column = 0; column < map->keysyms_per_keycode; ++column)
        for (std::size_t key = 0; key < count; ++key)
            keycodes.emplace(xkb_keysym_to_lower(keysyms[key * map->keysyms_per_keycode + column]),
                             static_cast<std::uint8_t>(setup->min_keycode + key));
    return keycodes;
}

std::optional<std::uint32_t> positionOf(const DesktopShortcut& shortcut, const KeycodeOfKeysym& keycodes) {
    std::uint8_t keycode = shortcut.keycode;
    if (keycode == 0) {
        const auto found = keycodes.find(xkb_keysym_to_lower(shortcut.keysym));
        if (found == keycodes.end()) return std::nullopt;
        keycode = found->second;
    }
    return keyCodeOfX11(keycode);
}

}  // namespace

std::optional<std::vector<SymbolicHotKey>> readSymbolicHotKeys(X11Connection& connection) {
    const char* const desktop = std::getenv("XDG_CURRENT_DESKTOP");
    const auto shortcuts = readDesktopShortcuts({desktop ? desktop : "", windowManagerName(connection)});
    if (!shortcuts) return std::nullopt;
    const KeycodeOfKeysym keycodes = readKeysyms(connection);
    std::vector<SymbolicHotKey> hotKeys;
    for (const DesktopShortcut& shortcut : *shortcuts)
        hotKeys.push_back({true, positionOf(shortcut, keycodes), shortcut.modifiers});
    return hotKeys;
}

}  // namespace tarvix
