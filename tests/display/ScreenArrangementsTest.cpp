// Which screen a point or a window is on, with one, two and three screens in every arrangement, against a plain telling
// of the rule.
#include <gtest/gtest.h>

#include <random>
#include <set>

#include "display/DisplayEngine.h"
#include "simulated/SimulatedDesktop.h"
#include "tests/display/Arrangements.h"

namespace tarvix {
namespace {

using Found = std::optional<PanelRect>;

// The left and the top edge belong to a screen, the right and the bottom edge don't.
bool isOn(const PanelRect& screen, double x, double y) {
    const double left = screen.origin.x, right = left + screen.size.width;
    const double bottom = screen.origin.y, top = bottom + screen.size.height;
    if (x == left || y == top) return x >= left && x < right && y <= top && y > bottom;
    return left < x && x < right && bottom < y && y < top;
}

Found firstUnder(const Arrangement& screens, double x, double y) {
    for (const PanelRect& screen : screens)
        if (isOn(screen, x, y)) return screen;
    return std::nullopt;
}

struct Corners {
    explicit Corners(const PanelRect& window)
        : left(window.origin.x),
          right(window.origin.x + window.size.width),
          bottom(window.origin.y),
          top(window.origin.y + window.size.height) {}
    double left, right, bottom, top;
};

Found expectedWhereWindowsSpan(const Arrangement& screens, const Found& main, const Corners& c) {
    if (const Found found = firstUnder(screens, c.left, c.top)) return found;
    if (const Found found = firstUnder(screens, c.right, c.top)) return found;
    if (const Found found = firstUnder(screens, c.left, c.bottom)) return found;
    if (const Found found = firstUnder(screens, c.right, c.bottom)) return found;
    return main;
}

Found expectedWithSeparateSpaces(const Arrangement& screens, const Found& main, const PanelRect& window) {
    const Corners c(window);
    for (const PanelRect& screen : screens) {
        if (isOn(screen, c.left, c.top) && isOn(screen, c.right, c.top)) return screen;
        if (screen == window) return screen;
    }
    const Found left = firstUnder(screens, c.left, c.top), right = firstUnder(screens, c.right, c.top);
    if (!left && !right) return main;
    if (!left) return right;
    if (!right) return left;
    return main;
}

Found expected(const Arrangement& screens, const Found& main, bool separate, const PanelRect& window) {
    if (screens.size() == 1) return screens.front();
    return separate ? expectedWithSeparateSpaces(screens, main, window)
                    : expectedWhereWindowsSpan(screens, main, Corners(window));
}

// Every edge, what lies just beside it, and the middles.
struct Grid {
    explicit Grid(const Arrangement& screens) {
        std::set<double> across, down;
        const auto add = [](std::set<double>& line, double from, double to) {
            for (const double edge : {from, to})
                for (const double beside : {-1.0, 0.0, 1.0}) line.insert(edge + beside);
            line.insert((from + to) / 2);
        };
        for (const PanelRect& screen : screens) {
            add(across, screen.minX(), screen.maxX());
            add(down, screen.minY(), screen.maxY());
        }
        xs.assign(across.begin(), across.end());
        ys.assign(down.begin(), down.end());
    }
    std::vector<double> xs, ys;
};

class ScreenArrangements : public testing::Test {
protected:
    void setScreens(const Arrangement& arrangement, Found main = std::nullopt) {
        desk.screens.screens = arrangement;
        desk.screens.main = main;
        engine.resetCaches();
    }
    Found screenOf(const PanelRect& window) {
        engine.resetCaches();
        FocusedWindow focused;
        focused.minX = window.minX();
        focused.maxY = window.maxY();
        focused.width = window.width();
        focused.height = window.height();
        const auto screen = engine.screenFor(focused);
        return screen ? Found(screen->frame) : std::nullopt;
    }
    Found screenAt(double x, double y) {
        engine.resetCaches();
        const auto screen = engine.screenContaining(x, y);
        return screen ? Found(screen->frame) : std::nullopt;
    }
    void expectRule(const Arrangement& arrangement, const Found& main, const PanelRect& window) {
        for (const bool separate : {false, true}) {
            desk.screens.separateSpaces = separate;
            ASSERT_EQ(screenOf(window), expected(arrangement, main, separate, window))
                << testing::PrintToString(arrangement) << ", main " << testing::PrintToString(main)
                << (separate ? ", separate spaces" : "") << ": a window of " << testing::PrintToString(window);
        }
    }

