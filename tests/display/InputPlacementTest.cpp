// Where The Input's panel goes, on one, two and three screens in every arrangement.
#include <gtest/gtest.h>

#include "display/DisplayEngine.h"
#include "display/InputPlacement.h"
#include "display/TheInput.h"
#include "simulated/SimulatedDesktop.h"
#include "tests/display/Arrangements.h"

namespace tarvix {
namespace {

constexpr Screen kScreen{{{0, 0}, {1600, 1000}}};
constexpr Size kPanel{200, 40};

TEST(ClampedOrigin, ThePanelStandsOnTopOfTheObject) {
    EXPECT_EQ(clampedOrigin({300, 500}, kPanel, kScreen), (PanelPoint{300, 500}));
}

TEST(ClampedOrigin, AnObjectLeftOfTheScreenPutsItAtTheLeftEdge) {
    EXPECT_EQ(clampedOrigin({-50, 500}, kPanel, kScreen), (PanelPoint{0, 500}));
    EXPECT_EQ(clampedOrigin({1590, 500}, kPanel, {{{1600, 0}, {800, 600}}}), (PanelPoint{1600, 500}));
}

TEST(ClampedOrigin, APanelThatWouldReachOverTheRightEdgeEndsThere) {
    EXPECT_EQ(clampedOrigin({1500, 500}, kPanel, kScreen), (PanelPoint{1400, 500}));
    EXPECT_EQ(clampedOrigin({1400.5, 500}, kPanel, kScreen), (PanelPoint{1400, 500}));
}

TEST(ClampedOrigin, APanelThatEndsExactlyAtTheRightEdgeStaysAboveItsObject) {
    EXPECT_EQ(clampedOrigin({1400, 500}, kPanel, kScreen), (PanelPoint{1400, 500}));
}

TEST(ClampedOrigin, AtTheTopOfTheScreenItCoversTheObject) {
    EXPECT_EQ(clampedOrigin({300, 1000}, kPanel, kScreen), (PanelPoint{300, 960}));
    EXPECT_EQ(clampedOrigin({300, 960}, kPanel, kScreen), (PanelPoint{300, 960}));
    EXPECT_EQ(clampedOrigin({300, 961}, kPanel, kScreen), (PanelPoint{300, 960}));
}

TEST(ClampedOrigin, OnASecondScreenItsOwnTopCounts) {
    const Screen above{{{0, 1000}, {1600, 900}}};
    EXPECT_EQ(clampedOrigin({300, 1890}, kPanel, above), (PanelPoint{300, 1860}));
    EXPECT_EQ(clampedOrigin({300, 1500}, kPanel, above), (PanelPoint{300, 1500}));
}

TEST(ClampedOrigin, TheBottomOfTheScreenIsNoLimit) {
    EXPECT_EQ(clampedOrigin({300, -500}, kPanel, kScreen), (PanelPoint{300, -500}));
}

TEST(VisibleOrigin, APanelOnAScreenStaysWhereItIs) {
    for (const PanelPoint origin : {PanelPoint{300, 500}, {0, 0}, {1400, 960}, {1499, 500}, {-99, 500}, {300, 979}})
        EXPECT_EQ(visibleOrigin({origin, kPanel}, {kScreen}), origin);
}

TEST(VisibleOrigin, APanelThatMostlyCannotBeSeenComesBackTheShortestWay) {
    struct Row {
        PanelPoint left, expected;
    };
    for (const Row& row : {Row{{1700, 500}, {1400, 500}},
                           {{1501, 500}, {1400, 500}},
                           {{-300, 500}, {0, 500}},
                           {{300, 2000}, {300, 960}},
                           {{300, -700}, {300, 0}},
                           {{5000, 5000}, {1400, 960}},
                           {{-5000, -5000}, {0, 0}}})
        EXPECT_EQ(visibleOrigin({row.left, kPanel}, {kScreen}), row.expected) << row.left.x << "," << row.left.y;
}

TEST(VisibleOrigin, OfSeveralScreensItIsTheNearest) {
    const Screen right{{{1600, 200}, {800, 800}}}, above{{{0, 1000}, {1600, 900}}};
    EXPECT_EQ(visibleOrigin({{2500, 500}, kPanel}, {kScreen, right, above}), (PanelPoint{2200, 500}));
    EXPECT_EQ(visibleOrigin({{100, 2500}, kPanel}, {kScreen, right, above}), (PanelPoint{100, 1860}));
    EXPECT_EQ(visibleOrigin({{1700, 50}, kPanel}, {kScreen, right, above}), (PanelPoint{1700, 200})) << "a dead corner";
}

TEST(VisibleOrigin, OfAPanelThatIsLargerThanItsScreenTheTopLeftCornerIsOnIt) {
    EXPECT_EQ(visibleOrigin({{5000, 500}, {3000, 40}}, {kScreen}), (PanelPoint{0, 500}));
    EXPECT_EQ(visibleOrigin({{300, 5000}, {200, 1200}}, {kScreen}), (PanelPoint{300, -200}));
}

TEST(VisibleOrigin, WithoutScreensAPanelStays) {
    EXPECT_EQ(visibleOrigin({{5000, 500}, kPanel}, {}), (PanelPoint{5000, 500}));
}

class NoSession : public QuerySession {
public:
    OrderedSet<AccessibilityElement> filteredElements(std::string_view) override { return {}; }
    void removeTargets() override {}
    void showTargets(const OrderedSet<AccessibilityElement>&) override {}
    void endSession() override {}
};

class InputPlacement : public testing::Test {
protected:
    PanelRect frame() { return desk.panels.input().frame(); }
    void moveTo(PanelPoint origin) { desk.panels.input().setFrame({origin, frame().size}); }
    void setScreens(const Arrangement& arrangement, std::optional<PanelRect> main = std::nullopt) {
        desk.screens.screens = arrangement;
        desk.screens.main = main;
    }
    // Where it stands once it was opened there, and closed again.
    PanelRect openAndClose(const char* position) {
        desk.userDefaults.set("inputPosition", position);
        displayEngine.resetCaches();
        theInput.open();
        theInput.close();
        return frame();
    }

