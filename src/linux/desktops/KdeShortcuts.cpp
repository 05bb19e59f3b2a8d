#include "linux/desktops/KdeShortcuts.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "linux/desktops/KeyNames.h"
#include "platform/Modifiers.h"

namespace tarvix {

namespace {

constexpr auto kModifiers = std::to_array<ModifierName>({
    {"Ctrl", carbonModifier::control},
    {"Shift", carbonModifier::shift},
    {"Alt", carbonModifier::option},
    {"Meta", carbonModifier::command},
});

struct KeyName {
    std::string_view name, keysym;
};
// Where Qt has words of its own.
constexpr auto kKeys = std::to_array<KeyName>({
    {"Esc", "Escape"},
    {"Backtab", "ISO_Left_Tab"},
    {"Backspace", "BackSpace"},
    {"Enter", "KP_Enter"},
    {"Ins", "Insert"},
    {"Del", "Delete"},
    {"PgUp", "Page_Up"},
    {"PgDown", "Page_Down"},
    {"CapsLock", "Caps_Lock"},
    {"NumLock", "Num_Lock"},
    {"ScrollLock", "Scroll_Lock"},
    {"Volume Down", "XF86AudioLowerVolume"},
    {"Volume Mute", "XF86AudioMute"},
    {"Volume Up", "XF86AudioRaiseVolume"},
    {"Microphone Mute", "XF86AudioMicMute"},
    {"Media Play", "XF86AudioPlay"},
    {"Media Stop", "XF86AudioStop"},
    {"Media Previous", "XF86AudioPrev"},
    {"Media Next", "XF86AudioNext"},
    {"Media Pause", "XF86AudioPause"},
    {"Home Page", "XF86HomePage"},
    {"Launch Mail", "XF86Mail"},
    {"Search", "XF86Search"},
    {"Monitor Brightness Up", "XF86MonBrightnessUp"},
    {"Monitor Brightness Down", "XF86MonBrightnessDown"},
    {"Keyboard Brightness Up", "XF86KbdBrightnessUp"},
    {"Keyboard Brightness Down", "XF86KbdBrightnessDown"},
    {"Power Off", "XF86PowerOff"},
    {"Screensaver", "XF86ScreenSaver"},
    {"Calculator", "XF86Calculator"},
    {"Touchpad Toggle", "XF86TouchpadToggle"},
    {"Touchpad On", "XF86TouchpadOn"},
    {"Touchpad Off", "XF86TouchpadOff"},
    {"!", "exclam"},
    {"\"", "quotedbl"},
    {"#", "numbersign"},
    {"$", "dollar"},
    {"%", "percent"},
    {"&", "ampersand"},
    {"'", "apostrophe"},
    {"(", "parenleft"},
    {")", "parenright"},
    {"*", "asterisk"},
    {"+", "plus"},
    {",", "comma"},
    {"-", "minus"},
    {".", "period"},
    {"/", "slash"},
    {":", "colon"},
    {";", "semicolon"},
    {"<", "less"},
    {"=", "equal"},
    {">", "greater"},
    {"?", "question"},
    {"@", "at"},
    {"[", "bracketleft"},
    {"\\", "backslash"},
    {"]", "bracketright"},
    {"^", "asciicircum"},
    {"_", "underscore"},
    {"`", "grave"},
    {"{", "braceleft"},
    {"|", "bar"},
    {"}", "braceright"},
    {"~", "asciitilde"},
});

constexpr auto kKeypad = std::to_array<KeyName>({
    {"+", "KP_Add"},
    {"-", "KP_Subtract"},
    {"*", "KP_Multiply"},
    {"/", "KP_Divide"},
    {".", "KP_Decimal"},
    {"Enter", "KP_Enter"},
});

std::string keysymOf(std::string_view key, bool isKeypad) {
    const std::span<const KeyName> names = isKeypad ? std::span<const KeyName>(kKeypad) : kKeys;
    const auto row = std::ranges::find(names, key, &KeyName::name);
    if (row != names.end()) return std::string(row->keysym);
    return (isKeypad ? "KP_" : "") + std::string(key);
}

// "Meta+Ctrl+Esc"; with "Num+" the key is the keypad's.
std::optional<DesktopShortcut> portableShortcut(std::string_view text) {
    std::uint32_t modifiers = 0;
    bool isKeypad = false;
    for (std::size_t plus = text.find('+'); plus != std::string_view::npos && plus > 0 && plus + 1 < text.size();
         plus = text.find('+')) {
        const std::string_view name = text.substr(0, plus);
        const auto modifier = modifierOf(name, kModifiers);
        if (!modifier && name != "Num") return std::nullopt;
        isKeypad = isKeypad || !modifier;
        modifiers |= modifier.value_or(0);
        text.remove_prefix(plus + 1);
    }
    auto key = keyNamed(keysymOf(text, isKeypad));
    if (key) key->modifiers = modifiers;
    return key;
}

// The first field of a list, whose fields are parted by commas, a comma in a field being written "\,"; and in that the
// alternatives, parted by tabs, which are written "\t".
std::vector<std::string> alternativesOf(std::string_view value) {
    std::vector<std::string> alternatives(1);
    for (std::size_t i = 0; i < value.size() && value[i] != ','; ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            alternatives.back() += value[i];
        } else if (value[++i] == 't') {
            alternatives.emplace_back();
        } else {
            alternatives.back() += value[i];
        }
    }
    return alternatives;
}

}  // namespace

DesktopShortcuts kdeShortcuts(std::string_view text) {
    DesktopShortcuts shortcuts;
    for (const std::string_view line : linesOf(text)) {
        const std::size_t equals = line.find('=');
        const std::string_view key = trimmed(line.substr(0, std::min(equals, line.size())));
        // What else a group tells of itself begins with "_k_".
        if (equals == std::string_view::npos || key.starts_with('#') || key.starts_with('[') || key.starts_with("_k_"))
            continue;
        for (const std::string& alternative : alternativesOf(trimmed(line.substr(equals + 1))))
            if (const auto shortcut = portableShortcut(alternative); shortcut && alternative != "none")
                shortcuts.push_back(*shortcut);
    }
    return shortcuts;
}

}  // namespace tarvix
