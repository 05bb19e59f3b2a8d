#include <QPaintEvent>

#include "qt/MarkerPainting.h"
#include "qt/QtCanvasPanel.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

constexpr Color kYellow{1, 1, 0, 1}, kBlack{0, 0, 0, 1}, kWhite{1, 1, 1, 1};

MarkerDrawing block(PanelRect frame, double alpha = 0.6) { return {frame, alpha, 0, {{0, 0, kYellow}}}; }
MarkerDrawing outline(PanelRect frame, double alpha = 0.9) { return {frame, alpha, 0, {{2, 2, kYellow}}}; }

QImage painted(const MarkerDrawing& marker, QRectF bounds, QSize size = {60, 40}) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paintMarker(painter, marker, bounds);
    return image;
}

// The pixels that aren't fully transparent.
QRegion inked(const QImage& image) {
    QRegion region;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y).alpha() != 0) region += QRect(x, y, 1, 1);
    return region;
}

// Equal regions may be cut into rectangles differently.
bool same(const QRegion& a, const QRegion& b) { return (a ^ b).isEmpty(); }

class MarkerPainting : public QtTest {};

TEST_F(MarkerPainting, AFillCoversExactlyThePixelsOfItsFrame) {
    const QImage image = painted(block({}, 1), {10, 5, 30, 20});
    EXPECT_TRUE(same(inked(image), QRegion(10, 5, 30, 20)));
    for (const QPoint pixel : {QPoint(10, 5), QPoint(39, 24), QPoint(20, 10)})
        EXPECT_EQ(image.pixelColor(pixel), QColor(255, 255, 0)) << pixel.x();
}

TEST_F(MarkerPainting, AStrokeIsCentredOnTheInsetBounds) {
    // Inset 2 and width 2: the ring from 1 to 3 pixels inside the frame.
    const QRegion ring = QRegion(11, 6, 28, 18) - QRegion(13, 8, 24, 14);
    const QImage image = painted(outline({}, 1), {10, 5, 30, 20});
    EXPECT_TRUE(same(inked(image), ring));
    EXPECT_EQ(image.pixelColor(11, 6), QColor(255, 255, 0));
}

TEST_F(MarkerPainting, AlphaBelongsToTheMarkerAsAWhole) {
    const MarkerDrawing marker{{}, 0.6, 0, {{0, 0, kWhite}, {2.5, 2, kBlack}}};
    const QImage image = painted(marker, {10, 5, 30, 20});
    for (const QPoint pixel : {QPoint(10, 5), QPoint(12, 12), QPoint(25, 15)})
        EXPECT_NEAR(image.pixelColor(pixel).alphaF(), 0.6, 0.005) << pixel.x();
    EXPECT_EQ(image.pixelColor(25, 15).red(), 255);
    EXPECT_LT(image.pixelColor(12, 12).red(), 10);  // under the black stroke no white shines through
}

TEST_F(MarkerPainting, CornersAreCutAndTheRestIsNot) {
    MarkerDrawing marker = block({}, 1);
    marker.cornerRadius = 5;
    const QImage image = painted(marker, {10, 5, 30, 20});
    for (const QPoint corner : {QPoint(10, 5), QPoint(39, 5), QPoint(10, 24), QPoint(39, 24)})
        EXPECT_LT(image.pixelColor(corner).alpha(), 40);
    EXPECT_EQ(image.pixelColor(15, 5).alpha(), 255);
    EXPECT_EQ(image.pixelColor(10, 10).alpha(), 255);
    EXPECT_TRUE((inked(image) - QRegion(10, 5, 30, 20)).isEmpty());
}

TEST_F(MarkerPainting, AnInsetStrokeIsCutByTheRoundedFrame) {
    MarkerDrawing marker = outline({}, 1);
    marker.cornerRadius = 8;
    const QImage image = painted(marker, {10, 5, 30, 20});
    EXPECT_LT(image.pixelColor(11, 6).alpha(), 10);  // the ring's own corner lies outside of the rounded frame
    EXPECT_GT(image.pixelColor(12, 7).alpha(), 0);   // and is not broken there
    EXPECT_EQ(image.pixelColor(25, 6).alpha(), 255);
    const QRegion ring = QRegion(11, 6, 28, 18) - QRegion(13, 8, 24, 14);
    EXPECT_TRUE((inked(image) - ring).isEmpty());
}

TEST_F(MarkerPainting, AnEdgeBetweenPixelsCoversThemInPart) {
    const QImage image = painted(block({}, 1), {10.5, 5, 30, 20});
    EXPECT_NEAR(image.pixelColor(10, 10).alpha(), 128, 2);
    EXPECT_EQ(image.pixelColor(11, 10).alpha(), 255);
    EXPECT_NEAR(image.pixelColor(40, 10).alpha(), 128, 2);
}

