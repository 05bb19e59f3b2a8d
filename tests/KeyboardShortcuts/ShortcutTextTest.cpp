#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "KeyboardShortcuts/ShortcutText.h"
#include "simulated/SimulatedInputSources.h"

namespace tarvix {
namespace {

// These come from no layout.
// clang-format off
const std::vector<std::pair<std::uint32_t, std::string>> kTable = {
    {36, "\u21A9"}, {122, "F1"}, {82, "\u0030\u20E3"}, {51, "\u232B"}, {120, "F2"}, {83, "\u0031\u20E3"},
    {117, "\u2326"}, {99, "F3"}, {84, "\u0032\u20E3"}, {119, "\u2198"}, {118, "F4"}, {85, "\u0033\u20E3"},
    {53, "\u238B"}, {96, "F5"}, {86, "\u0034\u20E3"}, {114, "\u003F\u20DD"}, {97, "F6"}, {87, "\u0035\u20E3"},
    {115, "\u2196"}, {98, "F7"}, {88, "\u0036\u20E3"}, {49, "Space"}, {100, "F8"}, {89, "\u0037\u20E3"},
    {48, "\u21E5"}, {101, "F9"}, {91, "\u0038\u20E3"}, {116, "\u21DE"}, {109, "F10"}, {92, "\u0039\u20E3"},
    {121, "\u21DF"}, {103, "F11"}, {71, "\u2612\u20E3"}, {126, "\u2191"}, {111, "F12"}, {65, "\u002E\u20E3"},
    {124, "\u2192"}, {105, "F13"}, {75, "\u002F\u20E3"}, {125, "\u2193"}, {107, "F14"}, {76, "\u21A9\u20E3"},
    {123, "\u2190"}, {113, "F15"}, {81, "\u003D\u20E3"}, {106, "F16"}, {64, "F17"}, {78, "\u002D\u20E3"},
    {79, "F18"}, {80, "F19"}, {67, "\u002A\u20E3"}, {90, "F20"}, {69, "\u002B\u20E3"},
};
// clang-format on

struct ShortcutTextTest : testing::Test {
    SimulatedInputSources inputSources;

    std::string shown(std::uint32_t keyCode, std::uint32_t carbonModifiers = 0) {
        return displayText({keyCode, carbonModifiers}, inputSources);
    }
    std::string spoken(std::uint32_t keyCode, std::uint32_t carbonModifiers = 0) {
        return spokenText({keyCode, carbonModifiers}, inputSources);
    }
};

TEST_F(ShortcutTextTest, KeysThatNoLayoutTypesHaveSignsOfTheirOwn) {
    EXPECT_EQ(kTable.size(), 53u);
    for (const auto& [keyCode, text] : kTable) {
        EXPECT_EQ(keyText(keyCode, inputSources), text) << keyCode;
        EXPECT_EQ(shown(keyCode), text) << keyCode;
    }
    EXPECT_EQ(inputSources.translations(), 0u);
}

TEST_F(ShortcutTextTest, ModifiersStandInTheirFixedOrder) {
    EXPECT_EQ(shown(49, 0x300), "⇧⌘Space");
    EXPECT_EQ(shown(49, 0x1b00), "⌃⌥⇧⌘Space");
    EXPECT_EQ(shown(36, 0x1800), "⌃⌥↩");
    EXPECT_EQ(modifiersText(eventFlag::command | eventFlag::secondaryFn), "⌘\U0001F310\uFE0E");
    EXPECT_EQ(modifiersText(0xffffffff), "⌃⌥⇧⌘\U0001F310\uFE0E");
    EXPECT_EQ(modifiersText(0), "");
}

TEST_F(ShortcutTextTest, OtherKeysAreWhatTheLayoutTypesCapitalised) {
    EXPECT_EQ(shown(0, 0x100), "⌘A");
    EXPECT_EQ(keyText(0, inputSources), "a");
    EXPECT_EQ(shown(43, 0x100), "⌘,");
    EXPECT_EQ(shown(0, 0xa00), "⌥⇧A");  // not what the modifiers would make of it
}

TEST_F(ShortcutTextTest, TheLayoutIsTheCurrentOneThatTypesLatinLetters) {
    inputSources.setEnabled({simulatedLayout::german(), simulatedLayout::russian()});
    inputSources.select("de");
    EXPECT_EQ(shown(16, 0x800), "⌥Z");
    EXPECT_EQ(shown(41, 0x800), "⌥Ö");
    EXPECT_EQ(shown(27, 0x800), "⌥Ss");
    inputSources.select("ru");
    EXPECT_EQ(shown(16, 0x800), "⌥Z");
}

TEST_F(ShortcutTextTest, AKeyWithoutTextShowsTheReplacementCharacter) {
    EXPECT_EQ(keyText(102, inputSources), std::nullopt);
    EXPECT_EQ(shown(102, 0x100), "⌘\uFFFD");
    EXPECT_EQ(shown(200), "\uFFFD");
    EXPECT_EQ(shown(4294967295u), "\uFFFD");
    inputSources.setEnabled({simulatedLayout::inputMethod()});
    EXPECT_EQ(shown(0), "\uFFFD");
}

TEST_F(ShortcutTextTest, ATextOfMoreThanFourUnitsIsNone) {
    SimulatedLayout layout = simulatedLayout::us();
    layout.keys[0][0] = "abcd";
    layout.keys[1][0] = "abcde";
    layout.keys[2][0] = "";
    inputSources.setEnabled({layout});
    EXPECT_EQ(keyText(0, inputSources), "abcd");
    EXPECT_EQ(keyText(1, inputSources), std::nullopt);
    EXPECT_EQ(keyText(2, inputSources), std::nullopt);
}

TEST_F(ShortcutTextTest, IsReadAloudInTheNamesOfAPcsKeys) {
    EXPECT_EQ(spoken(49, 0x300), "Shift+Super+Space");
    EXPECT_EQ(spoken(40, 0xa00), "Alt+Shift+K");
    EXPECT_EQ(spoken(36, 0x1900), "Ctrl+Alt+Super+Return");
    EXPECT_EQ(spoken(116), "Page Up");
    EXPECT_EQ(spoken(76), "Keypad Enter");
    EXPECT_EQ(spoken(96, 0x200), "Shift+F5");
}

TEST_F(ShortcutTextTest, NoSignIsReadAloud) {
    for (const auto& [keyCode, text] : kTable)
        for (const char c : spoken(keyCode, 0x1b00)) EXPECT_LT(static_cast<unsigned char>(c), 0x80) << text;
}

}  // namespace
}  // namespace tarvix
