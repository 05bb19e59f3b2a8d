#include <gtest/gtest.h>

#include "linux/atspi/TextStretches.h"

namespace tarvix::atspi {
namespace {

TEST(TextStretches, ATextWithoutChildrenIsOne) {
    EXPECT_EQ(stretchesOf("Chapter one"), (std::vector<Stretch>{{"Chapter one", 0, 11, 0}}));
}

TEST(TextStretches, EachEmbeddedChildPartsThem) {
    EXPECT_EQ(stretchesOf("Read the \uFFFC first; \uFFFCthen go."),
              (std::vector<Stretch>{{"Read the", 0, 8, 0}, {"first;", 11, 17, 1}, {"then go.", 19, 27, 2}}));
}

TEST(TextStretches, PositionsCountCharactersNotBytes) {
    EXPECT_EQ(stretchesOf("äöü \uFFFC ß"), (std::vector<Stretch>{{"äöü", 0, 3, 0}, {"ß", 6, 7, 1}}));
}

TEST(TextStretches, ABulletAtTheBeginningIsLeftOut) {
    EXPECT_EQ(stretchesOf("• North gardens"), (std::vector<Stretch>{{"North gardens", 2, 15, 0}}));
    EXPECT_EQ(stretchesOf("a – b"), (std::vector<Stretch>{{"a – b", 0, 5, 0}}));
    EXPECT_EQ(stretchesOf("\uFFFC · b"), (std::vector<Stretch>{{"· b", 2, 5, 1}}));
}

TEST(TextStretches, AStretchTellsWhetherItTouchesTheNextChild) {
    EXPECT_EQ(stretchesOf("Pale:\uFFFC"), (std::vector<Stretch>{{"Pale:", 0, 5, 0, true}}));
    EXPECT_EQ(stretchesOf("\uFFFCthen\uFFFC and"), (std::vector<Stretch>{{"then", 1, 5, 1, true}, {"and", 7, 10, 2}}));
}

TEST(TextStretches, WhatSaysNothingIsNone) {
    for (const char* nothing : {"", "  \n", "\uFFFC", "\uFFFC / \uFFFC", "•", " · ", "\u00A0"})
        EXPECT_TRUE(stretchesOf(nothing).empty()) << nothing;
}

TEST(TextStretches, JoinedTheyStandWithABlankBetweenThem) {
    EXPECT_EQ(joined(stretchesOf("Read the \uFFFC first")), "Read the first");
    EXPECT_EQ(joined({}), "");
}

TEST(TextStretches, ASignThatCanBeReadAloudIsNoBullet) {
    for (const char* bullet : {"", "• ", "–", " \u00A0"}) EXPECT_TRUE(isBullet(bullet)) << bullet;
    for (const char* sign : {"+", "?", "…", "×", "1."}) EXPECT_FALSE(isBullet(sign)) << sign;
}

}  // namespace
}  // namespace tarvix::atspi
