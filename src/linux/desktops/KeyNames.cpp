#include "linux/desktops/KeyNames.h"

#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

#include "platform/Modifiers.h"

namespace tarvix {

namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kHexadecimal = "0x";
constexpr std::uint8_t kAboveTab = 49;  // the keycode of the key that GNOME calls by its place

// What GTK maps its virtual modifiers to on the keyboards of today.
constexpr auto kGtkModifiers = std::to_array<ModifierName>({
    {"Primary", carbonModifier::control},
    {"Control", carbonModifier::control},
    {"Ctrl", carbonModifier::control},
    {"Ctl", carbonModifier::control},
    {"Shift", carbonModifier::shift},
    {"Shft", carbonModifier::shift},
    {"Alt", carbonModifier::option},
    {"Meta", carbonModifier::option},
    {"Mod1", carbonModifier::option},
    {"Super", carbonModifier::command},
    {"Hyper", carbonModifier::command},
    {"Mod4", carbonModifier::command},
    {"Release", 0},
});

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool sameWord(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](char x, char y) { return lower(x) == lower(y); });
}

std::optional<std::uint8_t> keycodeOf(std::string_view name) {
    std::uint8_t keycode = 0;
    const char* const end = name.data() + name.size();
    const auto [stopped, error] = std::from_chars(name.data() + kHexadecimal.size(), end, keycode, 16);
    if (error != std::errc() || stopped != end || keycode == 0) return std::nullopt;
    return keycode;
}

}  // namespace

std::optional<std::uint32_t> modifierOf(std::string_view name, std::span<const ModifierName> names) {
    const auto found = std::ranges::find_if(names, [&](const ModifierName& row) { return sameWord(row.name, name); });
    if (found == names.end()) return std::nullopt;
    return found->carbon;
}

std::optional<DesktopShortcut> keyNamed(std::string_view name) {
    if (name.starts_with(kHexadecimal)) {
        const auto keycode = keycodeOf(name);
        return keycode ? std::optional(DesktopShortcut{0, *keycode, 0}) : std::nullopt;
    }
    if (sameWord(name, "Above_Tab")) return DesktopShortcut{0, kAboveTab, 0};
    const std::string text(name);
    xkb_keysym_t keysym = xkb_keysym_from_name(text.c_str(), XKB_KEYSYM_NO_FLAGS);
    if (keysym == XKB_KEY_NoSymbol) keysym = xkb_keysym_from_name(text.c_str(), XKB_KEYSYM_CASE_INSENSITIVE);
    if (keysym == XKB_KEY_NoSymbol) return std::nullopt;
    return DesktopShortcut{keysym, 0, 0};
}

std::optional<DesktopShortcut> shortcutOfParts(std::string_view text, char separator,
                                               std::span<const ModifierName> names) {
    std::uint32_t modifiers = 0;
    for (std::size_t end = text.find(separator); end != std::string_view::npos && end > 0 && end + 1 < text.size();
         end = text.find(separator)) {
        const auto modifier = modifierOf(trimmed(text.substr(0, end)), names);
        if (!modifier) return std::nullopt;
        modifiers |= *modifier;
        text.remove_prefix(end + 1);
    }
    text = trimmed(text);
    const std::string sign(1, separator);
    auto key = text == sign ? keyNamed(separator == '+' ? "plus" : "minus") : keyNamed(text);
    if (key) key->modifiers = modifiers;
    return key;
}

std::optional<DesktopShortcut> gtkAccelerator(std::string_view text) {
    std::uint32_t modifiers = 0;
    while (text.starts_with('<')) {
        const std::size_t end = text.find('>');
        if (end == std::string_view::npos) return std::nullopt;
        const auto modifier = modifierOf(text.substr(1, end - 1), kGtkModifiers);
        if (!modifier) return std::nullopt;
        modifiers |= *modifier;
        text.remove_prefix(end + 1);
    }
    auto key = keyNamed(text);
    if (key) key->modifiers = modifiers;
    return key;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::vector<std::string_view> wordsOf(std::string_view text) {
    std::vector<std::string_view> words;
    for (text = trimmed(text); !text.empty(); text = trimmed(text)) {
        const std::size_t end = std::min(text.find_first_of(kBlanks), text.size());
        words.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return words;
}

}  // namespace tarvix
