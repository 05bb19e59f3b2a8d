#include "keys/VimKey.h"

#include <algorithm>
#include <array>

namespace tarvix {

namespace {

// clang-format off
constexpr auto rawValues = std::to_array<std::string_view>({
    "A", "a", "B", "b", "backspace", "backtick", "C", "c", "caret", "colon", "comma", "controlB", "controlD",
    "controlF", "controlH", "controlJ", "controlLeftArrow", "controlLeftBracket", "controlM", "controlN",
    "controlP", "controlR", "controlRightArrow", "controlU", "D", "d", "delete", "dollarSign", "dot",
    "doubleQuote", "downArrow", "E", "e", "end", "enter", "exclamationMark", "8", "escape", "F", "f", "5", "4",
    "G", "g", "H", "h", "home", "I", "i", "interrogationMark", "J", "j", "k", "L", "l", "leftArrow",
    "leftBrace", "leftBracket", "leftChevron", "leftParenthesis", "M", "minus", "N", "n", "9", "O", "o", "1",
    "P", "p", "pageDown", "pageUp", "percent", "plus", "q", "R", "r", "return", "rightArrow", "rightBrace",
    "rightBracket", "rightChevron", "rightParenthesis", "S", "s", "semicolon", "7", "shiftDownArrow",
    "shiftLeftArrow", "shiftRightArrow", "shiftUpArrow", "singleQuote", "6", "slash", "space", "T", "t", "3",
    "tilde", "2", "U", "u", "underscore", "upArrow", "V", "v", "W", "w", "X", "x", "Y", "y", "Z", "z", "0",
});
// clang-format on
static_assert(rawValues.size() == vimKeyCount);

}  // namespace

std::string_view rawValue(VimKey key) { return rawValues[static_cast<std::size_t>(key)]; }

std::optional<VimKey> vimKeyFromRawValue(std::string_view rawValue) {
    const auto found = std::find(rawValues.begin(), rawValues.end(), rawValue);
    if (found == rawValues.end()) return std::nullopt;
    return static_cast<VimKey>(found - rawValues.begin());
}

}  // namespace tarvix
