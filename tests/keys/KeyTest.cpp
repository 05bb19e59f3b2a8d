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
    Key key;
    std::uint16_t code;
};
// A sample across the table, where a slip of one row would show.
constexpr CodeRow codeRows[] = {
    {Key::a, 0},           {Key::v, 9},           {Key::b, 11},           {Key::t, 17},           {Key::six, 22},
    {Key::five, 23},       {Key::minus, 27},      {Key::l, 37},           {Key::period, 47},      {Key::grave, 50},
    {Key::keypadZero, 82}, {Key::keypadNine, 92}, {Key::keypadEight, 91}, {Key::return_, 36},     {Key::tab, 48},
    {Key::space, 49},      {Key::delete_, 51},    {Key::escape, 53},      {Key::f1, 122},         {Key::f20, 90},
    {Key::upArrow, 126},   {Key::yen, 93},        {Key::keypadComma, 95}, {Key::section, 10},     {Key::caret, 24},
    {Key::atSign, 33},     {Key::colon, 39},      {Key::kana, 104},       {Key::keypadClear, 71},
};

TEST(Key, CodesAreThoseOfTheUSLayout) {
    for (const CodeRow& row : codeRows) EXPECT_EQ(qwertyKeyCode(row.key), row.code) << rawValue(row.key);
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
    EXPECT_EQ(specialKeyText(36), "↩");
    EXPECT_EQ(specialKeyText(48), "⇥");
    EXPECT_EQ(specialKeyText(49), "Space");
    EXPECT_EQ(specialKeyText(76), "⌅");
    EXPECT_EQ(specialKeyText(102), "英数");
    EXPECT_EQ(specialKeyText(104), "かな");
    EXPECT_EQ(specialKeyText(114), "?\u20DD");
    EXPECT_EQ(specialKeyText(118), "F4");
    EXPECT_EQ(specialKeyText(126), "↑");
    EXPECT_EQ(specialKeyText(0), std::nullopt);
    EXPECT_EQ(specialKeyText(65), std::nullopt);
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
