// Shortcuts of desktops as words: "Ctrl+Alt+Shift+Super+space".
#pragma once

#include <xkbcommon/xkbcommon.h>

#include <string>
#include <vector>

#include "linux/desktops/DesktopShortcut.h"
#include "platform/Modifiers.h"

namespace tarvix {

using Words = std::vector<std::string>;

inline std::string described(const DesktopShortcut& shortcut) {
    std::string words;
    if ((shortcut.modifiers & carbonModifier::control) != 0) words += "Ctrl+";
    if ((shortcut.modifiers & carbonModifier::option) != 0) words += "Alt+";
    if ((shortcut.modifiers & carbonModifier::shift) != 0) words += "Shift+";
    if ((shortcut.modifiers & carbonModifier::command) != 0) words += "Super+";
    if (shortcut.keycode != 0) return words + "keycode " + std::to_string(shortcut.keycode);
    char name[64] = {};
    xkb_keysym_get_name(shortcut.keysym, name, sizeof name);
    return words + name;
}

inline Words described(const DesktopShortcuts& shortcuts) {
    Words words;
    for (const DesktopShortcut& shortcut : shortcuts) words.push_back(described(shortcut));
    return words;
}

}  // namespace tarvix
