#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QRegion>

#include "qt/MarkerPainter.h"
#include "qt/MarkerPainting.h"
#include "tests/qt/Pictures.h"

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

TEST(MarkerPainting, AFillCoversExactlyThePixelsOfItsFrame) {
    const QImage image = painted(block({}, 1), {10, 5, 30, 20});
    EXPECT_TRUE(same(inked(image), QRegion(10, 5, 30, 20)));
    for (const QPoint pixel : {QPoint(10, 5), QPoint(39, 24), QPoint(20, 10)})
        EXPECT_EQ(image.pixelColor(pixel), QColor(255, 255, 0)) << pixel.x();
}

TEST(MarkerPainting, AStrokeIsCentredOnTheInsetBounds) {
    // Inset 2 and width 2: the ring from 1 to 3 pixels inside the frame.
    const QRegion ring = QRegion(11, 6, 28, 18) - QRegion(13, 8, 24, 14);
    const QImage image = painted(outline({}, 1), {10, 5, 30, 20});
    EXPECT_TRUE(same(inked(image), ring));
    EXPECT_EQ(image.pixelColor(11, 6), QColor(255, 255, 0));
}

TEST(MarkerPainting, AlphaBelongsToTheMarkerAsAWhole) {
    const MarkerDrawing marker{{}, 0.6, 0, {{0, 0, kWhite}, {2.5, 2, kBlack}}};
    const QImage image = painted(marker, {10, 5, 30, 20});
    for (const QPoint pixel : {QPoint(10, 5), QPoint(12, 12), QPoint(25, 15)})
        EXPECT_NEAR(image.pixelColor(pixel).alphaF(), 0.6, 0.005) << pixel.x();
    EXPECT_EQ(image.pixelColor(25, 15).red(), 255);
    EXPECT_LT(image.pixelColor(12, 12).red(), 10);  // under the black stroke no white shines through
}

TEST(MarkerPainting, CornersAreCutAndTheRestIsNot) {
    MarkerDrawing marker = block({}, 1);
    marker.cornerRadius = 5;
    const QImage image = painted(marker, {10, 5, 30, 20});
    for (const QPoint corner : {QPoint(10, 5), QPoint(39, 5), QPoint(10, 24), QPoint(39, 24)})
        EXPECT_LT(image.pixelColor(corner).alpha(), 40);
    EXPECT_EQ(image.pixelColor(15, 5).alpha(), 255);
    EXPECT_EQ(image.pixelColor(10, 10).alpha(), 255);
    EXPECT_TRUE((inked(image) - QRegion(10, 5, 30, 20)).isEmpty());
}

TEST(MarkerPainting, AnInsetStrokeIsCutByTheRoundedFrame) {
    MarkerDrawing marker = outline({}, 1);
    marker.cornerRadius = 8;
    const QImage image = painted(marker, {10, 5, 30, 20});
    EXPECT_LT(image.pixelColor(11, 6).alpha(), 10);  // the ring's own corner lies outside of the rounded frame
    EXPECT_GT(image.pixelColor(12, 7).alpha(), 0);   // and is not broken there
    EXPECT_EQ(image.pixelColor(25, 6).alpha(), 255);
    const QRegion ring = QRegion(11, 6, 28, 18) - QRegion(13, 8, 24, 14);
    EXPECT_TRUE((inked(image) - ring).isEmpty());
}

TEST(MarkerPainting, AnEdgeBetweenPixelsCoversThemInPart) {
    const QImage image = painted(block({}, 1), {10.5, 5, 30, 20});
    EXPECT_NEAR(image.pixelColor(10, 10).alpha(), 128, 2);
    EXPECT_EQ(image.pixelColor(11, 10).alpha(), 255);
    EXPECT_NEAR(image.pixelColor(40, 10).alpha(), 128, 2);
}

TEST(MarkerPainting, AMarkerOfNoSizeDrawsNothing) {
    EXPECT_TRUE(inked(painted(block({}, 1), {10, 5, 0, 0})).isEmpty());
    EXPECT_TRUE(inked(painted(outline({}, 1), {10, 5, 0, 20})).isEmpty());
    EXPECT_TRUE(markerOutline(outline({}, 1), {10, 5, 0, 0}).isEmpty());
}

TEST(MarkerPainting, AStrokeThatFillsAThinMarkerStaysWithinIt) {
    EXPECT_TRUE((inked(painted(outline({}, 1), {10, 5, 30, 4})) - QRegion(10, 5, 30, 4)).isEmpty());
}

TEST(MarkerPainting, TheOutlineOfAStrokeIsItsRing) {
    EXPECT_TRUE(same(markerOutline(outline({}), {10, 5, 30, 20}), QRegion(11, 6, 28, 18) - QRegion(13, 8, 24, 14)));
}

TEST(MarkerPainting, TheOutlineOfAFillIsARimAndEverySecondRowWithin) {
    QRegion expected = QRegion(10, 5, 30, 20) - QRegion(12, 7, 26, 16);
    for (int y = 7; y < 23; y += 2) expected += QRect(10, y, 30, 1);
    EXPECT_TRUE(same(markerOutline(block({}), {10, 5, 30, 20}), expected));
    EXPECT_TRUE(same(markerOutline(block({}), {10, 5, 30, 4}), QRegion(10, 5, 30, 4)));
}

