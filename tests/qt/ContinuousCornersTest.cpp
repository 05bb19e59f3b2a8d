#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "qt/ContinuousCorners.h"

namespace tarvix {
namespace {

const QRectF kRect(10, 20, 200, 100);

// How far the outline is from the tip of a corner, along the diagonal.
double depth(const QPainterPath& path, QPointF tip, QPointF inwards) {
    double from = 0, to = 50;
    for (int halvings = 0; halvings < 40; ++halvings) {
        const double middle = (from + to) / 2;
        (path.contains(tip + inwards * middle / std::numbers::sqrt2) ? to : from) = middle;
    }
    return to;
}

double depthOfCircle(double radius) { return radius * (std::numbers::sqrt2 - 1); }

TEST(ContinuousCorners, InTheirMiddleTheyAreAsRoundAsACircle) {
    const QPainterPath path = continuousRoundedRect(kRect, 20);
    EXPECT_NEAR(depth(path, kRect.topLeft(), {1, 1}), depthOfCircle(20), 0.3);
    EXPECT_NEAR(depth(path, kRect.topRight(), {-1, 1}), depthOfCircle(20), 0.3);
    EXPECT_NEAR(depth(path, kRect.bottomRight(), {-1, -1}), depthOfCircle(20), 0.3);
    EXPECT_NEAR(depth(path, kRect.bottomLeft(), {1, -1}), depthOfCircle(20), 0.3);
}

TEST(ContinuousCorners, TheyBeginBeforeACircleWould) {
    const QPainterPath path = continuousRoundedRect(kRect, 20);
    QPainterPath circles;
    circles.addRoundedRect(kRect, 20, 20);
    const QPointF whereACircleBegins = kRect.topLeft() + QPointF(20, 0.05);
    EXPECT_TRUE(circles.contains(whereACircleBegins));
    EXPECT_FALSE(path.contains(whereACircleBegins));
    EXPECT_TRUE(path.contains(kRect.topLeft() + QPointF(33, 0.05)));
}

TEST(ContinuousCorners, TheOutlineFillsTheRectangle) {
    const QRectF bounds = continuousRoundedRect(kRect, 20).boundingRect();
    EXPECT_NEAR(bounds.left(), kRect.left(), 1e-6);
    EXPECT_NEAR(bounds.top(), kRect.top(), 1e-6);
    EXPECT_NEAR(bounds.right(), kRect.right(), 1e-6);
    EXPECT_NEAR(bounds.bottom(), kRect.bottom(), 1e-6);
}

TEST(ContinuousCorners, WithoutRoomTheyAreCirclesOfHalfTheShorterSide) {
    for (const double radius : {50.0, 80.0, 1000.0})
        EXPECT_NEAR(depth(continuousRoundedRect(kRect, radius), kRect.topLeft(), {1, 1}), depthOfCircle(50), 0.05)
            << radius;
}

TEST(ContinuousCorners, WithoutARadiusOrAnAreaThereIsNothingToRound) {
    EXPECT_TRUE(continuousRoundedRect(kRect, 0).contains(kRect.topLeft() + QPointF(0.1, 0.1)));
    EXPECT_TRUE(continuousRoundedRect(kRect, -4).contains(kRect.topLeft() + QPointF(0.1, 0.1)));
    EXPECT_TRUE(continuousRoundedRect(QRectF(), 8).boundingRect().isEmpty());
}

}  // namespace
}  // namespace tarvix
