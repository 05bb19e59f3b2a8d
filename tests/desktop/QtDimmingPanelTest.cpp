#include <gmock/gmock.h>

#include "qt/AfterTheInput.h"
#include "qt/QtDimmingPanel.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t kTarget = 77;

class QtDimmingPanelTest : public QtPanelTest {
protected:
    TestHaze& haze = windowing.haze;
    std::unique_ptr<DimmingPanel> panel = makeQtDimmingPanel(services);
};

TEST_F(QtDimmingPanelTest, ItComesAtOnceBelowTheWindowThatItIsTold) {
    panel->setLevel(0);
    panel->setAlpha(0.2);
    EXPECT_FALSE(haze.isShown);
    panel->orderBelow(kTarget);
    EXPECT_THAT(haze.journal, ElementsAre("below 77"));
    EXPECT_EQ(haze.alpha, 0.2);
}

TEST_F(QtDimmingPanelTest, OfAHigherLevelItLiesOverEveryApplicationWhicheverItIsOrderedBy) {
    panel->setLevel(1000);
    panel->setAlpha(0.2);
    panel->orderBelow(kTarget);
    panel->orderFront();
    EXPECT_THAT(haze.journal, ElementsAre("over applications", "over applications"));
}

TEST_F(QtDimmingPanelTest, ItsFrameBecomesRootPixels) {
    const PanelRect screen = screens.frames().front();
    panel->setFrame({{10, 20}, {300, 200}});
    EXPECT_EQ(haze.frame, (AxRect{{10, screen.height() - 220}, {300, 200}}));
}

TEST_F(QtDimmingPanelTest, ItFadesAwayThroughAlphasInBetweenAndIsOutOfTheWayThen) {
    panel->setAlpha(0.5);
    panel->orderBelow(kTarget);
    panel->animateAlpha(0);
    EXPECT_TRUE(haze.isShown);
    bool wasBetween = false;
    EXPECT_TRUE(runUntil([&] {
        wasBetween = wasBetween || (haze.isShown && haze.alpha > 0 && haze.alpha < 0.5);
        return !haze.isShown;
    }));
    EXPECT_TRUE(wasBetween);
    EXPECT_EQ(haze.alpha, 0);
    EXPECT_THAT(haze.journal, ElementsAre("below 77", "hidden"));
}

TEST_F(QtDimmingPanelTest, ANewAlphaEndsTheFade) {
    panel->setAlpha(0.5);
    panel->orderFront();
    panel->animateAlpha(0);
    panel->setAlpha(0.4);
    drain();
    EXPECT_EQ(haze.alpha, 0.4);
    EXPECT_TRUE(haze.isShown);
}

TEST_F(QtDimmingPanelTest, AfterFadingAwayAnAlphaAloneDoesNotBringItBack) {
    panel->setAlpha(0.5);
    panel->orderFront();
    panel->animateAlpha(0);
    ASSERT_TRUE(runUntil([&] { return !haze.isShown; }));
    panel->setAlpha(0.5);
    EXPECT_FALSE(haze.isShown);
    panel->orderFront();
    EXPECT_TRUE(haze.isShown);
}

TEST_F(QtDimmingPanelTest, WithoutAnyOpacityItIsNotShownAtAll) {
    panel->setAlpha(0);
    haze.journal.clear();
    panel->orderBelow(kTarget);
    EXPECT_THAT(haze.journal, IsEmpty());
}

class QtDimmingPanelAfterTheInputTest : public QtPanelTest {
protected:
    QtDimmingPanelAfterTheInputTest() {
        services.afterTheInput = &afterTheInput;
        panel = makeQtDimmingPanel(services);
    }

    TestHaze& haze = windowing.haze;
    AfterTheInput afterTheInput;
    std::unique_ptr<DimmingPanel> panel;
};

TEST_F(QtDimmingPanelAfterTheInputTest, TheInputComesFirstInEitherStyle) {
    for (const int level : {0, 1000}) {
        panel->setLevel(level);
        panel->setAlpha(0.2);
        panel->orderBelow(kTarget);
        EXPECT_FALSE(haze.isShown);
        afterTheInput.theInputIsPainted();
        EXPECT_TRUE(haze.isShown);
        panel->animateAlpha(0);
        ASSERT_TRUE(runUntil([&] { return !haze.isShown; }));
    }
    EXPECT_THAT(haze.journal, ElementsAre("below 77", "hidden", "over applications", "hidden"));
}

TEST_F(QtDimmingPanelAfterTheInputTest, ASearchThatEndsBeforeLeavesNothingBehind) {
    panel->setAlpha(0.2);
    panel->orderBelow(kTarget);
    panel->animateAlpha(0);
    afterTheInput.theInputIsPainted();
    EXPECT_FALSE(haze.isShown);
}

}  // namespace
}  // namespace tarvix