TEST(MarkerPainting, WithoutTranslucencyTheOutlineIsPaintedToItsLastPixel) {
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

// What must not matter to the painter of many: where in its pixel a marker begins, and how long its edges are.
const QRectF kPlaces[] = {{3, 4, 100, 30},    {3.5, 4.25, 100, 30}, {3.3, 4.7, 99.6, 30.9}, {3, 4, 16, 16},
                          {3, 4, 19, 19},     {3, 4, 20, 20},       {3, 4, 18, 140},        {3.9, 4.1, 7.2, 9.9},
                          {3, 4, 4, 60},      {3, 4, 5, 5},         {-30, 4, 100, 30},      {150, 120, 100, 60},
                          {-20, -20, 40, 40}, {3, 4, 0, 0},         {500, 4, 20, 20}};

const MarkerDrawing kLooks[] = {{{}, 0.6, 5, {{0, 0, kYellow}}},
                                {{}, 0.9, 8, {{2, 2, kYellow}}},
                                {{}, 0.6, 5, {{0, 0, kWhite}, {2.5, 2.5, kBlack}}},
                                {{}, 0.9, 0, {{1.5, 1.5, kWhite}, {3.5, 2.5, kBlack}, {5.5, 1.5, kWhite}}},
                                {{}, 0.9, 5, {{1.5, 1.5, kWhite}, {3.5, 2.5, kBlack}, {5.5, 1.5, kWhite}}}};

QImage blank(int scale = 1) {
    QImage image(QSize(200, 150) * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    return image;
}

// Every look twice in every place, so that markers lie over each other, and stamps are used again.
template <class Paint>
void paintAll(Paint paint) {
    for (int round = 0; round < 2; ++round)
        for (const MarkerDrawing& look : kLooks)
            for (const QRectF& place : kPlaces) paint(look, place.translated(9 * round, 11 * round));
}

TEST(MarkerPainter, PaintsWhatMarkersPaintedOneByOneAre) {
    for (const int scale : {1, 2}) {
        MarkerPainter many;
        for (const MarkerDrawing& look : kLooks)
            for (const QRectF& place : kPlaces) {
                QImage expected = blank(scale), actual = blank(scale);
                QPainter painter(&expected);
                paintMarker(painter, look, place);
                painter.end();
                many.begin(actual, QRect(QPoint(0, 0), actual.size()));
                many.paint(look, place);
                const ImageDifference found = difference(actual, expected, 2);
                EXPECT_EQ(found.pixels, 0)
                    << look.shapes.size() << " shapes at " << place.x() << "," << place.y() << " of " << place.width()
                    << "x" << place.height() << ", scale " << scale << ", up to " << found.worst;
            }
    }
}

TEST(MarkerPainter, MarkersThatLieOverEachOtherBlend) {
    QImage expected = blank(), actual = blank();
    QPainter painter(&expected);
    MarkerPainter many;
    many.begin(actual, actual.rect());
    paintAll([&](const MarkerDrawing& look, const QRectF& place) {
        paintMarker(painter, look, place);
        many.paint(look, place);
    });
    painter.end();
    EXPECT_LE(difference(actual, expected, 0).worst, 4);  // each of many layers is rounded
}

TEST(MarkerPainter, WhatIsNotExposedStaysAsItIs) {
    QImage whole = blank(), parts = blank();
    const QRegion exposed = QRegion(10, 5, 30, 60) + QRegion(60, 20, 90, 3) + QRegion(120, 30, 500, 500);
    MarkerPainter all, some;
    all.begin(whole, whole.rect());
    some.begin(parts, exposed);
    paintAll([&](const MarkerDrawing& look, const QRectF& place) {
        all.paint(look, place);
        some.paint(look, place);
    });
    for (int y = 0; y < whole.height(); ++y)
        for (int x = 0; x < whole.width(); ++x)
            ASSERT_EQ(parts.pixel(x, y), exposed.contains(QPoint(x, y)) ? whole.pixel(x, y) : 0u) << x << "," << y;
}

TEST(MarkerPainting, AStrokeWhoseInsetHasUsedUpTheMarkerIsNotDrawn) {
    EXPECT_TRUE(inked(painted(outline({}), {10, 5, 30, 3})).isEmpty());
    EXPECT_TRUE(inked(painted(outline({}), {10, 5, 3, 30})).isEmpty());
    EXPECT_TRUE(markerOutline(outline({}), {10, 5, 30, 3}).isEmpty());
    EXPECT_FALSE(inked(painted(outline({}), {10, 5, 30, 4})).isEmpty());
}

TEST(MarkerPainting, OnlyPremultipliedPixelsCanBePaintedManyOnTo) {
    EXPECT_TRUE(MarkerPainter::suits(blank()));
    EXPECT_FALSE(MarkerPainter::suits(QImage(1, 1, QImage::Format_RGB32)));
    EXPECT_FALSE(MarkerPainter::suits(QImage(1, 1, QImage::Format_RGB16)));
}

}  // namespace
}  // namespace tarvix
