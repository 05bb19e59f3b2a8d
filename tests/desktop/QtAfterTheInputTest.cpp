#include "qt/AfterTheInput.h"
#include "qt/QtCanvasPanel.h"
#include "qt/QtDimmingPanel.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

class QtAfterTheInputTest : public QtPanelTest {
protected:
    QtAfterTheInputTest() {
        windowing.composited = true;
        services.afterTheInput = &after;
        canvas = makeQtCanvasPanel(services, milestone::markersDrawn);
        canvas->setContent([this] { return markers; });
        canvas->setFrame(screens.frames().front());
        dimming = makeQtDimmingPanel(services);
        dimming->setFrame(screens.frames().front());
        dimming->setAlpha(0.3);
        window.setWindowFlags(Qt::X11BypassWindowManagerHint);
        window.show();
    }

    static bool canvasIsShown() { return topLevel("Canvas")->isVisible(); }
    bool isDimmed() const { return windowing.haze.isShown; }
    void dim() { dimming->orderBelow(static_cast<std::uint32_t>(window.winId())); }

    AfterTheInput after;
    QWidget window;
    std::vector<MarkerDrawing> markers;
    std::unique_ptr<CanvasPanel> canvas;
    std::unique_ptr<DimmingPanel> dimming;
};

TEST_F(QtAfterTheInputTest, AnEmptyCanvasAndTheDimmingComeOnceTheInputIsPainted) {
    canvas->orderFrontRegardless();
    dim();
    EXPECT_FALSE(canvasIsShown());
    EXPECT_FALSE(isDimmed());
    after.theInputIsPainted();
    EXPECT_TRUE(canvasIsShown());
    EXPECT_TRUE(isDimmed());
}

TEST_F(QtAfterTheInputTest, WhereTheInputStaysHiddenTheyComeAllTheSame) {
    canvas->orderFrontRegardless();
    dim();
    EXPECT_TRUE(runUntil([&] { return canvasIsShown() && isDimmed(); }));
}

TEST_F(QtAfterTheInputTest, MarkersDoNotWait) {
    canvas->orderFrontRegardless();
    markers = {{{{100, 100}, {50, 30}}, 1, 0, {{0, 0, {1, 1, 0, 1}}}}};
    canvas->orderFrontRegardless();
    EXPECT_TRUE(canvasIsShown());
    EXPECT_TRUE(runUntil([&] { return milestones.has("markers drawn 1"); }));
    after.theInputIsPainted();
    drain();
    EXPECT_FALSE(milestones.has("markers drawn 0"));
}

TEST_F(QtAfterTheInputTest, WhatIsPutAwayMeanwhileStaysAway) {
    canvas->orderFrontRegardless();
    dim();
    canvas->orderOut();
    dimming->animateAlpha(0);
    after.theInputIsPainted();
    EXPECT_FALSE(canvasIsShown());
    EXPECT_FALSE(isDimmed());
}

TEST_F(QtAfterTheInputTest, WhatLiesAboveAllApplicationsWaitsToo) {
    dimming->setLevel(1000);
    dim();
    EXPECT_FALSE(isDimmed());
    after.theInputIsPainted();
    EXPECT_TRUE(isDimmed());
}

}  // namespace
}  // namespace tarvix
