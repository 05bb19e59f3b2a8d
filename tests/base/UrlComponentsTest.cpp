// What counts as an address, and what it asks for.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "base/UrlComponents.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Items = std::vector<QueryItem>;

Items itemsOf(std::string_view text) {
    const auto components = UrlComponents::parse(text);
    EXPECT_TRUE(components) << text;
    return components ? components->queryItems() : Items{};
}

bool isAddress(std::string_view text) { return UrlComponents::parse(text).has_value(); }

TEST(UrlComponents, AnAddressWithoutAQueryHasNoItems) {
    EXPECT_THAT(itemsOf("tarvix://openTheInput"), IsEmpty());
    EXPECT_THAT(itemsOf("tarvix://openTheInput?"), IsEmpty());
    EXPECT_THAT(itemsOf("mailto:someone@example.org"), IsEmpty());
}

TEST(UrlComponents, ItemsStandInTheirOrderWithRepeatedNames) {
    EXPECT_THAT(itemsOf("a://b?with=1&x=2&with=3"),
                ElementsAre(QueryItem{"with", "1"}, QueryItem{"x", "2"}, QueryItem{"with", "3"}));
}

TEST(UrlComponents, AnEmptyValueIsAValueAndAMissingOneIsNone) {
    EXPECT_THAT(itemsOf("a://b?with="), ElementsAre(QueryItem{"with", ""}));
    EXPECT_THAT(itemsOf("a://b?with"), ElementsAre(QueryItem{"with", std::nullopt}));
    EXPECT_THAT(itemsOf("a://b?=x&&y"),
                ElementsAre(QueryItem{"", "x"}, QueryItem{"", std::nullopt}, QueryItem{"y", std::nullopt}));
}

TEST(UrlComponents, NamesAndValuesAreWithoutTheirPercentSigns) {
    EXPECT_THAT(itemsOf("a://b?w%69th=save%20as%3D%26"), ElementsAre(QueryItem{"with", "save as=&"}));
    EXPECT_THAT(itemsOf("a://b?with=gr%C3%B6%c3%9Fe"), ElementsAre(QueryItem{"with", "gr\u00F6\u00DFe"}));
}

TEST(UrlComponents, APlusSignIsNoBlank) {
    EXPECT_THAT(itemsOf("a://b?with=a+b"), ElementsAre(QueryItem{"with", "a+b"}));
}

TEST(UrlComponents, OnlyTheFirstEqualsSignSeparates) {
    EXPECT_THAT(itemsOf("a://b?with=a=b=c"), ElementsAre(QueryItem{"with", "a=b=c"}));
}

TEST(UrlComponents, TheQueryBeginsAtTheFirstQuestionMarkAndEndsBeforeTheFragment) {
    EXPECT_THAT(itemsOf("a://b/c?with=x?y#with=z"), ElementsAre(QueryItem{"with", "x?y"}));
    EXPECT_THAT(itemsOf("a://b#c?with=x"), IsEmpty());
}

TEST(UrlComponents, LettersOfAnyScriptMayStandAsTheyAre) {
    EXPECT_THAT(itemsOf("a://b?with=\u4FDD\u5B58\U0001F605"), ElementsAre(QueryItem{"with", "\u4FDD\u5B58\U0001F605"}));
}

TEST(UrlComponents, ATextWithoutASchemeIsNoAddress) {
    for (const std::string_view text : {"", ":", "://b", "b", "b?c:d", "1a://b", "-a:b", "a b://c"})
        EXPECT_FALSE(isAddress(text)) << text;
    EXPECT_TRUE(isAddress("x-a.b+c1:d"));
}

TEST(UrlComponents, ABrokenPercentSignMakesNoAddress) {
    for (const std::string_view text :
         {"a://b?c=%", "a://b?c=%4", "a://b?c=%4g", "a://b?c=%g4", "a://%b%", "a://b#%zz"})
        EXPECT_FALSE(isAddress(text)) << text;
    EXPECT_TRUE(isAddress("a://b?c=%41"));
}

TEST(UrlComponents, BlanksAndWhatElseHasToBeWrittenWithPercentSignsMakeNoAddress) {
    for (const char c : std::string(" \"<>\\^`{|}")) {
        EXPECT_FALSE(isAddress(std::string("a://b?c=") + c)) << c;
        EXPECT_FALSE(isAddress(std::string("a://b") + c)) << c;
    }
}

TEST(UrlComponents, ControlCharactersMakeNoAddressHoweverTheyAreWritten) {
    for (int c = 0; c < 0x20; ++c) {
        const std::string digits = c < 0x10 ? "0" : "1";
        const std::string last(1, "0123456789ABCDEF"[c % 16]);
        EXPECT_FALSE(isAddress(std::string("a://b?c=") + static_cast<char>(c))) << c;
        EXPECT_FALSE(isAddress("a://b?c=%" + digits + last)) << c;
    }
    for (const std::string_view text : {"a://b?c=%7F", "a://b?c=\x7F", "a://b?c=%C2%80", "a://b?c=\u009F",
                                        "a://b?c=%E2%80%A8", "a://b?c=\u2029", "a://b%0A?c=x", "a://b?c=x#%00"})
        EXPECT_FALSE(isAddress(text)) << text;
    EXPECT_TRUE(isAddress("a://b?c=%C2%A0"));
}

TEST(UrlComponents, WhatIsNotUtf8MakesNoAddressHoweverItIsWritten) {
    for (const std::string_view text :
         {"a://b?c=%FF", "a://b?c=\xFF", "a://b?c=%C0%AF", "a://b?c=\xC0\xAF", "a://b?c=%E0%80%AF", "a://b?c=%C3",
          "a://b?c=%C3x", "a://b?c=%ED%A0%80", "a://b?c=%F4%90%80%80", "a://b?c=\xC3%A4", "a://b?c=%C1%B7ith"})
        EXPECT_FALSE(isAddress(text)) << text;
}

TEST(EncodedForQuery, BlanksAndOtherScriptsAreEncodedAndDelimitersOfAQueryStay) {
    EXPECT_EQ(encodedForQuery("Text Editor"), "Text%20Editor");
    EXPECT_EQ(encodedForQuery("Q&A"), "Q&A");
    EXPECT_EQ(encodedForQuery("100 % #1 [x] \"y\""), "100%20%25%20%231%20%5Bx%5D%20%22y%22");
    EXPECT_EQ(encodedForQuery("\u4FDD"), "%E4%BF%9D");
    EXPECT_EQ(encodedForQuery("AZaz09-._~!$&'()*+,;=:@/?"), "AZaz09-._~!$&'()*+,;=:@/?");
    EXPECT_EQ(encodedForQuery(""), "");
}

TEST(EncodedForQuery, ATextThatIsNotUtf8IsNone) {
    EXPECT_EQ(encodedForQuery("a\xFF"), std::nullopt);
    EXPECT_EQ(encodedForQuery("\xC0\xAF"), std::nullopt);
}

TEST(EncodedForQuery, WhatIsEncodedComesBackFromAnAddressUnlessItDelimits) {
    const std::string text = "Save % As\u2026 #2 +";
    EXPECT_THAT(itemsOf("a://b?with=" + encodedForQuery(text).value_or("")), ElementsAre(QueryItem{"with", text}));
}

}  // namespace
}  // namespace tarvix