    SimulatedDesktop desk;
    DisplayEngine engine{desk.platform()};
};

TEST_F(ScreenArrangements, ThereAreManyOfThem) {
    EXPECT_EQ(arrangements(1).size(), 1u);
    EXPECT_GT(arrangements(2).size(), 100u);
    EXPECT_GT(arrangements(3).size(), 3000u);
}

TEST_F(ScreenArrangements, APointIsOnTheFirstScreenThatHasItWithItsLeftAndTopEdge) {
    for (const std::size_t count : {2, 3})
        for (const Arrangement& arrangement : arrangements(count)) {
            setScreens(arrangement);
            const Grid grid(arrangement);
            std::size_t step = 0;  // with three screens there are too many to look at each
            for (const double x : grid.xs)
                for (const double y : grid.ys) {
                    if (count == 3 && ++step % 19 != 0) continue;
                    ASSERT_EQ(screenAt(x, y), firstUnder(arrangement, x, y))
                        << testing::PrintToString(arrangement) << ": " << x << "," << y;
                }
        }
}

// Nothing lies on two screens, and nothing is lost between those that touch.
TEST_F(ScreenArrangements, EachPixelOfTheDesktopIsOnExactlyOneScreen) {
    for (const Arrangement& arrangement : arrangements(2)) {
        const Grid grid(arrangement);
        for (const double x : grid.xs)
            for (const double y : grid.ys) {
                std::size_t owners = 0, around = 0;
                for (const PanelRect& screen : arrangement) {
                    owners += Screen{screen}.contains({x, y}) ? 1 : 0;
                    // The pixel to the right of the point and below it.
                    around += intersects(screen, PanelRect{{x, y - 1}, {1, 1}}) ? 1 : 0;
                }
                ASSERT_EQ(owners, around) << testing::PrintToString(arrangement) << ": " << x << "," << y;
                ASSERT_LE(owners, 1u);
            }
    }
}

TEST_F(ScreenArrangements, AWindowIsOnTheScreenThatTheRuleOfItsCornersNames) {
    std::mt19937 random(7);
    const auto oneOf = [&](const auto& values) {
        return values[std::uniform_int_distribution<std::size_t>(0, values.size() - 1)(random)];
    };
    for (const Arrangement& arrangement : everyArrangement()) {
        const Grid grid(arrangement);
        const int windows = arrangement.size() == 2 ? 400 : 15;
        std::vector<Found> mains(arrangement.begin(), arrangement.end());
        mains.emplace_back();
        for (const Found& main : mains) {
            setScreens(arrangement, main);
            for (const PanelRect& screen : arrangement) expectRule(arrangement, main, screen);
            for (int i = 0; i < windows; ++i) {
                const double x1 = oneOf(grid.xs), x2 = oneOf(grid.xs), y1 = oneOf(grid.ys), y2 = oneOf(grid.ys);
                expectRule(arrangement, main,
                           {{std::min(x1, x2), std::min(y1, y2)}, {std::abs(x1 - x2), std::abs(y1 - y2)}});
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST_F(ScreenArrangements, AFullScreenWindowOnAnyScreenIsOnThatScreen) {
    for (const Arrangement& arrangement : everyArrangement())
        for (const bool separate : {false, true}) {
            setScreens(arrangement, arrangement.back());
            desk.screens.separateSpaces = separate;
            for (const PanelRect& screen : arrangement) ASSERT_EQ(screenOf(screen), screen);
        }
}

TEST_F(ScreenArrangements, AWindowWithinAScreenIsFoundThereByItsAccessibilityCoordinates) {
    SimulatedWindow told = desk.window("Mail", {{0, 0}, {400, 300}});
    for (const Arrangement& arrangement : everyArrangement())
        for (const PanelRect& screen : arrangement) {
            setScreens(arrangement, arrangement.front());
            // Told as an application does: y downwards from the upper edge of the first screen.
            told.set(ax::position, AxPoint{screen.minX() + 20, kFirstOfAll.height() - screen.maxY() + 30});
            const auto window = engine.mainWindow();
            ASSERT_TRUE(window);
            ASSERT_EQ(window->frame(), (PanelRect{{screen.minX() + 20, screen.maxY() - 330}, {400, 300}}));
            ASSERT_EQ(engine.screenFor(window)->frame, screen);
        }
}

}  // namespace
}  // namespace tarvix
