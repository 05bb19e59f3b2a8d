// What the inspector says of an element, where it stands, and when it comes and goes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "display/DisplayEngine.h"
#include "display/Inspector.h"
#include "display/InspectorPlacement.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::string repeated(const std::string& character, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += character;
    return text;
}

std::string valueLine(const std::string& value) {
    AccessibilityElement element;
    element.value = value;
    return inspectorText(element);
}

TEST(InspectorText, ListsTheTextsInTheirOrder) {
    AccessibilityElement element;
    element.label = "label";
    element.title = "title";
    element.help = "help";
    element.valueDescription = "value description";
    element.placeholder = "placeholder";
    element.roleDescription = "role description";
    element.subrole = "AXCloseButton";
    element.value = "value";
    element.identifier = "identifier";
    element.url = Url{"https://example.org"};
    EXPECT_EQ(inspectorText(element),
              "≢ label\n≢ title\n≢ help\n≢ value description\n≢ placeholder\n≢ role description\n≢ AXCloseButton\n"
              "≢ value\n");
}

TEST(InspectorText, AbsentAndEmptyTextsHaveNoLine) {
    AccessibilityElement element;
    EXPECT_EQ(inspectorText(element), "");
    element.label = element.title = element.help = element.valueDescription = element.placeholder = "";
    element.subrole = element.value = "";
    EXPECT_EQ(inspectorText(element), "");
}

TEST(InspectorText, AnElementWithARoleDescriptionAloneHasOneLine) {
    AccessibilityElement element;
    element.roleDescription = "button";
    EXPECT_EQ(inspectorText(element), "≢ button\n");
}

TEST(InspectorText, EqualLabelAndTitleAreTwoEqualLines) {
    AccessibilityElement element;
    element.label = element.title = "Save";
    EXPECT_EQ(inspectorText(element), "≢ Save\n≢ Save\n");
}

TEST(InspectorText, HelpComesOnlyIfItSaysSomethingElse) {
    AccessibilityElement element;
    element.label = "Save";
    element.title = "Save it";
    element.help = "Save it";
    EXPECT_EQ(inspectorText(element), "≢ Save\n≢ Save it\n");
    element.help = "Save";
    EXPECT_EQ(inspectorText(element), "≢ Save\n≢ Save it\n");
    element.help = "Saves it";
    EXPECT_EQ(inspectorText(element), "≢ Save\n≢ Save it\n≢ Saves it\n");
}

TEST(InspectorText, AValueIsCutBehindIts128thCharacter) {
    EXPECT_EQ(valueLine(repeated("x", 128)), "≢ " + repeated("x", 128) + "\n");
    EXPECT_EQ(valueLine(repeated("x", 129)), "≢ " + repeated("x", 128) + "...\n");
}

TEST(InspectorText, CharactersAreCountedAsAReaderSeesThem) {
    for (const std::string character : {"é", "e\u0301", "👩‍👩‍👧", "🇫🇷", "\r\n"}) {
        EXPECT_EQ(valueLine(repeated(character, 128)), "≢ " + repeated(character, 128) + "\n");
        EXPECT_EQ(valueLine(repeated(character, 129)), "≢ " + repeated(character, 128) + "...\n");
    }
}

TEST(InspectorText, OnlyTheValueIsCut) {
    AccessibilityElement element;
    element.title = repeated("x", 1000);
    EXPECT_EQ(inspectorText(element), "≢ " + repeated("x", 1000) + "\n");
}

TEST(InspectorHeading, IsTheSameForAnElementWithoutAnyText) {
    AccessibilityElement element;
    EXPECT_EQ(inspectorHeading(element), "The Inspector 🕵️♂️️ caught");
    element.title = "Save";
    EXPECT_EQ(inspectorHeading(element), "The Inspector 🕵️♂️️ caught");
}

// The screen of these tests is 1600 by 1000 and its margin 4; the view keeps 6 off its marker.
class InspectorFrame : public testing::Test {
protected:
    PanelRect frame(PanelRect marker, Size size = {300, 100}) const {
        const PanelPoint middle{(marker.minX() + marker.maxX()) / 2, (marker.minY() + marker.maxY()) / 2};
        return inspectorFrame(marker, size, screen, middle);
    }

    Screen screen{{{0, 0}, {1600, 1000}}};
};

TEST_F(InspectorFrame, HangsCentredBelowTheMarker) {
    EXPECT_EQ(frame({{700, 500}, {100, 40}}), (PanelRect{{600, 394}, {300, 100}}));
}

