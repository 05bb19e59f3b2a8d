#include "KeyboardShortcuts/ShortcutText.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "base/Text.h"

namespace tarvix {

namespace {

constexpr std::string_view kNoText = "\uFFFD";
constexpr std::size_t kLongestText = 4;  // UTF-16 units

struct KeyRow {
    std::uint32_t keyCode;
    std::string_view text;
    std::string_view spoken = {};  // where it isn't the text
};

// clang-format off
constexpr auto kKeys = std::to_array<KeyRow>({
    {36, "\u21A9", "Return"},
    {51, "\u232B", "Backspace"},
    {117, "\u2326", "Delete"},
    {119, "\u2198", "End"},
    {53, "\u238B", "Escape"},
    {114, "?\u20DD", "Help"},
    {115, "\u2196", "Home"},
    {49, "Space"},
    {48, "\u21E5", "Tab"},
    {116, "\u21DE", "Page Up"},
    {121, "\u21DF", "Page Down"},
    {126, "\u2191", "Up"},
    {124, "\u2192", "Right"},
    {125, "\u2193", "Down"},
    {123, "\u2190", "Left"},
    {122, "F1"}, {120, "F2"}, {99, "F3"}, {118, "F4"}, {96, "F5"}, {97, "F6"}, {98, "F7"}, {100, "F8"}, {101, "F9"},
    {109, "F10"}, {103, "F11"}, {111, "F12"}, {105, "F13"}, {107, "F14"}, {113, "F15"}, {106, "F16"}, {64, "F17"},
    {79, "F18"}, {80, "F19"}, {90, "F20"},
    {82, "0\u20E3", "Keypad 0"},
    {83, "1\u20E3", "Keypad 1"},
    {84, "2\u20E3", "Keypad 2"},
    {85, "3\u20E3", "Keypad 3"},
    {86, "4\u20E3", "Keypad 4"},
    {87, "5\u20E3", "Keypad 5"},
    {88, "6\u20E3", "Keypad 6"},
    {89, "7\u20E3", "Keypad 7"},
    {91, "8\u20E3", "Keypad 8"},
    {92, "9\u20E3", "Keypad 9"},
    {71, "\u2612\u20E3", "Keypad Clear"},
    {65, ".\u20E3", "Keypad ."},
    {75, "/\u20E3", "Keypad /"},
    {76, "\u21A9\u20E3", "Keypad Enter"},
    {81, "=\u20E3", "Keypad ="},
    {78, "-\u20E3", "Keypad -"},
    {67, "*\u20E3", "Keypad *"},
    {69, "+\u20E3", "Keypad +"},
});
// clang-format on
static_assert(kKeys.size() == 53);

struct ModifierRow {
    std::uint64_t flag;
    std::string_view sign;
    std::string_view spoken;
};

constexpr auto kModifiers = std::to_array<ModifierRow>({
    {eventFlag::control, "⌃", "Ctrl"},
    {eventFlag::option, "⌥", "Alt"},
    {eventFlag::shift, "⇧", "Shift"},
    {eventFlag::command, "⌘", "Super"},
    {eventFlag::secondaryFn, "\U0001F310\uFE0E", "Fn"},
});

const KeyRow* rowOf(std::uint32_t keyCode) {
    const auto found = std::ranges::find(kKeys, keyCode, &KeyRow::keyCode);
    return found == kKeys.end() ? nullptr : &*found;
}

std::string shownKey(std::uint32_t keyCode, InputSources& inputSources) {
    return capitalized(keyText(keyCode, inputSources).value_or(std::string(kNoText)));
}

}  // namespace

std::optional<std::string> keyText(std::uint32_t keyCode, InputSources& inputSources) {
    if (const KeyRow* row = rowOf(keyCode)) return std::string(row->text);
    constexpr std::uint32_t lastPosition = 127;
    if (keyCode > lastPosition) return std::nullopt;
    const InputSourceInfo source = inputSources.currentASCIICapable();
    if (!source.hasLayoutData) return std::nullopt;
    auto text = inputSources.translate(source, static_cast<std::uint16_t>(keyCode), 0);
    if (!text || text->empty() || utf16Length(*text) > kLongestText) return std::nullopt;
    return text;
}

std::string modifiersText(std::uint64_t eventFlags) {
    std::string text;
    for (const ModifierRow& modifier : kModifiers)
        if (eventFlags & modifier.flag) text += modifier.sign;
    return text;
}

std::string displayText(const Shortcut& shortcut, InputSources& inputSources) {
    return modifiersText(ModifierTransformer::eventFlags(shortcut.carbonModifiers)) +
           shownKey(shortcut.carbonKeyCode, inputSources);
}

std::string spokenText(const Shortcut& shortcut, InputSources& inputSources) {
    const std::uint64_t flags = ModifierTransformer::eventFlags(shortcut.carbonModifiers);
    std::string text;
    for (const ModifierRow& modifier : kModifiers)
        if (flags & modifier.flag) text.append(modifier.spoken).append("+");
    const KeyRow* const row = rowOf(shortcut.carbonKeyCode);
    return text +
           (row && !row->spoken.empty() ? std::string(row->spoken) : shownKey(shortcut.carbonKeyCode, inputSources));
}

}  // namespace tarvix
