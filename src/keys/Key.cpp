#include "keys/Key.h"

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <string>

namespace tarvix {

namespace {

struct KeyRow {
    std::string_view rawValue;
    std::uint16_t qwertyKeyCode;
    std::string_view character = {};
    // The code of the keypad key with the same character, where there is one: on that code the character means the
    // keypad's key, elsewhere the other one.
    std::uint16_t keypadTwin = 0;
};

// clang-format off
constexpr auto keyRows = std::to_array<KeyRow>({
    {"a", 0},
    {"s", 1},
    {"d", 2},
    {"f", 3},
    {"h", 4},
    {"g", 5},
    {"z", 6},
    {"x", 7},
    {"c", 8},
    {"v", 9},
    {"b", 11},
    {"q", 12},
    {"w", 13},
    {"e", 14},
    {"r", 15},
    {"y", 16},
    {"t", 17},
    {"one", 18, "1", 83},
    {"two", 19, "2", 84},
    {"three", 20, "3", 85},
    {"four", 21, "4", 86},
    {"six", 22, "6", 88},
    {"five", 23, "5", 87},
    {"equal", 24, "=", 81},
    {"nine", 25, "9", 92},
    {"seven", 26, "7", 89},
    {"minus", 27, "-", 78},
    {"eight", 28, "8", 91},
    {"zero", 29, "0", 82},
    {"rightBracket", 30, "]"},
    {"o", 31},
    {"u", 32},
    {"leftBracket", 33, "["},
    {"i", 34},
    {"p", 35},
    {"l", 37},
    {"j", 38},
    {"quote", 39, "'"},
    {"k", 40},
    {"semicolon", 41, ";"},
    {"backslash", 42, "\\"},
    {"comma", 43, ",", 95},
    {"slash", 44, "/", 75},
    {"n", 45},
    {"m", 46},
    {"period", 47, ".", 65},
    {"grave", 50, "`"},
    {"keypadDecimal", 65, ".", 65},
    {"keypadMultiply", 67, "*"},
    {"keypadPlus", 69, "+"},
    {"keypadClear", 71},
    {"keypadDivide", 75, "/", 75},
    {"keypadEnter", 76},
    {"keypadMinus", 78, "-", 78},
    {"keypadEquals", 81, "=", 81},
    {"keypadZero", 82, "0", 82},
    {"keypadOne", 83, "1", 83},
    {"keypadTwo", 84, "2", 84},
    {"keypadThree", 85, "3", 85},
    {"keypadFour", 86, "4", 86},
    {"keypadFive", 87, "5", 87},
    {"keypadSix", 88, "6", 88},
    {"keypadSeven", 89, "7", 89},
    {"keypadEight", 91, "8", 91},
    {"keypadNine", 92, "9", 92},
    {"return", 36},
    {"tab", 48},
    {"space", 49},
    {"delete", 51},
    {"escape", 53},
    {"f17", 64},
    {"f18", 79},
    {"f19", 80},
    {"f20", 90},
    {"f5", 96},
    {"f6", 97},
    {"f7", 98},
    {"f3", 99},
    {"f8", 100},
    {"f9", 101},
    {"f11", 103},
    {"f13", 105},
    {"f16", 106},
    {"f14", 107},
    {"f10", 109},
    {"f12", 111},
    {"f15", 113},
    {"help", 114},
    {"home", 115},
    {"pageUp", 116},
    {"forwardDelete", 117},
    {"f4", 118},
    {"end", 119},
    {"f2", 120},
    {"pageDown", 121},
    {"f1", 122},
    {"leftArrow", 123},
    {"rightArrow", 124},
    {"downArrow", 125},
    {"upArrow", 126},
    {"yen", 93, "¥"},
    {"underscore", 94, "_"},
    {"keypadComma", 95, ",", 95},
    {"eisu", 102},
    {"kana", 104},
    {"atSign", 33, "@"},
    {"caret", 24, "^"},
    {"colon", 39, ":"},
    {"section", 10, "§"},
});
// clang-format on
static_assert(keyRows.size() == keyCount);

struct SpecialKey {
    std::uint16_t keyCode;
    std::string_view text;
};

// clang-format off
constexpr auto specialKeys = std::to_array<SpecialKey>({
    {36, "\u21A9"},
    {48, "\u21E5"},
    {49, "Space"},
    {51, "\u232B"},
    {53, "\u238B"},
    {64, "F17"},
    {71, "\u2327"},
    {76, "\u2305"},
    {79, "F18"},
    {80, "F19"},
    {90, "F20"},
    {96, "F5"},
    {97, "F6"},
    {98, "F7"},
    {99, "F3"},
    {100, "F8"},
    {101, "F9"},
    {102, "英数"},
    {103, "F11"},
    {104, "かな"},
    {105, "F13"},
    {106, "F16"},
    {107, "F14"},
    {109, "F10"},
    {111, "F12"},
    {113, "F15"},
    {114, "?\u20DD"},
    {115, "\u2196"},
    {116, "\u21DE"},
    {117, "\u2326"},
    {118, "F4"},
    {119, "\u2198"},
    {120, "F2"},
    {121, "\u21DF"},
    {122, "F1"},
    {123, "\u2190"},
    {124, "\u2192"},
    {125, "\u2193"},
    {126, "\u2191"},
});
// clang-format on

const KeyRow& row(Key key) { return keyRows[static_cast<std::size_t>(key)]; }

template <class Matches>
std::optional<Key> firstKey(Matches matches) {
    const auto found = std::find_if(keyRows.begin(), keyRows.end(), matches);
    if (found == keyRows.end()) return std::nullopt;
    return static_cast<Key>(found - keyRows.begin());
}

std::string lowerCased(std::string_view text) {
    std::string lower;
    icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())})
        .toLower(icu::Locale::getRoot())
        .toUTF8String(lower);
    return lower;
}