TEST_F(InspectorFrame, AtTheLowerEdgeItStandsAboveTheMarker) {
    EXPECT_EQ(frame({{700, 110}, {100, 40}}), (PanelRect{{600, 4}, {300, 100}}));
    EXPECT_EQ(frame({{700, 109}, {100, 40}}), (PanelRect{{600, 155}, {300, 100}}));
    EXPECT_EQ(frame({{700, 0}, {100, 40}}), (PanelRect{{600, 46}, {300, 100}}));
}

TEST_F(InspectorFrame, AtTheSidesItIsMovedOntoTheScreen) {
    EXPECT_EQ(frame({{0, 500}, {100, 40}}).origin, (PanelPoint{4, 394}));
    EXPECT_EQ(frame({{1500, 500}, {100, 40}}).origin, (PanelPoint{1296, 394}));
}

TEST_F(InspectorFrame, InEachCornerItIsOnTheScreenAndBesideTheMarker) {
    EXPECT_EQ(frame({{0, 960}, {100, 40}}).origin, (PanelPoint{4, 854}));
    EXPECT_EQ(frame({{1500, 960}, {100, 40}}).origin, (PanelPoint{1296, 854}));
    EXPECT_EQ(frame({{0, 0}, {100, 40}}).origin, (PanelPoint{4, 46}));
    EXPECT_EQ(frame({{1500, 0}, {100, 40}}).origin, (PanelPoint{1296, 46}));
}

TEST_F(InspectorFrame, AMarkerFromTheTopToTheBottomHasItAtItsRightElseAtItsLeft) {
    EXPECT_EQ(frame({{0, 0}, {200, 1000}}), (PanelRect{{206, 450}, {300, 100}}));
    EXPECT_EQ(frame({{1400, 0}, {200, 1000}}), (PanelRect{{1094, 450}, {300, 100}}));
}

TEST_F(InspectorFrame, OfAMarkerThatReachesOffTheScreenTheVisiblePartCounts) {
    EXPECT_EQ(frame({{-500, 500}, {1100, 40}}).origin, (PanelPoint{150, 394}));
    EXPECT_EQ(frame({{700, -300}, {100, 800}}).origin, (PanelPoint{600, 506}));
    EXPECT_EQ(frame({{700, 800}, {100, 900}}).origin, (PanelPoint{600, 694}));
}

TEST_F(InspectorFrame, AMarkerOffTheScreenHasItAtTheNearestEdge) {
    EXPECT_EQ(frame({{-300, 500}, {100, 40}}).origin, (PanelPoint{4, 394}));
    EXPECT_EQ(frame({{2000, -200}, {100, 40}}).origin, (PanelPoint{1296, 6}));
}

TEST_F(InspectorFrame, AMarkerOverTheWholeScreenHasItAtTheEdgeThatThePointerIsNotAt) {
    const PanelRect whole{{0, 0}, {1600, 1000}};
    EXPECT_EQ(inspectorFrame(whole, {300, 100}, screen, {800, 500}).origin, (PanelPoint{650, 4}));
    EXPECT_EQ(inspectorFrame(whole, {300, 100}, screen, {800, 127}).origin, (PanelPoint{650, 896}));
    EXPECT_EQ(inspectorFrame(whole, {300, 100}, screen, {1200, 50}).origin, (PanelPoint{650, 4}));
}

TEST_F(InspectorFrame, IsNeverUnderThePointerAndAlwaysOnTheScreen) {
    const Size room = inspectorRoom(screen);
    for (const Size size : {Size{60, 30}, Size{300, 100}, room})
        for (double left = -50; left <= 1550; left += 400)
            for (double bottom = -50; bottom <= 950; bottom += 250)
                for (const double width : {1.0, 20.0, 500.0, 1700.0})
                    for (const double height : {1.0, 20.0, 500.0, 1100.0})
                        for (const double x : {0.0, 0.5, 0.999})
                            for (const double y : {0.0, 0.5, 0.999}) {
                                const PanelRect marker{{left, bottom}, {width, height}};
                                const PanelPoint pointer{left + x * width, bottom + y * height};
                                const PanelRect frame = inspectorFrame(marker, size, screen, pointer);
                                ASSERT_FALSE(mouseInRect(pointer, frame)) << left << "," << bottom << " " << width;
                                ASSERT_GE(frame.minX(), 0) << left << "," << bottom << " " << width;
                                ASSERT_GE(frame.minY(), 0) << left << "," << bottom << " " << width;
                                ASSERT_LE(frame.maxX(), 1600) << left << "," << bottom << " " << width;
                                ASSERT_LE(frame.maxY(), 1000) << left << "," << bottom << " " << width;
                                ASSERT_EQ(frame.size, size);
                            }
}