TEST_F(MarkerPainting, AMarkerOfNoSizeDrawsNothing) {
    EXPECT_TRUE(inked(painted(block({}, 1), {10, 5, 0, 0})).isEmpty());
    EXPECT_TRUE(inked(painted(outline({}, 1), {10, 5, 0, 20})).isEmpty());
    EXPECT_TRUE(markerOutline(outline({}, 1), {10, 5, 0, 0}).isEmpty());
}

TEST_F(MarkerPainting, AStrokeThatFillsAThinMarkerStaysWithinIt) {
    EXPECT_TRUE((inked(painted(outline({}, 1), {10, 5, 30, 4})) - QRegion(10, 5, 30, 4)).isEmpty());
}

TEST_F(MarkerPainting, TheOutlineOfAStrokeIsItsRingAndOfAFillItsBlock) {
    EXPECT_TRUE(same(markerOutline(block({}), {10, 5, 30, 20}), QRegion(10, 5, 30, 20)));
    EXPECT_TRUE(same(markerOutline(outline({}), {10, 5, 30, 20}), QRegion(11, 6, 28, 18) - QRegion(13, 8, 24, 14)));
}

TEST_F(MarkerPainting, WithoutTranslucencyTheOutlineIsPaintedToItsLastPixel) {
    MarkerDrawing reader{{}, 0.9, 5, {{1.5, 1.5, kWhite}, {3.5, 2.5, kBlack}, {5.5, 1.5, kWhite}}};
    for (const MarkerDrawing& marker : {reader, block({}), outline({})}) {
        for (const QRectF bounds : {QRectF(10, 5, 30, 20), QRectF(10.3, 5.5, 30.4, 20), QRectF(10, 5, 7, 3)}) {
            QImage image(60, 40, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            QPainter painter(&image);
            paintOpaqueMarker(painter, marker, bounds);
            painter.end();
            EXPECT_TRUE(same(inked(image), markerOutline(marker, bounds)));
        }
    }
}

TEST_F(MarkerPainting, OnlyWhatDiffersCounts) {
    const auto a = outline({{0, 0}, {10, 10}}), b = outline({{20, 0}, {10, 10}}), c = outline({{40, 0}, {10, 10}});
    const MarkerChanges none = markerChanges({a, b, c}, {a, b, c});
    EXPECT_TRUE(none.gone.empty() && none.come.empty());
    const MarkerChanges fewer = markerChanges({a, b, c}, {a, c});
    EXPECT_EQ(fewer.gone, std::vector<std::size_t>{1});
    EXPECT_TRUE(fewer.come.empty());
    const MarkerChanges primary = markerChanges({a, b}, {a, block(b.frame)});
    EXPECT_EQ(primary.gone, std::vector<std::size_t>{1});
    EXPECT_EQ(primary.come, std::vector<std::size_t>{1});
    const MarkerChanges swapped = markerChanges({a, b}, {b, a});
    EXPECT_EQ(swapped.gone, std::vector<std::size_t>{0});
    EXPECT_EQ(swapped.come, std::vector<std::size_t>{1});
    const MarkerChanges twice = markerChanges({a}, {a, a});
    EXPECT_TRUE(twice.gone.empty());
    EXPECT_EQ(twice.come, std::vector<std::size_t>{1});
}

// Copies of a marker are what it would be if it were painted, also where markers lie over each other.
TEST(QtMarkerPainter, ACopyIsWhatThePaintingWouldBe) {
    const MarkerShape stroke{2, 2, {0, 0.8, 1, 1}}, fill{0, 0, {1, 1, 0, 1}};
    std::vector<std::pair<MarkerDrawing, QRectF>> markers;
    for (int i = 0; i < 12; ++i) {
        const bool isStroke = i % 3 != 0;
        const MarkerDrawing marker{
            {{0, 0}, {40, 30}}, isStroke ? 0.9 : 0.6, isStroke ? 8.0 : 5.0, {isStroke ? stroke : fill}};
        markers.emplace_back(marker, QRectF(10 + 25 * i + (i > 8 ? 0.5 : 0), 10 + 7 * i, 40, 30));
    }
    QImage painted(360, 140, QImage::Format_ARGB32_Premultiplied), copied = painted;
    painted.fill(Qt::transparent);
    copied.fill(Qt::transparent);
    {
        QPainter plain(&painted), quick(&copied);
        MarkerPainter painter(quick);
        for (const auto& [marker, bounds] : markers) {
            paintMarker(plain, marker, bounds);
            painter.paint(marker, bounds);
        }
    }
    int seen = 0;
    for (int y = 0; y < painted.height(); ++y)
        for (int x = 0; x < painted.width(); ++x) {
            const QRgb a = painted.pixel(x, y), b = copied.pixel(x, y);
            seen += qAlpha(a) > 0;
            // Twice rounded instead of once.
            const int most = std::max({std::abs(qAlpha(a) - qAlpha(b)), std::abs(qRed(a) - qRed(b)),
                                       std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
            ASSERT_LE(most, 3) << x << "," << y;
        }
    EXPECT_GT(seen, 1000);
}

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
