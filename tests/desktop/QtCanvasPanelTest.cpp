#include <QPaintEvent>

#include "qt/QtCanvasPanel.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

constexpr Color kYellow{1, 1, 0, 1};

MarkerDrawing block(PanelRect frame, double alpha = 0.6) { return {frame, alpha, 0, {{0, 0, kYellow}}}; }
MarkerDrawing outline(PanelRect frame, double alpha = 0.9) { return {frame, alpha, 0, {{2, 2, kYellow}}}; }

// Equal regions may be cut into rectangles differently.
bool same(const QRegion& a, const QRegion& b) { return (a ^ b).isEmpty(); }

class QtCanvasPanelTest : public QtPanelTest {
protected:
    QtCanvasPanelTest() {
        canvas->setContent([this] {
            ++asked;
            return markers;
        });
        ground.setGeometry(0, 0, 800, 600);
        ground.setWindowFlags(Qt::X11BypassWindowManagerHint);
        QPalette palette;
        palette.setColor(QPalette::Window, QColor(0, 0, 255));
        ground.setPalette(palette);
        ground.show();
        runUntil([&] { return screenshot().pixelColor(400, 300) == QColor(0, 0, 255); });
        height = screens.frames().front().height();
        canvas->setFrame(screens.frames().front());
    }

    // A marker's frame by its place on the screen.
    PanelRect at(double x, double y, double w, double h) const { return {{x, height - y - h}, {w, h}}; }

    void show() {
        canvas->orderFrontRegardless();
        ASSERT_TRUE(shown());
    }
    bool shown() {
        const std::string moment = "markers drawn " + std::to_string(markers.size());
        return runUntil([&] { return milestones.has(moment); });
    }
    bool pixelBecomes(QPoint pixel, QColor color) {
        return runUntil([&] {
            const QColor seen = screenshot().pixelColor(pixel);
            return std::abs(seen.red() - color.red()) < 3 && std::abs(seen.green() - color.green()) < 3 &&
                   std::abs(seen.blue() - color.blue()) < 3;
        });
    }

    std::unique_ptr<CanvasPanel> canvas = makeQtCanvasPanel(services, milestone::markersDrawn);
    std::vector<MarkerDrawing> markers;
    int asked = 0;
    double height = 0;
    QWidget ground;
};

TEST_F(QtCanvasPanelTest, MarkersStandOnTheirPixelsAndTheRestShowsThrough) {
    if (!windowing.composited) GTEST_SKIP() << "no compositor runs here";
    markers = {block(at(100, 100, 50, 30), 0.6), outline(at(200, 100, 50, 30), 1)};
    show();
    EXPECT_TRUE(pixelBecomes({100, 100}, QColor(153, 153, 102)));
    EXPECT_TRUE(pixelBecomes({149, 129}, QColor(153, 153, 102)));
    EXPECT_TRUE(pixelBecomes({201, 101}, QColor(255, 255, 0)));
    const QImage seen = screenshot();
    const QColor blue(0, 0, 255);
    for (const QPoint outside : {QPoint(99, 100), QPoint(100, 99), QPoint(150, 129), QPoint(149, 130), QPoint(200, 100),
                                 QPoint(203, 103), QPoint(225, 115)})
        EXPECT_EQ(seen.pixelColor(outside), blue) << outside.x() << "," << outside.y();
}

TEST_F(QtCanvasPanelTest, WithoutACompositorOnlyTheMarkersAreCovered) {
    windowing.composited = false;
    markers = {block(at(100, 100, 50, 30), 0.6), outline(at(200, 100, 50, 30), 0.9)};
    show();
    const QColor yellow(255, 255, 0), blue(0, 0, 255);
    EXPECT_TRUE(pixelBecomes({100, 100}, yellow));
    EXPECT_TRUE(pixelBecomes({149, 129}, yellow));
    EXPECT_TRUE(pixelBecomes({201, 101}, yellow));
    const QImage seen = screenshot();
    for (const QPoint outside :
         {QPoint(99, 100), QPoint(150, 129), QPoint(200, 100), QPoint(203, 103), QPoint(225, 115)})
        EXPECT_EQ(seen.pixelColor(outside), blue) << outside.x() << "," << outside.y();
    markers.clear();
    canvas->setNeedsDisplay();
    EXPECT_TRUE(pixelBecomes({100, 100}, blue));
    EXPECT_TRUE(pixelBecomes({300, 300}, blue));
}

TEST_F(QtCanvasPanelTest, ThePointerGoesThroughIt) {
    markers = {block(at(100, 100, 50, 30))};
    show();
    EXPECT_EQ(windowing.server.windowAt({120, 110}), ground.winId());
    windowing.composited = false;
    canvas->orderFrontRegardless();
    EXPECT_EQ(windowing.server.windowAt({120, 110}), ground.winId());
}

