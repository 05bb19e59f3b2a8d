#include <gtest/gtest.h>

#include "simulated/SimulatedUserDefaults.h"
#include "updates/UpdateSchedule.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;

const UpdateTime kNow{std::chrono::seconds(1'800'000'000)};

TEST(UpdateSchedule, ChecksOnceADay) {
    EXPECT_EQ(timeToNextCheck(kNow, kNow), 24h);
    EXPECT_EQ(timeToNextCheck(kNow - 23h, kNow), 1h);
    EXPECT_EQ(timeToNextCheck(kNow - 24h, kNow), 0s);
    EXPECT_EQ(timeToNextCheck(kNow - 24h * 365, kNow), 0s);
}

TEST(UpdateSchedule, AClockThatWasWrongPutsItOffForADayAtMost) {
    EXPECT_EQ(timeToNextCheck(kNow + 1h, kNow), 24h);
    EXPECT_EQ(timeToNextCheck(kNow + 24h * 3650, kNow), 24h);
}

struct UpdateMemoryTest : testing::Test {
    SimulatedUserDefaults defaults;
    UpdateMemory memory{defaults};
};

TEST_F(UpdateMemoryTest, ChecksAutomaticallyUnlessToldOtherwise) {
    EXPECT_TRUE(memory.checksAutomatically());
    defaults.set("SUEnableAutomaticChecks", false);
    EXPECT_FALSE(memory.checksAutomatically());
}

TEST_F(UpdateMemoryTest, RemembersTheLastCheckAndTheSkippedVersion) {
    EXPECT_EQ(memory.lastCheck(), std::nullopt);
    EXPECT_EQ(memory.skippedVersion(), "");
    memory.noteCheck(kNow);
    memory.skip("2.0");
    EXPECT_EQ(UpdateMemory(defaults).lastCheck(), kNow);
    EXPECT_EQ(UpdateMemory(defaults).skippedVersion(), "2.0");
    EXPECT_EQ(defaults.get("SULastCheckTime"), UserDefaults::Value(1.8e9));
    EXPECT_EQ(defaults.get("SUSkippedVersion"), UserDefaults::Value(std::string("2.0")));
}

TEST_F(UpdateMemoryTest, WhatIsNoTimeOrVersionCountsAsNone) {
    for (const UserDefaults::Value& value : {UserDefaults::Value(-1.0), UserDefaults::Value(1e300),
                                             UserDefaults::Value(true), UserDefaults::Value(std::string("today"))}) {
        defaults.set("SULastCheckTime", value);
        EXPECT_EQ(memory.lastCheck(), std::nullopt);
    }
    defaults.set("SUSkippedVersion", 2.0);
    EXPECT_EQ(memory.skippedVersion(), "");
}

}  // namespace
}  // namespace tarvix
