#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

#include "base/Geometry.h"

namespace tarvix {
namespace {

static_assert(!std::is_convertible_v<AxPoint, PanelPoint> && !std::is_convertible_v<PanelRect, AxRect>);

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
const AxRect square = {{10, 10}, {20, 20}};  // from 10 to 30

struct IntersectionRow {
    const char* what;
    AxRect other;
    bool intersects;
};

TEST(Geometry, WhichRectanglesIntersect) {
    const IntersectionRow rows[] = {
        {"itself", square, true},
        {"inside", {{15, 15}, {1, 1}}, true},
        {"around", {{0, 0}, {100, 100}}, true},
        {"overlapping a corner", {{29, 29}, {20, 20}}, true},
        {"touching the left edge", {{0, 10}, {10, 20}}, false},
        {"touching the right edge", {{30, 10}, {10, 20}}, false},
        {"touching the upper edge", {{10, 0}, {20, 10}}, false},
        {"touching the lower edge", {{10, 30}, {20, 10}}, false},
        {"touching a corner", {{30, 30}, {5, 5}}, false},
        {"a hair inside the right edge", {{29.999, 10}, {10, 20}}, true},
        {"beside", {{40, 10}, {5, 5}}, false},
        {"a negative extent that reaches in", {{40, 40}, {-15, -15}}, true},
        {"a negative extent that only touches", {{40, 40}, {-10, -10}}, false},
        {"a point inside", {{20, 20}, {0, 0}}, true},
        {"a point on an edge", {{10, 20}, {0, 0}}, false},
        {"a point outside", {{5, 5}, {0, 0}}, false},
        {"a line across", {{0, 20}, {100, 0}}, true},
        {"a line along an edge", {{0, 10}, {100, 0}}, false},
        {"the null rectangle", AxRect::null(), false},
        {"everything that is finite", {{-1e300, -1e300}, {2e300, 2e300}}, true},
        {"x is not a number", {{notANumber, 10}, {20, 20}}, false},
        {"y is not a number", {{10, notANumber}, {20, 20}}, false},
        {"width is not a number", {{10, 10}, {notANumber, 20}}, false},
        {"height is not a number", {{10, 10}, {20, notANumber}}, false},
    };
    for (const IntersectionRow& row : rows) {
        EXPECT_EQ(intersects(square, row.other), row.intersects) << row.what;
        EXPECT_EQ(intersects(row.other, square), row.intersects) << row.what << ", the other way round";
    }
}

TEST(Geometry, TheNullRectangleDoesNotEvenIntersectItself) {
    EXPECT_FALSE(intersects(AxRect::null(), AxRect::null()));
    EXPECT_TRUE(AxRect::null().isNull());
    EXPECT_TRUE(AxRect::null().isEmpty());
}

TEST(Geometry, AnEmptyRectangleStillHasAPlace) {
    const AxRect line = {{3, 4}, {10, 0}};
    EXPECT_TRUE(line.isEmpty());
    EXPECT_FALSE(line.isNull());
    EXPECT_FALSE(square.isEmpty());
    EXPECT_EQ(unite(square, line), (AxRect{{3, 4}, {27, 26}}));
}

TEST(Geometry, ANegativeExtentIsTheSameArea) {
    const AxRect turned = {{30, 30}, {-20, -20}};
    EXPECT_EQ(turned.minX(), 10);
    EXPECT_EQ(turned.maxX(), 30);
    EXPECT_EQ(turned.minY(), 10);
    EXPECT_EQ(turned.maxY(), 30);
    EXPECT_EQ(turned.width(), 20);
    EXPECT_EQ(turned.height(), 20);
    EXPECT_EQ(unite(turned, turned), square);
}

TEST(Geometry, AUnionHoldsBothAndTheNullRectangleAddsNothing) {
    EXPECT_EQ(unite(square, AxRect{{-5, 20}, {10, 40}}), (AxRect{{-5, 10}, {35, 50}}));
    EXPECT_EQ(unite(square, AxRect::null()), square);
    EXPECT_EQ(unite(AxRect::null(), square), square);
    EXPECT_TRUE(unite(AxRect::null(), AxRect::null()).isNull());
}

TEST(Geometry, TheFlipMirrorsAtTheFirstScreensHeight) {
    EXPECT_EQ(flip(AxPoint{3, 10}, 1000), (PanelPoint{3, 990}));
    EXPECT_EQ(flip(PanelPoint{3, 990}, 1000), (AxPoint{3, 10}));
    EXPECT_EQ(flip(AxRect{{3, 10}, {20, 30}}, 1000), (PanelRect{{3, 960}, {20, 30}}));
    EXPECT_EQ(flip(PanelRect{{3, 960}, {20, 30}}, 1000), (AxRect{{3, 10}, {20, 30}}));
    EXPECT_EQ(flip(AxRect{{23, 40}, {-20, -30}}, 1000), (PanelRect{{3, 960}, {20, 30}}));
    EXPECT_EQ(flip(AxRect{{0, 1200}, {5, 5}}, 1000), (PanelRect{{0, -205}, {5, 5}}));  // on a screen further down
}

// Along both edges and at the corners, in the plane that runs upwards.
TEST(Geometry, TheMouseIsInOnTheLeftAndTheTopEdge) {
    const PanelRect panel = {{10, 10}, {20, 20}};
    const struct {
        PanelPoint point;
        bool isIn;
    } rows[] = {
        {{20, 20}, true},          {{10, 20}, true},     {{30, 20}, false},     {{20, 30}, true},
        {{20, 10}, false},         {{10, 30}, true},     {{10, 10}, false},     {{30, 30}, false},
        {{30, 10}, false},         {{9.999, 20}, false}, {{20, 30.001}, false}, {{29.999, 10.001}, true},
        {{notANumber, 20}, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(mouseInRect(row.point, panel), row.isIn) << row.point.x << "," << row.point.y;
        const PanelRect turned = {{30, 30}, {-20, -20}};
        EXPECT_EQ(mouseInRect(row.point, turned), row.isIn) << row.point.x << "," << row.point.y << " turned";
    }
}

TEST(Geometry, TheMouseIsNeverInAnEmptyRectangle) {
    EXPECT_FALSE(mouseInRect(PanelPoint{10, 10}, PanelRect{{10, 10}, {0, 20}}));
    EXPECT_FALSE(mouseInRect(PanelPoint{10, 10}, PanelRect{{10, 10}, {20, 0}}));
    EXPECT_FALSE(mouseInRect(PanelPoint{10, 10}, PanelRect::null()));
}

TEST(Geometry, TheIntersectionIsWhatBothHaveInCommon) {
    const AxRect box{{10, 10}, {20, 20}};
    EXPECT_EQ(intersection(box, AxRect{{20, 0}, {100, 15}}), (AxRect{{20, 10}, {10, 5}}));
    EXPECT_EQ(intersection(box, box), box);
    EXPECT_TRUE(intersection(box, AxRect{{30, 10}, {5, 5}}).isNull()) << "touching isn't enough";
    EXPECT_TRUE(intersection(box, AxRect::null()).isNull());
}

}  // namespace
}  // namespace tarvix