TEST_F(InspectorFrame, FractionsAreRoundedToWholePixels) {
    EXPECT_EQ(frame({{700.4, 500.7}, {100, 40}}).origin, (PanelPoint{600, 395}));
}

TEST(InspectorScreen, IsTheOneWithThePointer) {
    const Screen first{{{0, 0}, {1600, 1000}}}, second{{{1600, 200}, {800, 800}}};
    EXPECT_EQ(inspectorScreen({first, second}, {100, 100}), first);
    EXPECT_EQ(inspectorScreen({first, second}, {1700, 300}), second);
    EXPECT_EQ(inspectorScreen({first, second}, {1700, 100}), first);  // on none
}

TEST(InspectorScreen, OnASecondScreenTheViewKeepsToIt) {
    const Screen second{{{1600, 200}, {800, 800}}};
    EXPECT_EQ(inspectorFrame({{1600, 200}, {50, 50}}, {300, 100}, second, {1610, 210}),
              (PanelRect{{1604, 256}, {300, 100}}));
    // A marker across both screens: its part on this one counts.
    EXPECT_EQ(inspectorFrame({{1000, 600}, {800, 50}}, {300, 100}, second, {1700, 620}),
              (PanelRect{{1604, 494}, {300, 100}}));
}

TEST(InspectorRoom, IsAQuarterOfTheWidthAndLessThanHalfOfTheHeight) {
    EXPECT_EQ(inspectorRoom({{{0, 0}, {1600, 1000}}}), (Size{400, 472}));
    EXPECT_EQ(inspectorRoom({{{0, 0}, {800, 600}}}).width, 320);
    EXPECT_EQ(inspectorRoom({{{0, 0}, {200, 200}}}).width, 192);
}

class StatedInput : public TheInputProtocol {
public:
    void open() override { visible = true; }
    void close() override { visible = false; }
    bool isVisible() const override { return visible; }
    Subscription onVisibilityChanged(std::function<void()>) override { return {}; }
    const std::string& value() const override { return text; }
    void setShowPreloading(bool) override {}

    bool visible = true;
    std::string text;
};

class InspectorTest : public testing::Test {
protected:
    static AccessibilityElement button(const std::string& title, AxRect frame) {
        AccessibilityElement element;
        element.role = AccessibilityElementRole::button;
        element.title = title;
        element.position = frame.origin;
        element.size = frame.size;
        return element;
    }
    void hover(const std::string& title, AxRect frame) {
        desk.screens.pointer = {frame.origin.x + 1, 1000 - frame.origin.y - 1};
        inspector.showInspector(button(title, frame));
    }
    SimulatedCanvasPanel& canvas() { return desk.panels.inspectorCanvas(); }
    SimulatedInspectorPanel& view() { return desk.panels.inspector(); }

    SimulatedDesktop desk;
    DisplayEngine displayEngine{desk.platform()};
    StatedInput theInput;
    Inspector inspector{desk.platform(), displayEngine, theInput};
};

TEST_F(InspectorTest, CoversTheElementWithAPrimaryMarkerOnACanvasOfItsOwn) {
    hover("Save", {{100, 200}, {80, 30}});
    EXPECT_EQ(canvas().frame(), (PanelRect{{100, 770}, {80, 30}}));
    EXPECT_TRUE(canvas().isVisible());
    EXPECT_THAT(canvas().markers(),
                ElementsAre(MarkerDrawing{
                    {{0, 0}, {80, 30}}, 0.6, 5, {MarkerShape{0, 0, desk.panels.systemColors.highlight}}}));
    EXPECT_THAT(desk.journal({Topic::canvas}), IsEmpty());
}

TEST_F(InspectorTest, ListsTheTextsBelowTheMarker) {
    hover("Save", {{100, 200}, {80, 30}});
    EXPECT_TRUE(view().isVisible());
    EXPECT_EQ(view().content(), (InspectorContent{"The Inspector 🕵️♂️️ caught", "≢ Save\n"}));
    EXPECT_EQ(view().frame(), (PanelRect{{40, 664}, {200, 100}}));
}