// Our own texts have no capitals but ASCII ones.
bool isLowerCaseOf(std::string_view lower, std::string_view ours) {
    return std::equal(lower.begin(), lower.end(), ours.begin(), ours.end(), [](char a, char b) {
        return a == (b >= 'A' && b <= 'Z' ? static_cast<char>(b - 'A' + 'a') : b);
    });
}

bool isOnKeypad(const KeyRow& key) { return key.keypadTwin != 0 && key.keypadTwin == key.qwertyKeyCode; }

bool matchesCharacter(const KeyRow& key, std::string_view text, std::optional<std::uint16_t> virtualKeyCode) {
    if (key.character.empty() || text != key.character) return false;
    if (key.keypadTwin == 0) return true;
    return isOnKeypad(key) == (virtualKeyCode == key.keypadTwin);
}

// "keypad7", beside the raw value "keypadSeven".
bool matchesKeypadDigit(const KeyRow& key, std::string_view text) {
    constexpr std::string_view prefix = "keypad";
    const bool isDigit = key.character.size() == 1 && key.character[0] >= '0' && key.character[0] <= '9';
    return isDigit && isOnKeypad(key) && text.starts_with(prefix) && text.substr(prefix.size()) == key.character;
}

bool matchesSpecialText(const KeyRow& key, std::string_view text) {
    const auto special = specialKeyText(key.qwertyKeyCode);
    return special && isLowerCaseOf(text, *special);
}

}  // namespace

std::string_view rawValue(Key key) { return row(key).rawValue; }

std::optional<Key> keyFromRawValue(std::string_view rawValue) {
    return firstKey([&](const KeyRow& key) { return key.rawValue == rawValue; });
}

std::uint16_t qwertyKeyCode(Key key) { return row(key).qwertyKeyCode; }

std::optional<Key> keyForQwertyKeyCode(std::uint32_t keyCode) {
    return firstKey([&](const KeyRow& key) { return key.qwertyKeyCode == keyCode; });
}

std::optional<std::string_view> specialKeyText(std::uint32_t keyCode) {
    const auto found = std::find_if(specialKeys.begin(), specialKeys.end(),
                                    [&](const SpecialKey& special) { return special.keyCode == keyCode; });
    if (found == specialKeys.end()) return std::nullopt;
    return found->text;
}

std::optional<Key> keyFor(std::string_view character, std::optional<std::uint16_t> virtualKeyCode) {
    const std::string text = lowerCased(character);
    if (text == "\r" || text == "\n") return Key::return_;
    return firstKey([&](const KeyRow& key) {
        return isLowerCaseOf(text, key.rawValue) || matchesCharacter(key, text, virtualKeyCode) ||
               matchesKeypadDigit(key, text) || matchesSpecialText(key, text);
    });
}

}  // namespace tarvix
