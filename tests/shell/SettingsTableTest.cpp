// The table of the settings, against the values that users' files hold.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "shell/SettingsTable.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using Texts = std::vector<std::string_view>;

struct KeyAndDefault {
    std::string_view key;
    SettingValue defaultValue;
};

TEST(SettingsTable, HasTheseKeysWithTheseDefaults) {
    const std::vector<KeyAndDefault> expected = {
        {"searchIncludesAppMenus", true},
        {"searchIncludesStatusItems", true},
        {"searchIncludesNotifications", true},
        {"searchIncludesDock", false},
        {"searchIncludesTrafficLightButtons", false},
        {"fuzzyMatchingFlavor", "tarvixClassic"},
        {"ignoreSafariTabsAndURLs", false},
        {"hazeOverWindowStyle", "fadeOutExceptDockMenuBarAndFrontmostApp"},
        {"hazeOverWindowOpacity", 0.2},
        {"targetsColor", "findHighlight"},
        {"targetsCustomColorHue", 0.5},
        {"inputTextSize", 16.0},
        {"inputBackgroundOpacity", 0.9},
        {"inputCornerRadius", 6.0},
        {"inputBorderThickness", 2.0},
        {"inputPreset", "tarvix"},
        {"inputPosition", "aboveWindow"},
        {"dontFlushTheInput", false},
        {"hideMenuBarIcon", false},
        {"allowTemporaryHidingOfMenuBarIcon", false},
        {"preventScrollingWhenTarvixing", false},
        {"allowCopyingOfTextAndMetadata", false},
        {"allowCyclingThroughTargets", false},
        {"repositionMouseAfterClick", false},
        {"SUEnableAutomaticChecks", true},
    };
    ASSERT_EQ(settingRows.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(settingRows[i].key, expected[i].key);
        EXPECT_EQ(settingRows[i].defaultValue, expected[i].defaultValue) << expected[i].key;
    }
}

TEST(SettingsTable, OnlyTheHueHasAnotherDefaultInThePreferences) {
    for (const SettingRow& row : settingRows)
        EXPECT_EQ(row.paneDefault, row.key == "targetsCustomColorHue" ? std::optional(0.28) : std::nullopt) << row.key;
}

TEST(SettingsTable, EachRowIsSound) {
    std::set<std::string_view> keys;
    for (const SettingRow& row : settingRows) {
        EXPECT_TRUE(keys.insert(row.key).second) << row.key;
        EXPECT_FALSE(row.meaning.empty()) << row.key;
        EXPECT_FALSE(row.readBy.empty()) << row.key;
        EXPECT_EQ(row.example.index(), row.defaultValue.index()) << row.key;
        EXPECT_NE(row.example, row.defaultValue) << row.key;
        EXPECT_EQ(std::holds_alternative<std::string_view>(row.defaultValue), !row.cases.empty()) << row.key;
        EXPECT_EQ(std::holds_alternative<double>(row.defaultValue), row.range.has_value()) << row.key;
        for (const SettingValue& value : {row.defaultValue, row.example}) {
            if (const auto* number = std::get_if<double>(&value)) {
                EXPECT_GE(*number, row.range->least) << row.key;
                EXPECT_LE(*number, row.range->most) << row.key;
            } else if (const auto* text = std::get_if<std::string_view>(&value)) {
                EXPECT_TRUE(std::ranges::any_of(row.cases, [&](const SettingCase& c) { return c.rawValue == *text; }))
                    << row.key;
            }
        }
    }
}

template <SettingEnumeration Case>
Texts texts(std::string_view SettingCase::*text) {
    Texts all;
    for (const SettingCase& each : casesOf(std::type_identity<Case>{})) all.push_back(each.*text);
    return all;
}

template <SettingEnumeration Case>
void expectRoundTrip() {
    const auto cases = casesOf(std::type_identity<Case>{});
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const auto value = static_cast<Case>(i);
        EXPECT_EQ(rawValue(value), cases[i].rawValue);
        EXPECT_EQ(displayText(value), cases[i].displayText);
        EXPECT_EQ(caseFromRawValue<Case>(cases[i].rawValue), value);
        EXPECT_EQ(caseFromRawValue<Case>(std::string(cases[i].rawValue) + " "), std::nullopt);
    }
    EXPECT_EQ(caseFromRawValue<Case>(""), std::nullopt);
}

TEST(SettingEnumerations, RawValuesLeadBackToTheirCases) {
    expectRoundTrip<FuzzyMatchingFlavor>();
    expectRoundTrip<InputPosition>();
    expectRoundTrip<HazeOverWindowStyle>();
    expectRoundTrip<TargetsColor>();
    expectRoundTrip<InputPreset>();
}

TEST(SettingEnumerations, HaveTheirCasesInThisOrder) {
    EXPECT_THAT(texts<FuzzyMatchingFlavor>(&SettingCase::rawValue), ElementsAre("tarvixClassic", "tarvixExtended"));
    EXPECT_THAT(texts<InputPosition>(&SettingCase::rawValue),
                ElementsAre("fixed", "aboveWindow", "aboveInput", "aboveMouse"));
    EXPECT_THAT(texts<HazeOverWindowStyle>(&SettingCase::rawValue),
                ElementsAre("onlyTargets", "fadeOutWholeScreen", "fadeOutExceptDockMenuBarAndFrontmostApp"));
    EXPECT_THAT(texts<TargetsColor>(&SettingCase::rawValue),
                ElementsAre("findHighlight", "accent", "highlight", "voiceOver", "orwynPastelPink",
                            "mirelsFavoriteBlue", "qsFlamboyantFuchsia", "custom"));
    EXPECT_THAT(texts<InputPreset>(&SettingCase::rawValue),
                ElementsAre("tarvix", "spotlight", "alfred", "invisibleMan", "custom"));
    EXPECT_EQ(rawValue(InputPosition::aboveInput), "aboveInput");
    EXPECT_EQ(rawValue(HazeOverWindowStyle::fadeOutWholeScreen), "fadeOutWholeScreen");
    EXPECT_EQ(rawValue(TargetsColor::custom), "custom");
    EXPECT_EQ(rawValue(InputPreset::invisibleMan), "invisibleMan");
}

TEST(SettingEnumerations, AreShownWithTheseTexts) {
    EXPECT_THAT(texts<FuzzyMatchingFlavor>(&SettingCase::displayText),
                ElementsAre("Tarvix Classic", "Tarvix Extended"));
    EXPECT_THAT(texts<InputPosition>(&SettingCase::displayText),
                ElementsAre("where you left it", "above the frontmost window", "above the current input",
                            "above the mouse cursor"));
    EXPECT_THAT(
        texts<HazeOverWindowStyle>(&SettingCase::displayText),
        ElementsAre("nothing", "the whole screen", "everything except the Dock, the Menu Bars, and the frontmost app"));
    EXPECT_THAT(texts<TargetsColor>(&SettingCase::displayText),
                ElementsAre("macOS Search color", "macOS Accent color", "macOS Highlight color", "VoiceOver",
                            "Orwyn Pastel Pink", "Mirel's Favorite Blue", "Q's Flamboyant Fuchsia", "custom"));
    EXPECT_THAT(texts<InputPreset>(&SettingCase::displayText),
                ElementsAre("Tarvix", "\u00C0 la Spotlight", "kinda Alfred", "The Invisible Man", "custom"));
}

}  // namespace
}  // namespace tarvix
