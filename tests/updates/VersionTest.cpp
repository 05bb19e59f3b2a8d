#include <gtest/gtest.h>

#include <string>

#include "updates/Version.h"

namespace tarvix {
namespace {

TEST(Version, BeginsWithADigitAndCanStandInAFileName) {
    for (const char* text : {"0", "1.2.3", "2.0-beta.1", "1.0~rc1+git5", "2026_11"})
        EXPECT_TRUE(isVersion(text)) << text;
    for (const char* text : {"", "v1", "../1", "1/2", "1 2", "1;rm", "1%2f", "1\n", "-1", ".1", "1é"})
        EXPECT_FALSE(isVersion(text)) << text;
    EXPECT_TRUE(isVersion(std::string(64, '1')));
    EXPECT_FALSE(isVersion(std::string(65, '1')));
}

TEST(Version, EachOfTheseIsLessThanTheNext) {
    const char* const rising[] = {"0.0.9",
                                  "0.1",
                                  "0.1.1",
                                  "0.9",
                                  "0.10",
                                  "1.0-alpha",
                                  "1.0-alpha.2",
                                  "1.0b2",
                                  "1.0b10",
                                  "1.0-beta",
                                  "1.0-rc1",
                                  "1.0",
                                  "1.0.1-rc",
                                  "1.0.1",
                                  "1.1",
                                  "2",
                                  "2.0.1",
                                  "10.0",
                                  "99",
                                  "4294967296",
                                  "18446744073709551616",
                                  "18446744073709551617"};
    for (const char* const& left : rising)
        for (const char* const& right : rising)
            EXPECT_EQ(compareVersions(left, right), std::weak_ordering(&left <=> &right)) << left << " and " << right;
}

TEST(Version, ZerosAtTheEndAndInFrontOfANumberSayNothing) {
    for (const auto& [left, right] : {std::pair{"1", "1.0"},
                                      {"1.0", "1.0.0"},
                                      {"1.02", "1.2"},
                                      {"0", ""},
                                      {"1.0-RC", "1.0-rc"},
                                      {"1.0-beta", "1.0~beta"},
                                      {"1.0beta1", "1.0-beta.1"}}) {
        EXPECT_EQ(compareVersions(left, right), std::weak_ordering::equivalent) << left << " and " << right;
        EXPECT_EQ(compareVersions(right, left), std::weak_ordering::equivalent) << left << " and " << right;
    }
}

TEST(Version, AZeroThatTheOtherLacksStillLetsAWordBehindItCount) {
    EXPECT_TRUE(compareVersions("1.0.0-beta", "1") < 0);
    EXPECT_TRUE(compareVersions("1", "1.0.0-beta") > 0);
}

}  // namespace
}  // namespace tarvix
