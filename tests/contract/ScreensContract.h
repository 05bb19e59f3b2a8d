// What every list of screens keeps to.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <thread>

#include "platform/Screens.h"
#include "tests/contract/Subject.h"

namespace tarvix {

class ScreensContract : public testing::TestWithParam<ContractFactory<Screens>> {
protected:
    ContractSubject<Screens> subject_ = GetParam()();
    Screens& screens = subject_.service;
};

TEST_P(ScreensContract, TheFirstScreenHasTheOriginOfThePlane) {
    ASSERT_FALSE(screens.frames().empty());
    EXPECT_EQ(screens.frames().front().origin, (PanelPoint{0, 0}));
}

TEST_P(ScreensContract, EveryScreenHasAnArea) {
    for (const PanelRect& frame : screens.frames()) {
        EXPECT_GT(frame.size.width, 0);
        EXPECT_GT(frame.size.height, 0);
    }
}

TEST_P(ScreensContract, TheMainScreenIsOneOfThem) {
    const auto frames = screens.frames();
    ASSERT_TRUE(screens.mainFrame());
    EXPECT_NE(std::find(frames.begin(), frames.end(), *screens.mainFrame()), frames.end());
}

TEST_P(ScreensContract, TheMainScreenIsTheSameForEveryThread) {
    const auto here = screens.mainFrame();
    std::optional<PanelRect> there;
    std::thread([&] { there = screens.mainFrame(); }).join();
    EXPECT_EQ(there, here);
}

TEST_P(ScreensContract, ThePointerStandsOnAScreen) {
    const auto frames = screens.frames();
    const PanelPoint pointer = screens.mouseLocation();
    EXPECT_TRUE(std::any_of(frames.begin(), frames.end(),
                            [pointer](const PanelRect& frame) { return mouseInRect(pointer, frame); }))
        << pointer.x << "," << pointer.y;
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ScreensContract);

}  // namespace tarvix
