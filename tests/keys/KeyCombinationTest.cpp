#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <type_traits>

#include "keys/KeyCombination.h"

namespace tarvix {
namespace {

// Both mappings as names, so that a slip in the enumerations shows too. An empty text is none.
struct MappingRow {
    const char* key;
    const char* plain;
    const char* shift;
    const char* control;
};
// clang-format off
constexpr MappingRow mappingRows[] = {
    {"a", "a", "A", ""},
    {"s", "s", "S", ""},
    {"d", "d", "D", "controlD"},
    {"f", "f", "F", "controlF"},
    {"h", "h", "H", "controlH"},
    {"g", "g", "G", ""},
    {"z", "z", "Z", ""},
    {"x", "x", "X", ""},
    {"c", "c", "C", ""},
    {"v", "v", "V", ""},
    {"b", "b", "B", "controlB"},
    {"q", "q", "", ""},
    {"w", "w", "W", ""},
    {"e", "e", "E", ""},
    {"r", "r", "R", "controlR"},
    {"y", "y", "Y", ""},
    {"t", "t", "T", ""},
    {"one", "one", "exclamationMark", ""},
    {"two", "two", "", ""},
    {"three", "three", "", ""},
    {"four", "four", "dollarSign", ""},
    {"six", "six", "caret", ""},
    {"five", "five", "percent", ""},
    {"equal", "", "plus", ""},
    {"nine", "nine", "leftParenthesis", ""},
    {"seven", "seven", "", ""},
    {"minus", "minus", "underscore", ""},
    {"eight", "eight", "", ""},
    {"zero", "zero", "rightParenthesis", ""},
    {"rightBracket", "rightBracket", "rightBrace", ""},
    {"o", "o", "O", ""},
    {"u", "u", "U", "controlU"},
    {"leftBracket", "leftBracket", "leftBrace", "controlLeftBracket"},
    {"i", "i", "I", ""},
    {"p", "p", "P", "controlP"},
    {"l", "l", "L", ""},
    {"j", "j", "J", "controlJ"},
    {"quote", "singleQuote", "doubleQuote", ""},
    {"k", "k", "", ""},
    {"semicolon", "semicolon", "colon", ""},
    {"comma", "comma", "leftChevron", ""},
    {"slash", "slash", "interrogationMark", ""},
    {"n", "n", "N", "controlN"},
    {"m", "", "M", "controlM"},
    {"period", "dot", "rightChevron", ""},
    {"grave", "backtick", "tilde", ""},
    {"keypadEnter", "enter", "", ""},
    {"return", "return", "", ""},
    {"space", "space", "", ""},
    {"delete", "backspace", "", ""},
    {"escape", "escape", "", ""},
    {"home", "home", "", ""},
    {"pageUp", "pageUp", "", ""},
    {"forwardDelete", "delete", "", ""},
    {"end", "end", "", ""},
    {"pageDown", "pageDown", "", ""},
    {"leftArrow", "leftArrow", "shiftLeftArrow", "controlLeftArrow"},
    {"rightArrow", "rightArrow", "shiftRightArrow", "controlRightArrow"},
    {"downArrow", "downArrow", "shiftDownArrow", ""},
    {"upArrow", "upArrow", "shiftUpArrow", ""},
    {"caret", "caret", "", ""},
};
// clang-format on

const std::map<std::string, std::string> digits = {{"zero", "0"},  {"one", "1"},  {"two", "2"}, {"three", "3"},
                                                   {"four", "4"},  {"five", "5"}, {"six", "6"}, {"seven", "7"},
                                                   {"eight", "8"}, {"nine", "9"}};

std::optional<VimKey> named(const std::string& name) {
    const auto digit = digits.find(name);
    return vimKeyFromRawValue(digit == digits.end() ? name : digit->second);
}

TEST(VimKey, ThereAre115AndTheirRawValuesLeadBack) {
    EXPECT_EQ(vimKeyCount, 115u);
    std::set<std::string_view> seen;
    for (std::size_t i = 0; i < vimKeyCount; ++i) {
        const auto key = static_cast<VimKey>(i);
        EXPECT_TRUE(seen.insert(rawValue(key)).second) << rawValue(key);
        EXPECT_EQ(vimKeyFromRawValue(rawValue(key)), key);
    }
}

TEST(VimKey, DigitsAreRawDigitsAndTheGapsAreKept) {
    EXPECT_EQ(rawValue(VimKey::zero), "0");
    EXPECT_EQ(rawValue(VimKey::nine), "9");
    EXPECT_EQ(rawValue(VimKey::A), "A");
    EXPECT_EQ(rawValue(VimKey::a), "a");
    EXPECT_EQ(rawValue(VimKey::return_), "return");
    EXPECT_EQ(rawValue(VimKey::controlLeftBracket), "controlLeftBracket");
    for (const char* missing : {"K", "Q", "m", "equal", "backslash", "tab", "one", "zero", ""})
        EXPECT_EQ(vimKeyFromRawValue(missing), std::nullopt) << missing;
}

TEST(VimKeyMapping, EveryRowForwards) {
    std::size_t rows = 0;
    for (const MappingRow& row : mappingRows) {
        const Key key = keyFromRawValue(row.key).value();
        EXPECT_EQ(KeyCombination(key).vimKey(), named(row.plain)) << row.key;
        EXPECT_EQ(KeyCombination(key, {.shift = true}).vimKey(), named(row.shift)) << row.key;
        EXPECT_EQ(KeyCombination(key, {.control = true}).vimKey(), named(row.control)) << row.key;
        ++rows;
    }
    EXPECT_EQ(rows, vimKeyRows.size());
}

TEST(VimKeyMapping, AKeyWithoutARowGivesNone) {
    std::set<std::string_view> withRow;
    for (const MappingRow& row : mappingRows) withRow.insert(row.key);
    int without = 0;
    for (std::size_t i = 0; i < keyCount; ++i) {
        const auto key = static_cast<Key>(i);
        if (withRow.contains(rawValue(key))) continue;
        ++without;
        EXPECT_FALSE(KeyCombination(key).vimKey()) << rawValue(key);
        EXPECT_FALSE(KeyCombination(key, {.shift = true}).vimKey()) << rawValue(key);
        EXPECT_FALSE(KeyCombination(key, {.control = true}).vimKey()) << rawValue(key);
    }
    EXPECT_EQ(without, 48);
}

TEST(VimKeyMapping, EveryRowBackwards) {
    std::set<VimKey> reached;
    const auto check = [&](Key key, const char* name, KeyModifiers modifiers) {
        const auto vimKey = named(name);
        if (!vimKey) return;
        reached.insert(*vimKey);
        if (key == Key::caret) return;  // the one that stands twice
        EXPECT_EQ(KeyCombination(*vimKey), KeyCombination(key, modifiers)) << name;
    };
    for (const MappingRow& row : mappingRows) {
        const Key key = keyFromRawValue(row.key).value();
        check(key, row.plain, {});
        check(key, row.shift, {.shift = true});
        check(key, row.control, {.control = true});
    }
    EXPECT_EQ(reached.size(), vimKeyCount);
}

TEST(VimKeyMapping, TheReverseOfCaretIsShiftSix) {
    const KeyCombination caret(VimKey::caret, KeyCombinationAction::press);
    EXPECT_EQ(caret.key(), Key::six);
    EXPECT_TRUE(caret.shift);
    EXPECT_FALSE(caret.control);
    EXPECT_EQ(caret.action, KeyCombinationAction::press);
    EXPECT_EQ(caret.vimKey(), VimKey::caret);
}

TEST(VimKeyMapping, ForwardOfReverseIsTheSameForAll) {
    for (std::size_t i = 0; i < vimKeyCount; ++i) {
        const auto vimKey = static_cast<VimKey>(i);
        const KeyCombination combination(vimKey);
        EXPECT_EQ(vimKeyFor(combination.key(), combination.control, false, combination.shift, false), vimKey)
            << rawValue(vimKey);
        EXPECT_FALSE(combination.fn || combination.option || combination.command);
    }
}

TEST(KeyCombination, WithoutALogicalKeyItStillComparesByKeyAndModifiers) {
    const KeyCombination combinations[] = {
        {Key::m},
        {Key::equal},
        {Key::tab},
        {Key::q, {.shift = true}},
        {Key::k, {.shift = true}},
        {Key::two, {.shift = true}},
        {Key::three, {.shift = true}},
        {Key::seven, {.shift = true}},
        {Key::eight, {.shift = true}},
    };
    for (const KeyCombination& a : combinations) {
        EXPECT_FALSE(a.vimKey()) << rawValue(a.key());
        for (const KeyCombination& b : combinations) EXPECT_EQ(a == b, &a == &b);
    }
}

TEST(KeyCombination, ControlGivesTheControlColumn) {
    EXPECT_EQ(KeyCombination(Key::a, {.control = true}).vimKey(), std::nullopt);
    EXPECT_EQ(KeyCombination(Key::d, {.control = true}).vimKey(), VimKey::controlD);
}

TEST(KeyCombination, ControlAndShiftTogetherGiveNoLogicalKey) {
    for (std::size_t i = 0; i < keyCount; ++i)
        EXPECT_FALSE(KeyCombination(static_cast<Key>(i), {.control = true, .shift = true}).vimKey());
}

TEST(KeyCombination, OptionOrCommandGivesNoLogicalKeyForAnyKey) {
    for (std::size_t i = 0; i < keyCount; ++i) {
        const auto key = static_cast<Key>(i);
        EXPECT_FALSE(KeyCombination(key, {.option = true}).vimKey()) << rawValue(key);
        EXPECT_FALSE(KeyCombination(key, {.command = true}).vimKey()) << rawValue(key);
        EXPECT_FALSE(KeyCombination(key, {.option = true, .shift = true}).vimKey()) << rawValue(key);
        EXPECT_FALSE(KeyCombination(key, {.control = true, .command = true}).vimKey()) << rawValue(key);
    }
}

TEST(KeyCombination, TheFunctionKeyDoesNotEnterTheLogicalKey) {
    const KeyCombination combination(Key::a, {.fn = true});
    EXPECT_EQ(combination.vimKey(), VimKey::a);
    EXPECT_NE(combination, KeyCombination(Key::a));
}

TEST(KeyCombination, IsBothByDefaultAndComparesWithoutItsAction) {
    constexpr KeyCombination both(Key::a, {.command = true});
    EXPECT_EQ(both.action, KeyCombinationAction::both);
    EXPECT_EQ(both, KeyCombination(Key::a, {.command = true}, KeyCombinationAction::press));
    EXPECT_EQ(both, KeyCombination(Key::a, {.command = true}, KeyCombinationAction::release));
}

TEST(KeyCombination, EachModifierCountsInTheComparison) {
    const KeyCombination plain(Key::return_);
    for (bool KeyCombination::*field : {&KeyCombination::fn, &KeyCombination::control, &KeyCombination::option,
                                        &KeyCombination::shift, &KeyCombination::command}) {
        KeyCombination changed = plain;
        changed.*field = true;
        EXPECT_NE(changed, plain);
        EXPECT_EQ(changed.hasNonShiftModifiers(), field != &KeyCombination::shift);
    }
}

TEST(KeyCombination, ChangingAModifierLeavesTheLogicalKey) {
    KeyCombination changed(Key::d);
    changed.control = true;
    EXPECT_EQ(changed.vimKey(), VimKey::d);
    EXPECT_NE(changed, KeyCombination(Key::d, {.control = true}));  // the logical keys differ
}

TEST(KeyCombination, IsSettledAtCompileTime) {
    static_assert(KeyCombination(Key::tab, {.shift = true}) ==
                  KeyCombination(Key::tab, {.shift = true}, KeyCombinationAction::press));
    static_assert(KeyCombination(VimKey::controlLeftBracket) == KeyCombination(Key::leftBracket, {.control = true}));
    static_assert(!(KeyCombination(Key::tab) == KeyCombination(Key::return_)));
}

}  // namespace
}  // namespace tarvix
