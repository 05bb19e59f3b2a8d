#include <gtest/gtest.h>

#include "qt/MarkerChanges.h"

namespace tarvix {
namespace {

constexpr Color kYellow{1, 1, 0, 1};

MarkerDrawing block(PanelRect frame) { return {frame, 0.6, 5, {{0, 0, kYellow}}}; }
MarkerDrawing outline(PanelRect frame) { return {frame, 0.9, 8, {{2, 2, kYellow}}}; }

TEST(MarkerChanges, OnlyWhatDiffersCounts) {
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

}  // namespace
}  // namespace tarvix