TEST_F(InspectorTest, AnElementWithoutTextsHasTheHeadingOverAnEmptyBody) {
    hover("", {{100, 200}, {80, 30}});
    EXPECT_EQ(view().content(), (InspectorContent{"The Inspector 🕵️♂️️ caught", ""}));
    EXPECT_TRUE(view().isVisible());
}

TEST_F(InspectorTest, TheNextElementTakesMarkerAndViewAlong) {
    hover("Save", {{100, 200}, {80, 30}});
    hover("Close", {{500, 200}, {40, 30}});
    EXPECT_EQ(canvas().frame(), (PanelRect{{500, 770}, {40, 30}}));
    EXPECT_THAT(canvas().markers(), SizeIs(1));
    EXPECT_EQ(canvas().markers().front().frame, (PanelRect{{0, 0}, {40, 30}}));
    EXPECT_EQ(view().content().body, "≢ Close\n");
    EXPECT_EQ(view().frame(), (PanelRect{{420, 664}, {200, 100}}));
}

TEST_F(InspectorTest, TheFormerMarkerIsGoneBeforeTheCanvasMoves) {
    hover("Save", {{100, 200}, {80, 30}});
    desk.clearJournal();
    hover("Close", {{500, 200}, {40, 30}});
    EXPECT_THAT(desk.journal({Topic::inspector}),
                ElementsAre("inspector's canvas hidden", "inspector's canvas at 500,770 40x30",
                            "inspector's canvas in front", "inspector at 420,664 200x100", "inspector in front"));
}

TEST_F(InspectorTest, WithoutTheInputNothingHappens) {
    theInput.visible = false;
    hover("Save", {{100, 200}, {80, 30}});
    EXPECT_THAT(desk.journal({Topic::inspector}), IsEmpty());
    EXPECT_FALSE(desk.panels.hasInspectorCanvas());
}

TEST_F(InspectorTest, WithoutAScreenWhatStandsStays) {
    hover("Save", {{100, 200}, {80, 30}});
    desk.clearJournal();
    desk.screens.setOnly(std::nullopt);
    hover("Close", {{500, 200}, {40, 30}});
    EXPECT_THAT(desk.journal({Topic::inspector}), IsEmpty());
    EXPECT_EQ(view().content().body, "≢ Save\n");
}

TEST_F(InspectorTest, TheScreenReaderLookIsThreeLargerOnEachSideAndTheViewKeepsOffIt) {
    desk.userDefaults.set("targetsColor", "voiceOver");
    hover("Save", {{100, 200}, {80, 30}});
    EXPECT_EQ(canvas().markers().front().frame, (PanelRect{{-3, -3}, {86, 36}}));
    EXPECT_EQ(view().frame().maxY(), 770 - 3 - 6);
}

TEST_F(InspectorTest, TheHeightOfTheFirstScreenFlipsTheElementsOnEveryScreen) {
    desk.screens.screens.push_back({{1600, 200}, {800, 800}});
    hover("Save", {{1700, 100}, {80, 30}});
    EXPECT_EQ(canvas().frame(), (PanelRect{{1700, 870}, {80, 30}}));
    EXPECT_EQ(view().frame(), (PanelRect{{1640, 764}, {200, 100}}));
}

TEST_F(InspectorTest, AViewThatIsTooLargeGetsTheRoomThatThereIs) {
    view().contentSize = {5000, 5000};
    hover("Save", {{100, 200}, {80, 30}});
    EXPECT_EQ(view().frame().size, inspectorRoom({{{0, 0}, {1600, 1000}}}));
}

TEST_F(InspectorTest, ClosingTakesMarkerAndViewAway) {
    hover("Save", {{100, 200}, {80, 30}});
    inspector.close();
    EXPECT_FALSE(canvas().isVisible());
    EXPECT_THAT(canvas().markers(), IsEmpty());
    EXPECT_FALSE(view().isVisible());
}

TEST_F(InspectorTest, ClosingWhatHasNeverBeenShownIsNothing) {
    inspector.close();
    EXPECT_FALSE(desk.panels.hasInspectorCanvas());
    EXPECT_THAT(desk.journal({Topic::inspector}), IsEmpty());
}

TEST_F(InspectorTest, TheNextSearchUsesTheSameCanvas) {
    hover("Save", {{100, 200}, {80, 30}});
    const auto* first = &canvas();
    inspector.close();
    hover("Close", {{500, 200}, {40, 30}});
    EXPECT_EQ(&canvas(), first);
    EXPECT_TRUE(canvas().isVisible());
    EXPECT_TRUE(view().isVisible());
}

}  // namespace
}  // namespace tarvix
