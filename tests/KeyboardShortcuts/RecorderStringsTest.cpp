#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>

#include "KeyboardShortcuts/RecorderStrings.h"

namespace tarvix {
namespace {

std::size_t placesIn(const std::string& text) {
    std::size_t count = 0;
    for (auto at = text.find("%@"); at != std::string::npos; at = text.find("%@", at + 1)) ++count;
    return count;
}

TEST(RecorderStrings, EveryTextIsThereInEveryLanguage) {
    for (const RecorderLanguage language : kRecorderLanguages)
        for (const std::string_view key : recorderKey::all) {
            const std::string text = recorderString(key, language);
            EXPECT_FALSE(text.empty()) << key;
            EXPECT_NE(text, key);
            EXPECT_EQ(placesIn(text), key == recorderKey::usedByMenuItem ? 1u : 0u) << text;
        }
}

TEST(RecorderStrings, TheLanguagesDiffer) {
    for (const std::string_view key : recorderKey::all) {
        if (key == recorderKey::ok) continue;
        std::set<std::string> texts;
        for (const RecorderLanguage language : kRecorderLanguages) texts.insert(recorderString(key, language));
        EXPECT_EQ(texts.size(), kRecorderLanguages.size()) << key;
    }
}

TEST(RecorderStrings, AKeyThatIsNoneStandsForItself) {
    EXPECT_EQ(recorderString("no_such_key", RecorderLanguage::german), "no_such_key");
}

TEST(RecorderStrings, TheItemsTitleStandsInQuotes) {
    const auto title = [](RecorderLanguage language) {
        return recorderString(recorderKey::usedByMenuItem, language, "Settings...");
    };
    constexpr std::array quoted = {"“Settings...”", "„Settings...“", "«\u00A0Settings...\u00A0»", "«Settings...»",
                                   "「Settings...」"};
    for (std::size_t i = 0; i < quoted.size(); ++i)
        EXPECT_NE(title(kRecorderLanguages[i]).find(quoted[i]), std::string::npos) << title(kRecorderLanguages[i]);
}

TEST(RecorderStrings, ATitleMayHoldAPlaceItself) {
    EXPECT_EQ(recorderString(recorderKey::usedByMenuItem, RecorderLanguage::english, "%@ of 100%"),
              "This shortcut is already taken by the menu item “%@ of 100%”.");
}

using Environment = LocaleEnvironment;

TEST(PreferredLanguage, IsThatOfTheLocale) {
    EXPECT_EQ(preferredLanguage({.lang = "de_AT.UTF-8"}), RecorderLanguage::german);
    EXPECT_EQ(preferredLanguage({.lang = "fr_CA@euro"}), RecorderLanguage::french);
    EXPECT_EQ(preferredLanguage({.lang = "es"}), RecorderLanguage::spanish);
    EXPECT_EQ(preferredLanguage({.lang = "ja_JP.eucJP"}), RecorderLanguage::japanese);
    EXPECT_EQ(preferredLanguage({.lang = "en_GB.UTF-8"}), RecorderLanguage::english);
}

TEST(PreferredLanguage, OfALocaleWithoutTextsIsEnglish) {
    EXPECT_EQ(preferredLanguage({.lang = "nl_NL.UTF-8"}), RecorderLanguage::english);
    EXPECT_EQ(preferredLanguage({.lang = "desert"}), RecorderLanguage::english);
    EXPECT_EQ(preferredLanguage({}), RecorderLanguage::english);
}

TEST(PreferredLanguage, TheCategoryComesBeforeTheGeneralVariableAndAllBeforeBoth) {
    EXPECT_EQ(preferredLanguage({.messages = "fr_FR.UTF-8", .lang = "de_DE.UTF-8"}), RecorderLanguage::french);
    EXPECT_EQ(preferredLanguage({.all = "ja_JP.UTF-8", .messages = "fr_FR.UTF-8", .lang = "de_DE.UTF-8"}),
              RecorderLanguage::japanese);
}

TEST(PreferredLanguage, TheListCountsInItsOrder) {
    EXPECT_EQ(preferredLanguage({.language = "nl:es:de", .lang = "fr_FR.UTF-8"}), RecorderLanguage::spanish);
    EXPECT_EQ(preferredLanguage({.language = "en:de", .lang = "de_DE.UTF-8"}), RecorderLanguage::english);
    EXPECT_EQ(preferredLanguage({.language = "::de_CH", .lang = "en_US.UTF-8"}), RecorderLanguage::german);
    EXPECT_EQ(preferredLanguage({.language = "nl:pt", .lang = "fr_FR.UTF-8"}), RecorderLanguage::english);
}

TEST(PreferredLanguage, ThePlainLocaleIsEnglishWhateverTheList) {
    for (const char* plain : {"", "C", "POSIX", "C.UTF-8"})
        EXPECT_EQ(preferredLanguage({.language = "de", .lang = plain}), RecorderLanguage::english) << plain;
    EXPECT_EQ(preferredLanguage({.language = "de", .all = "C", .lang = "de_DE.UTF-8"}), RecorderLanguage::english);
}

}  // namespace
}  // namespace tarvix
