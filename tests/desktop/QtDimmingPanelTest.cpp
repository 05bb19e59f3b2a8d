#include "qt/QtDimmingPanel.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

class QtDimmingPanelTest : public QtPanelTest {
protected:
    static QWidget* window() { return topLevel("HazeOverWindow"); }

    std::unique_ptr<DimmingPanel> panel = makeQtDimmingPanel(services);
};

TEST_F(QtDimmingPanelTest, ItComesAtOnceAndFadesAway) {
    windowing.composited = true;
    panel->setFrame(screens.frames().front());
    panel->setAlpha(0.2);
    EXPECT_FALSE(window()->isVisible());
    panel->orderFront();
    EXPECT_TRUE(window()->isVisible());
    EXPECT_NEAR(window()->windowOpacity(), 0.2, 0.005);
    panel->animateAlpha(0);
    EXPECT_TRUE(window()->isVisible());
    EXPECT_TRUE(runUntil([] { return !window()->isVisible(); }));
}

TEST_F(QtDimmingPanelTest, ANewAlphaEndsTheFade) {
    windowing.composited = true;
    panel->setAlpha(0.5);
    panel->orderFront();
    panel->animateAlpha(0);
    panel->setAlpha(0.4);
    EXPECT_NEAR(window()->windowOpacity(), 0.4, 0.005);
    EXPECT_TRUE(window()->isVisible());
}

TEST_F(QtDimmingPanelTest, WithoutACompositorItStaysAway) {
    windowing.composited = false;
    panel->setAlpha(0.2);
    panel->orderFront();
    EXPECT_FALSE(window()->isVisible());
}

TEST_F(QtDimmingPanelTest, AfterFadingAwayAnAlphaAloneDoesNotBringItBack) {
    windowing.composited = true;
    panel->setAlpha(0.5);
    panel->orderFront();
    panel->animateAlpha(0);
    ASSERT_TRUE(runUntil([] { return !window()->isVisible(); }));
    panel->setAlpha(0.5);
    EXPECT_FALSE(window()->isVisible());
    panel->orderFront();
    EXPECT_TRUE(window()->isVisible());
}

class QtDimmingPanelBetweenWindowsTest : public QtDimmingPanelTest {
protected:
    QtDimmingPanelBetweenWindowsTest() {
        for (QWidget* widget : {&behind, &front}) {
            widget->setWindowFlags(Qt::X11BypassWindowManagerHint);
            widget->setAutoFillBackground(true);
            widget->setPalette(QPalette(Qt::white));
            widget->show();
        }
        behind.setGeometry(100, 100, 200, 200);
        front.setGeometry(400, 100, 200, 200);
        front.raise();
        panel->setFrame(screens.frames().front());
        panel->setAlpha(0.5);
    }

    bool whiteIsShown() {
        return runUntil([] { return screenshot().pixelColor(500, 200) == QColor(Qt::white); });
    }

    QWidget behind, front;
};

TEST_F(QtDimmingPanelBetweenWindowsTest, ItGoesBelowTheWindowItIsTold) {
    if (!windowing.composited) GTEST_SKIP() << "no compositor runs here";
    ASSERT_TRUE(whiteIsShown());
    panel->orderBelow(static_cast<std::uint32_t>(front.winId()));
    ASSERT_TRUE(runUntil([&] { return screenshot().pixelColor(200, 200).red() < 200; }));
    EXPECT_EQ(screenshot().pixelColor(500, 200), QColor(Qt::white));
    EXPECT_EQ(windowing.server.windowAt({200, 200}), behind.winId());
}

TEST_F(QtDimmingPanelBetweenWindowsTest, OfAHigherLevelItLiesAboveThatWindowToo) {
    if (!windowing.composited) GTEST_SKIP() << "no compositor runs here";
    ASSERT_TRUE(whiteIsShown());
    panel->setLevel(1000);
    panel->orderBelow(static_cast<std::uint32_t>(front.winId()));
    EXPECT_TRUE(runUntil([&] { return screenshot().pixelColor(500, 200).red() < 200; }));
}

}  // namespace
}  // namespace tarvix
