#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "base/Text.h"

namespace tarvix {
namespace {

using Rows = std::vector<std::pair<std::string, std::string>>;
using Pieces = std::vector<std::string_view>;

TEST(Text, TheFoldTakesMarksOffAndKeepsCase) {
    const Rows rows = {
        {"", ""},
        {"Plain text 1", "Plain text 1"},
        {"Café", "Cafe"},
        {"Cafe\u0301", "Cafe"},
        {"Å", "A"},
        {"\u212b", "A"},         // the sign for the unit
        {"ǖ", "u"},              // two marks in one
        {"a\u0323\u0308", "a"},  // two marks behind it
        {"\u0301", ""},          // a mark alone
        {"Привет, ёлка й", "Привет, елка и"},
        {"が", "か"},
        {"한글", "한글"},  // put together again
        {"\u1112\u1161\u11ab", "한"},
        {"עַ", "ע"},
    };
    for (const auto& [text, folded] : rows) EXPECT_EQ(foldDiacritics(text), folded) << text;
}

TEST(Text, LettersThatDoNotDecomposeStayAsTheyAre) {
    for (const char* text : {"ø", "Ł", "ı", "ß", "æ", "ﬁ", "đ", "👍🏽", "👩\u200d💻"})
        EXPECT_EQ(foldDiacritics(text), text);
    EXPECT_EQ(foldDiacritics("İ"), "I");
}

TEST(Text, LowerCaseIsTheSameInEveryLocale) {
    const Rows rows = {
        {"ABCxyz_1", "abcxyz_1"}, {"ÄÖÜ", "äöü"}, {"I", "i"},      {"ẞ", "ß"}, {"ΑΣ", "ας"}, {"Ǆǅ", "ǆǆ"},
        {"ПРИВЕТ", "привет"},     {"Ⅷ", "ⅷ"},     {"İ", "i\u0307"}};
    for (const auto& [text, lowered] : rows) EXPECT_EQ(lower(text), lowered) << text;
}

TEST(Capitalized, EveryWordBeginsWithACapital) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"", ""},   {"a", "A"},  {"space", "Space"}, {"F10", "F10"}, {"two WORDS", "Two Words"},
        {"ö", "Ö"}, {"ß", "Ss"}, {"かな", "かな"}};
    for (const auto& [text, capitals] : rows) EXPECT_EQ(capitalized(text), capitals) << text;
}

TEST(Text, TheNormalFormIsFoldedThenLowerCased) {
    EXPECT_EQ(normalForm("CAFÉ"), "cafe");
    EXPECT_EQ(normalForm("İstanbul"), "istanbul");
    EXPECT_EQ(normalForm("STRASSE"), "strasse");
    EXPECT_EQ(normalForm("Straße"), "straße");
}

TEST(Text, TrimmingTakesSpacesAndTabsOffBothEnds) {
    EXPECT_EQ(trimWhitespaces(" \t hello friend \t "), "hello friend");
    EXPECT_EQ(trimWhitespaces("\u00a0\u2003\u3000\u1680hello\u202f\u205f"), "hello");
    EXPECT_EQ(trimWhitespaces(" \t "), "");
    EXPECT_EQ(trimWhitespaces(""), "");
    EXPECT_EQ(trimWhitespaces("é"), "é");
}

TEST(Text, TrimmingLeavesLineEndsAndWhatOnlyLooksLikeSpace) {
    for (const char* text : {"\n", " \nhello\n ", "\u200bhello", "\rx\r", "\u2028", "\u0085", "\vx"}) {
        std::string_view expected = text;
        if (expected.starts_with(' ')) expected = expected.substr(1, expected.size() - 2);
        EXPECT_EQ(trimWhitespaces(text), expected);
    }
}

TEST(Text, CharactersAreThoseThatAReaderCounts) {
    EXPECT_EQ(graphemes(""), Pieces());
    EXPECT_EQ(graphemes("abc"), (Pieces{"a", "b", "c"}));
    EXPECT_EQ(graphemes("e\u0301x"), (Pieces{"e\u0301", "x"}));
    EXPECT_EQ(graphemes("👩\u200d💻👍🏽"), (Pieces{"👩\u200d💻", "👍🏽"}));
    EXPECT_EQ(graphemes("🇩🇪🇫🇷"), (Pieces{"🇩🇪", "🇫🇷"}));
    EXPECT_EQ(graphemes("\r\n\n"), (Pieces{"\r\n", "\n"}));
    EXPECT_EQ(graphemes("한"), Pieces{"한"});
}

TEST(Text, CharactersArePiecesOfTheTextItself) {
    const std::string text = "aé👍";
    std::size_t length = 0;
    for (const std::string_view character : graphemes(text)) {
        EXPECT_EQ(character.data(), text.data() + length);
        length += character.size();
    }
    EXPECT_EQ(length, text.size());
}

TEST(Text, TheLengthInUtf16) {
    EXPECT_EQ(utf16Length(""), 0u);
    EXPECT_EQ(utf16Length("aé한"), 3u);
    EXPECT_EQ(utf16Length("👍"), 2u);
}

// What applications call UTF-8 isn't always.
TEST(Text, BytesThatAreNotUtf8CountAsReplacementCharacters) {
    EXPECT_EQ(foldDiacritics("a\xff"), "a\ufffd");
    EXPECT_EQ(lower("A\xc3"), "a\ufffd");
    EXPECT_EQ(utf16Length("\x80"), 1u);
    for (const char* broken :
         {"\xff", "\xc3", " \xe2\x82", "\xe2\x82 ", "\x80\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "a\xf0\x9f"}) {
        std::size_t length = 0;
        for (const std::string_view character : graphemes(broken)) length += character.size();
        EXPECT_EQ(length, std::string_view(broken).size());
        EXPECT_EQ(normalForm(normalForm(broken)), normalForm(broken));
        EXPECT_FALSE(trimWhitespaces(broken).empty());
    }
}

TEST(Text, AZeroByteIsACharacterLikeAnyOther) {
    const std::string text("A\0É", 4);
    EXPECT_EQ(normalForm(text), std::string("a\0e", 3));
    EXPECT_EQ(graphemes(text).size(), 3u);
}

}  // namespace
}  // namespace tarvix
