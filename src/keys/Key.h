// The physical keys, and what a text or a key code says about which of them it is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tarvix {

// In the order that decides between two keys with one code (24, 33 and 39 stand twice, for the Japanese layout has
// other characters on those keys) or one text. `return_` and `delete_` are "return" and "delete".
// clang-format off
enum class Key : std::uint8_t {
    a, s, d, f, h, g, z, x, c, v, b, q, w, e, r, y, t, one, two, three, four, six, five, equal, nine, seven,
    minus, eight, zero, rightBracket, o, u, leftBracket, i, p, l, j, quote, k, semicolon, backslash, comma,
    slash, n, m, period, grave, keypadDecimal, keypadMultiply, keypadPlus, keypadClear, keypadDivide,
    keypadEnter, keypadMinus, keypadEquals, keypadZero, keypadOne, keypadTwo, keypadThree, keypadFour,
    keypadFive, keypadSix, keypadSeven, keypadEight, keypadNine, return_, tab, space, delete_, escape, f17,
    f18, f19, f20, f5, f6, f7, f3, f8, f9, f11, f13, f16, f14, f10, f12, f15, help, home, pageUp,
    forwardDelete, f4, end, f2, pageDown, f1, leftArrow, rightArrow, downArrow, upArrow, yen, underscore,
    keypadComma, eisu, kana, atSign, caret, colon, section,
};
// clang-format on
inline constexpr std::size_t keyCount = static_cast<std::size_t>(Key::section) + 1;

std::string_view rawValue(Key key);
std::optional<Key> keyFromRawValue(std::string_view rawValue);

// The code of the key on the standard US layout. Codes are positions: every keyboard event of the system carries one.
std::uint16_t qwertyKeyCode(Key key);
// The first key with that code, so never `caret`, `atSign` or `colon`.
std::optional<Key> keyForQwertyKeyCode(std::uint32_t keyCode);

// The display text of a key that no layout translates, such as return or an F key; absent for every other code.
std::optional<std::string_view> specialKeyText(std::uint32_t keyCode);

// The key that a text means which a layout gives for a key without modifiers. The code tells the keypad's digits and
// signs from those of the main block; without one they mean the main block.
std::optional<Key> keyFor(std::string_view character, std::optional<std::uint16_t> virtualKeyCode = std::nullopt);

}  // namespace tarvix
