// What the panels of every platform keep to.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/Milestones.h"
#include "platform/Panels.h"
#include "tests/contract/Subject.h"

namespace tarvix {

class PanelsContract : public testing::TestWithParam<ContractFactory<Panels>> {
protected:
    bool waitUntil(const std::function<bool()>& condition) { return subject_.waitUntil(condition); }

    ContractSubject<Panels> subject_ = GetParam()();
    Panels& panels = subject_.service;
};

TEST_P(PanelsContract, TheInputIsHiddenUntilShownAndAfterItIsOrderedOut) {
    const auto input = panels.makeInputPanel();
    EXPECT_FALSE(input->isVisible());
    input->makeKeyAndOrderFront();
    EXPECT_TRUE(input->isVisible());
    input->orderOut();
    EXPECT_FALSE(input->isVisible());
}

TEST_P(PanelsContract, OrderingOutIsNoLossOfTheKeyboard) {
    const auto input = panels.makeInputPanel();
    int lost = 0;
    const Subscription resigned = input->onResignKey([&] { ++lost; });
    input->makeKeyAndOrderFront();
    input->orderOut();
    bool drained = false;
    EXPECT_TRUE(waitUntil([&] { return std::exchange(drained, true); }));
    EXPECT_EQ(lost, 0);
}

TEST_P(PanelsContract, TheOriginThatIsSetIsKeptOverHidingAndShowing) {
    const auto input = panels.makeInputPanel();
    input->setFrame({{120, 340}, input->frame().size});
    input->makeKeyAndOrderFront();
    input->orderOut();
    input->makeKeyAndOrderFront();
    EXPECT_EQ(input->frame().origin, (PanelPoint{120, 340}));
    input->orderOut();
}

TEST_P(PanelsContract, TheMeasuredWidthIsToldAtOnceAndGrowsWithTheText) {
    const auto input = panels.makeInputPanel();
    std::vector<double> widths;
    const Subscription measuring = input->onMeasured([&](double width) { widths.push_back(width); });
    ASSERT_EQ(widths.size(), 1u);
    EXPECT_GT(widths.front(), 0);
    input->setText("a longer text");
    ASSERT_TRUE(waitUntil([&] { return widths.size() == 2; }));
    EXPECT_GT(widths.back(), widths.front());
}

TEST_P(PanelsContract, ATextThatIsSetIsNotReported) {
    const auto input = panels.makeInputPanel();
    std::vector<std::string> reported;
    const Subscription changes = input->onTextChanged([&](const std::string& text) { reported.push_back(text); });
    input->setText("text");
    bool drained = false;
    EXPECT_TRUE(waitUntil([&] { return std::exchange(drained, true); }));
    EXPECT_TRUE(reported.empty());
}

TEST_P(PanelsContract, TheCanvasKeepsItsFrame) {
    const auto canvas = panels.makeCanvasPanel(milestone::markersDrawn);
    const PanelRect frame{{0, 0}, {640, 480}};
    canvas->setFrame(frame);
    EXPECT_EQ(canvas->frame(), frame);
    canvas->orderFrontRegardless();
    canvas->orderOut();
    EXPECT_EQ(canvas->frame(), frame);
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(PanelsContract);

}  // namespace tarvix
