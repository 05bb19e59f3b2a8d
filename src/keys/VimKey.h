// The logical keys of a keyboard-driven editor: what a physical key and its modifiers mean together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tarvix {

// Upper and lower case stand apart and shifted punctuation has names of its own. The vocabulary has gaps, and they are
// wanted: no `K`, no `Q`, no lower-case `m`, no `=`, no backslash, no tab. `return_` and `delete_` are "return" and
// "delete".
// clang-format off
enum class VimKey : std::uint8_t {
    A, a, B, b, backspace, backtick, C, c, caret, colon, comma, controlB, controlD, controlF, controlH,
    controlJ, controlLeftArrow, controlLeftBracket, controlM, controlN, controlP, controlR, controlRightArrow,
    controlU, D, d, delete_, dollarSign, dot, doubleQuote, downArrow, E, e, end, enter, exclamationMark, eight,
    escape, F, f, five, four, G, g, H, h, home, I, i, interrogationMark, J, j, k, L, l, leftArrow, leftBrace,
    leftBracket, leftChevron, leftParenthesis, M, minus, N, n, nine, O, o, one, P, p, pageDown, pageUp,
    percent, plus, q, R, r, return_, rightArrow, rightBrace, rightBracket, rightChevron, rightParenthesis, S,
    s, semicolon, seven, shiftDownArrow, shiftLeftArrow, shiftRightArrow, shiftUpArrow, singleQuote, six,
    slash, space, T, t, three, tilde, two, U, u, underscore, upArrow, V, v, W, w, X, x, Y, y, Z, z, zero,
};
// clang-format on
inline constexpr std::size_t vimKeyCount = static_cast<std::size_t>(VimKey::zero) + 1;

// The name of the case; for the ten digits, the digit.
std::string_view rawValue(VimKey key);
std::optional<VimKey> vimKeyFromRawValue(std::string_view rawValue);

}  // namespace tarvix