    static bool isWholly(const PanelRect& panel, const PanelRect& screen) {
        return panel.minX() >= screen.minX() && panel.maxX() <= screen.maxX() && panel.minY() >= screen.minY() &&
               panel.maxY() <= screen.maxY();
    }

    SimulatedDesktop desk;
    DisplayEngine displayEngine{desk.platform()};
    NoSession session;
    Sauce sauce{desk.inputSources};
    TheInput theInput{desk.platform(), displayEngine, session, sauce};
};

TEST_F(InputPlacement, AboveAWindowOnAnyScreenItStandsOnThatScreen) {
    SimulatedWindow window = desk.window("Mail");
    for (const Arrangement& arrangement : everyArrangement())
        for (const PanelRect& screen : arrangement) {
            setScreens(arrangement, arrangement.front());
            const AxRect whole = flip(screen, kFirstOfAll.height());
            window.set(ax::position, AxPoint{whole.minX() + 100, whole.minY() + 200});
            window.set(ax::size, Size{400, 300});
            ASSERT_EQ(openAndClose("aboveWindow").origin, (PanelPoint{screen.minX() + 100, screen.maxY() - 200}));
            window.set(ax::position, whole.origin);
            window.set(ax::size, whole.size);
            const PanelRect panel = openAndClose("aboveWindow");
            ASSERT_EQ(panel.origin.x, screen.minX());
            ASSERT_EQ(panel.maxY(), screen.maxY()) << "pushed down from the upper edge of the screen of its window";
            ASSERT_TRUE(isWholly(panel, screen));
        }
}

TEST_F(InputPlacement, AboveTheMouseOnAnyScreenItStandsOnThatScreen) {
    for (const Arrangement& arrangement : everyArrangement())
        for (const PanelRect& screen : arrangement) {
            setScreens(arrangement, arrangement.front());
            desk.screens.pointer = {screen.maxX() - 1, screen.maxY()};
            const PanelRect panel = openAndClose("aboveMouse");
            ASSERT_EQ(panel.maxX(), screen.maxX());
            ASSERT_EQ(panel.maxY(), screen.maxY());
        }
}

TEST_F(InputPlacement, AboveAnInputOfAWindowOnASecondScreenItStandsOnThatScreen) {
    const PanelRect above{{200, 1000}, {800, 600}};
    setScreens({kFirstOfAll, above}, kFirstOfAll);
    SimulatedWindow window = desk.window("Mail", {{300, -500}, {400, 300}});
    window.add({.role = "AXTextField", .title = "To", .frame = {{310, -590}, {300, 20}}, .children = {}});
    desk.accessibility.setFocusedElement(window.last);
    const PanelRect panel = openAndClose("aboveInput");
    EXPECT_EQ(panel.origin.x, 310);
    EXPECT_EQ(panel.maxY(), above.maxY());
}

TEST_F(InputPlacement, BeforeItWasEverMovedItStandsAtTheBottomLeftOfTheFirstScreen) {
    EXPECT_EQ(openAndClose("fixed").origin, kFirstOfAll.origin);
    // A first screen whose place among the pixels isn't the upper left one.
    const PanelRect first{{800, -270}, {1120, 1080}}, left{{0, 480}, {800, 600}};
    setScreens({first, left});
    EXPECT_EQ(openAndClose("fixed").origin, first.origin);
    setScreens({left, first});
    EXPECT_EQ(openAndClose("fixed").origin, left.origin) << "as it hasn't been moved, it follows";
}

TEST_F(InputPlacement, WhereTheUserLeftItIsKeptToThePixelWhenTheHeightOfTheFirstScreenChanges) {
    const PanelRect large{{0, 0}, {1920, 1080}}, small{{1920, 360}, {1280, 720}};
    setScreens({large, small});
    openAndClose("fixed");
    moveTo({2000, 900});
    EXPECT_EQ(openAndClose("fixed").origin, (PanelPoint{2000, 900}));
    // The large screen goes. The small one stays where it is among the pixels, and is the first one now.
    setScreens({{{1920, 0}, {1280, 720}}});
    EXPECT_EQ(openAndClose("fixed").origin, (PanelPoint{2000, 900 - 360}));
}

TEST_F(InputPlacement, WhereTheUserLeftItOnAScreenThatHasGoneIsTheNearestPlaceOnAnother) {
    for (const PanelRect& second : placesBesideTheFirst()) {
        setScreens({kFirstOfAll, second});
        openAndClose("fixed");
        const PanelPoint left{second.minX() + 30, second.minY() + 40};
        moveTo(left);
        ASSERT_EQ(openAndClose("fixed").origin, left);
        setScreens({kFirstOfAll});
        const PanelRect panel = openAndClose("fixed");
        ASSERT_TRUE(isWholly(panel, kFirstOfAll)) << testing::PrintToString(panel);
        // No nearer place exists: along each axis it has moved just as far as it had to.
        ASSERT_TRUE(panel.minX() == left.x || panel.minX() == kFirstOfAll.minX() || panel.maxX() == kFirstOfAll.maxX());
        ASSERT_TRUE(panel.minY() == left.y || panel.minY() == kFirstOfAll.minY() || panel.maxY() == kFirstOfAll.maxY());
    }
}

TEST_F(InputPlacement, ItsLastPlaceIsInSightToo) {
    const PanelRect right{{1600, 0}, {800, 600}};
    setScreens({kFirstOfAll, right}, kFirstOfAll);
    desk.window("Mail", {{1700, 700}, {400, 300}});
    ASSERT_EQ(openAndClose("aboveWindow").origin, (PanelPoint{1700, 300}));
    setScreens({kFirstOfAll}, kFirstOfAll);
    desk.launch("Without a window");
    EXPECT_EQ(openAndClose("aboveWindow").maxX(), kFirstOfAll.maxX());
}

TEST_F(InputPlacement, ShownInPlaceItIsInSight) {
    openAndClose("fixed");
    moveTo({3000, 500});
    theInput.openInPlace("hello");
    EXPECT_EQ(frame().maxX(), kFirstOfAll.maxX());
}

}  // namespace
}  // namespace tarvix
