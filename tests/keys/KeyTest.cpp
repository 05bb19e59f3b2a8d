#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "keys/Key.h"

namespace tarvix {
namespace {

std::vector<Key> everyKey() {
    std::vector<Key> keys;
    for (std::size_t i = 0; i < keyCount; ++i) keys.push_back(static_cast<Key>(i));
    return keys;
}

TEST(Key, ThereAre109) { EXPECT_EQ(keyCount, 109u); }

TEST(Key, RawValuesAreUniqueAndLeadBack) {
    std::set<std::string_view> seen;
    for (const Key key : everyKey()) {
        EXPECT_TRUE(seen.insert(rawValue(key)).second) << rawValue(key);
        EXPECT_EQ(keyFromRawValue(rawValue(key)), key);
    }
    EXPECT_EQ(rawValue(Key::return_), "return");
    EXPECT_EQ(rawValue(Key::delete_), "delete");
    EXPECT_EQ(keyFromRawValue("return_"), std::nullopt);
    EXPECT_EQ(keyFromRawValue(""), std::nullopt);
}

struct CodeRow {
    const char* rawValue;
    std::uint16_t code;
};
// clang-format off
constexpr CodeRow codeRows[] = {
    {"a", 0}, {"s", 1}, {"d", 2}, {"f", 3}, {"h", 4}, {"g", 5}, {"z", 6}, {"x", 7}, {"c", 8}, {"v", 9}, {"b", 11},
    {"q", 12}, {"w", 13}, {"e", 14}, {"r", 15}, {"y", 16}, {"t", 17}, {"one", 18}, {"two", 19}, {"three", 20},
    {"four", 21}, {"six", 22}, {"five", 23}, {"equal", 24}, {"nine", 25}, {"seven", 26}, {"minus", 27}, {"eight", 28},
    {"zero", 29}, {"rightBracket", 30}, {"o", 31}, {"u", 32}, {"leftBracket", 33}, {"i", 34}, {"p", 35}, {"l", 37},
    {"j", 38}, {"quote", 39}, {"k", 40}, {"semicolon", 41}, {"backslash", 42}, {"comma", 43}, {"slash", 44},
    {"n", 45}, {"m", 46}, {"period", 47}, {"grave", 50}, {"keypadDecimal", 65}, {"keypadMultiply", 67},
    {"keypadPlus", 69}, {"keypadClear", 71}, {"keypadDivide", 75}, {"keypadEnter", 76}, {"keypadMinus", 78},
    {"keypadEquals", 81}, {"keypadZero", 82}, {"keypadOne", 83}, {"keypadTwo", 84}, {"keypadThree", 85},
    {"keypadFour", 86}, {"keypadFive", 87}, {"keypadSix", 88}, {"keypadSeven", 89}, {"keypadEight", 91},
    {"keypadNine", 92}, {"return", 36}, {"tab", 48}, {"space", 49}, {"delete", 51}, {"escape", 53}, {"f17", 64},
    {"f18", 79}, {"f19", 80}, {"f20", 90}, {"f5", 96}, {"f6", 97}, {"f7", 98}, {"f3", 99}, {"f8", 100}, {"f9", 101},
    {"f11", 103}, {"f13", 105}, {"f16", 106}, {"f14", 107}, {"f10", 109}, {"f12", 111}, {"f15", 113}, {"help", 114},
    {"home", 115}, {"pageUp", 116}, {"forwardDelete", 117}, {"f4", 118}, {"end", 119}, {"f2", 120}, {"pageDown", 121},
    {"f1", 122}, {"leftArrow", 123}, {"rightArrow", 124}, {"downArrow", 125}, {"upArrow", 126}, {"yen", 93},
    {"underscore", 94}, {"keypadComma", 95}, {"eisu", 102}, {"kana", 104}, {"atSign", 33}, {"caret", 24},
    {"colon", 39}, {"section", 10},
};
// clang-format on

TEST(Key, StandInTheirOrderWithTheCodesOfTheUSLayout) {
    ASSERT_EQ(std::size(codeRows), keyCount);
    for (std::size_t i = 0; i < keyCount; ++i) {
        const auto key = static_cast<Key>(i);
        EXPECT_EQ(rawValue(key), codeRows[i].rawValue);
        EXPECT_EQ(qwertyKeyCode(key), codeRows[i].code) << codeRows[i].rawValue;
    }
}

TEST(Key, OfTwoKeysWithOneCodeTheReverseGivesTheFirst) {
    std::map<std::uint16_t, std::vector<Key>> byCode;
    for (const Key key : everyKey()) byCode[qwertyKeyCode(key)].push_back(key);
    std::set<std::uint16_t> doubled;
    for (const auto& [code, keys] : byCode) {
        EXPECT_EQ(keyForQwertyKeyCode(code), keys.front());
        if (keys.size() > 1) doubled.insert(code);
    }
    EXPECT_EQ(doubled, (std::set<std::uint16_t>{24, 33, 39}));
    EXPECT_EQ(keyForQwertyKeyCode(24), Key::equal);
    EXPECT_EQ(keyForQwertyKeyCode(33), Key::leftBracket);
    EXPECT_EQ(keyForQwertyKeyCode(39), Key::quote);
}

TEST(Key, ACodeThatIsNoKeyGivesNone) {
    for (const std::uint32_t code : {52u, 54u, 63u, 66u, 127u, 128u, 65536u, 4294967295u})
        EXPECT_EQ(keyForQwertyKeyCode(code), std::nullopt) << code;
}

TEST(SpecialKeys, AreThirtyNineAndEachIsAKey) {
    int count = 0;
    for (std::uint32_t code = 0; code < 256; ++code) {
        if (!specialKeyText(code)) continue;
        ++count;
        EXPECT_TRUE(keyForQwertyKeyCode(code)) << code;
    }
    EXPECT_EQ(count, 39);
}

TEST(SpecialKeys, HaveTheirDisplayTexts) {
    // clang-format off
    const std::map<std::uint32_t, std::string_view> texts = {
        {36, "\u21A9"}, {48, "\u21E5"}, {49, "Space"}, {51, "\u232B"}, {53, "\u238B"}, {64, "F17"}, {71, "\u2327"},
        {76, "\u2305"}, {79, "F18"}, {80, "F19"}, {90, "F20"}, {96, "F5"}, {97, "F6"}, {98, "F7"}, {99, "F3"},
        {100, "F8"}, {101, "F9"}, {102, "英数"}, {103, "F11"}, {104, "かな"}, {105, "F13"}, {106, "F16"}, {107, "F14"},
        {109, "F10"}, {111, "F12"}, {113, "F15"}, {114, "?\u20DD"}, {115, "\u2196"}, {116, "\u21DE"}, {117, "\u2326"},
        {118, "F4"}, {119, "\u2198"}, {120, "F2"}, {121, "\u21DF"}, {122, "F1"}, {123, "\u2190"}, {124, "\u2192"},
        {125, "\u2193"}, {126, "\u2191"},
    };
    // clang-format on
    for (std::uint32_t code = 0; code < 256; ++code) {
        const auto text = texts.find(code);
        EXPECT_EQ(specialKeyText(code), text == texts.end() ? std::nullopt : std::optional(text->second)) << code;
    }
}

TEST(KeyForText, EverySpecialKeyMatchesItsText) {
    for (std::uint32_t code = 0; code < 128; ++code) {
        const auto text = specialKeyText(code);
        if (!text) continue;
        EXPECT_EQ(keyFor(*text, static_cast<std::uint16_t>(code)), keyForQwertyKeyCode(code)) << code;
    }
    EXPECT_EQ(keyFor("space"), Key::space);
}

TEST(KeyForText, EveryKeyMatchesItsRawValueInAnyCase) {
    for (const Key key : everyKey()) {
        EXPECT_EQ(keyFor(rawValue(key)), key);
        std::string upper(rawValue(key));
        for (char& c : upper) c = static_cast<char>(std::toupper(c));
        EXPECT_EQ(keyFor(upper), key) << upper;
    }
}

TEST(KeyForText, KeypadDigitsMatchTheirNumberedNames) {
    EXPECT_EQ(keyFor("keypad0"), Key::keypadZero);
    EXPECT_EQ(keyFor("Keypad9"), Key::keypadNine);
    EXPECT_EQ(keyFor("keypad="), std::nullopt);
    EXPECT_EQ(keyFor("keypad10"), std::nullopt);
}

struct TwinRow {
    const char* text;
    Key key;
    Key keypadKey;
    std::uint16_t keypadCode;
};
constexpr TwinRow twinRows[] = {
    {"0", Key::zero, Key::keypadZero, 82},      {"1", Key::one, Key::keypadOne, 83},
    {"2", Key::two, Key::keypadTwo, 84},        {"3", Key::three, Key::keypadThree, 85},
    {"4", Key::four, Key::keypadFour, 86},      {"5", Key::five, Key::keypadFive, 87},
    {"6", Key::six, Key::keypadSix, 88},        {"7", Key::seven, Key::keypadSeven, 89},
    {"8", Key::eight, Key::keypadEight, 91},    {"9", Key::nine, Key::keypadNine, 92},
    {"=", Key::equal, Key::keypadEquals, 81},   {"-", Key::minus, Key::keypadMinus, 78},
    {",", Key::comma, Key::keypadComma, 95},    {"/", Key::slash, Key::keypadDivide, 75},
    {".", Key::period, Key::keypadDecimal, 65},
};

TEST(KeyForText, TheCodeTellsTheKeypadFromTheMainBlock) {
    for (const TwinRow& row : twinRows) {
        EXPECT_EQ(keyFor(row.text), row.key) << row.text;
        EXPECT_EQ(keyFor(row.text, row.keypadCode), row.keypadKey) << row.text;
        EXPECT_EQ(keyFor(row.text, std::uint16_t{0}), row.key) << row.text;
    }
}

TEST(KeyForText, ASignOnAnotherKeypadKeyIsThatOfTheMainBlock) {
    EXPECT_EQ(keyFor(",", std::uint16_t{65}), Key::comma);  // a keypad whose decimal sign is a comma
}

TEST(KeyForText, MultiplyAndPlusAreTheKeypadsWhereverTheyStand) {
    EXPECT_EQ(keyFor("*"), Key::keypadMultiply);
    EXPECT_EQ(keyFor("*", std::uint16_t{42}), Key::keypadMultiply);
    EXPECT_EQ(keyFor("+", std::uint16_t{30}), Key::keypadPlus);
}

TEST(KeyForText, PunctuationMatchesByCharacter) {
    const std::map<std::string, Key> expected = {
        {"]", Key::rightBracket}, {"[", Key::leftBracket}, {"'", Key::quote}, {";", Key::semicolon},
        {"\\", Key::backslash},   {"`", Key::grave},       {"¥", Key::yen},   {"_", Key::underscore},
        {"@", Key::atSign},       {"^", Key::caret},       {":", Key::colon}, {"§", Key::section},
        {"\r", Key::return_},     {"\n", Key::return_},
    };
    for (const auto& [text, key] : expected) EXPECT_EQ(keyFor(text), key) << text;
}

TEST(KeyForText, CapitalsAreTheirLetter) {
    EXPECT_EQ(keyFor("A"), Key::a);
    EXPECT_EQ(keyFor("\u212A"), Key::k);  // the kelvin sign
}

TEST(KeyForText, AnythingElseIsNoKey) {
    for (const char* text : {"", "é", "ä", "ß", "aa", "ф", "\t", " ", "€", "{"})
        EXPECT_EQ(keyFor(text), std::nullopt) << text;
}

}  // namespace
}  // namespace tarvix