TEST_F(QtCanvasPanelTest, ACompositorThatComesOrGoesCountsFromTheNextShowOn) {
    windowing.composited = false;
    markers = {block(at(100, 100, 50, 30))};
    show();
    EXPECT_FALSE(topLevel("Canvas")->mask().isEmpty());
    windowing.composited = true;
    canvas->orderFrontRegardless();
    EXPECT_TRUE(topLevel("Canvas")->mask().isEmpty());
}

TEST_F(QtCanvasPanelTest, SeveralRequestsInOnePassAskForTheContentOnce) {
    show();
    asked = 0;
    canvas->setNeedsDisplay();
    canvas->setNeedsDisplay();
    EXPECT_EQ(asked, 0);
    drain();
    EXPECT_EQ(asked, 1);
}

TEST_F(QtCanvasPanelTest, OnlyTheChangedMarkersArePaintedAnew) {
    class Watch : public QObject {
    public:
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::Paint) region += static_cast<QPaintEvent*>(event)->region();
            return false;
        }
        QRegion region;
    } watch;
    markers = {block(at(100, 100, 50, 30)), outline(at(200, 100, 50, 30)), outline(at(300, 100, 50, 30))};
    show();
    drain();
    topLevel("Canvas")->installEventFilter(&watch);
    markers[0] = outline(at(100, 100, 50, 30));
    markers[1] = block(at(200, 100, 50, 30));
    canvas->setNeedsDisplay();
    drain();
    QRegion expected = QRegion(100, 100, 50, 30) + QRegion(200, 100, 50, 30);
    if (!windowing.composited) expected &= topLevel("Canvas")->mask();
    EXPECT_TRUE(same(watch.region, expected));
    watch.region = {};
    canvas->setNeedsDisplay();
    drain();
    EXPECT_TRUE(watch.region.isEmpty());
    topLevel("Canvas")->removeEventFilter(&watch);
}

// Onto the window's own pixels it paints in a way of its own.
TEST_F(QtCanvasPanelTest, ItLooksTheSameOnAnySurface) {
    if (!windowing.composited) GTEST_SKIP() << "no compositor runs here";
    markers = {block(at(100, 100, 50, 30), 0.6), outline(at(200, 100, 50, 30), 0.9), block(at(210, 110, 60, 40), 0.6)};
    show();
    const auto rendered = [](QImage::Format format, QPoint offset) {
        QImage image(400, 200, format);
        image.fill(Qt::black);
        topLevel("Canvas")->render(&image, offset, QRegion(), QWidget::DrawChildren);
        return image;
    };
    const QImage own = rendered(QImage::Format_ARGB32_Premultiplied, {});
    const QImage foreign = rendered(QImage::Format_RGB32, {});
    const QImage moved = rendered(QImage::Format_ARGB32_Premultiplied, {7, 9});
    EXPECT_NEAR(qRed(own.pixel(110, 110)), 153, 1);
    for (int y = 0; y < 180; ++y)
        for (int x = 0; x < 380; ++x) {
            ASSERT_NEAR(qRed(own.pixel(x, y)), qRed(foreign.pixel(x, y)), 2) << x << "," << y;
            ASSERT_NEAR(qRed(own.pixel(x, y)), qRed(moved.pixel(x + 7, y + 9)), 2) << x << "," << y;
        }
}

TEST_F(QtCanvasPanelTest, HiddenItIsGoneAndComesBackWithNewContent) {
    markers = {block(at(100, 100, 50, 30), 1)};
    show();
    ASSERT_TRUE(pixelBecomes({110, 110}, QColor(255, 255, 0)));
    canvas->orderOut();
    EXPECT_TRUE(pixelBecomes({110, 110}, QColor(0, 0, 255)));
    markers = {block(at(300, 100, 50, 30), 1), block(at(400, 100, 50, 30), 1)};
    show();
    EXPECT_TRUE(pixelBecomes({310, 110}, QColor(255, 255, 0)));
    EXPECT_TRUE(pixelBecomes({110, 110}, QColor(0, 0, 255)));
}

TEST_F(QtCanvasPanelTest, AFrameOffTheOriginCarriesItsMarkersAlong) {
    canvas->setFrame({{50, height - 400}, {400, 300}});
    const PanelRect place = at(100, 150, 20, 20);
    markers = {block({{place.origin.x - 50, place.origin.y - (height - 400)}, place.size}, 1)};
    show();
    EXPECT_TRUE(pixelBecomes({100, 150}, QColor(255, 255, 0)));
    EXPECT_TRUE(pixelBecomes({119, 169}, QColor(255, 255, 0)));
    EXPECT_EQ(screenshot().pixelColor(99, 150), QColor(0, 0, 255));
    EXPECT_EQ(screenshot().pixelColor(120, 169), QColor(0, 0, 255));
}

}  // namespace
}  // namespace tarvix
