// Where markers go and how they look.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "display/Canvas.h"
#include "display/DisplayEngineProtocol.h"
#include "simulated/SimulatedPanels.h"
#include "simulated/SimulatedUserDefaults.h"

namespace tarvix {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

constexpr Color kBlack{0, 0, 0, 1};
constexpr Color kWhite{1, 1, 1, 1};

AccessibilityElement elementAt(AxPoint position, Size size) {
    AccessibilityElement element;
    element.position = position;
    element.size = size;
    return element;
}

Screen screen(double x, double y, double width, double height) { return {{{x, y}, {width, height}}}; }

TEST(MarkerOrigin, IsTheElementsBottomLeftCornerInTheCanvas) {
    const PanelPoint origin =
        markerOrigin(elementAt({10, 20}, {100, 30}), {{0, 0}, {1600, 1000}}, screen(0, 0, 1600, 1000));
    EXPECT_EQ(origin, (PanelPoint{10, 950}));
}

TEST(MarkerOrigin, ACanvasOnAnotherScreenIsWhereItCountsFrom) {
    const PanelPoint origin =
        markerOrigin(elementAt({1700, 20}, {100, 30}), {{1600, 200}, {800, 800}}, screen(0, 0, 1600, 1000));
    EXPECT_EQ(origin, (PanelPoint{100, 750}));
}

TEST(MarkerOrigin, AnElementAboveTheFirstScreenHasANegativeYAndAPlaceInACanvasThatCoversIt) {
    const PanelPoint origin =
        markerOrigin(elementAt({10, -500}, {100, 30}), {{0, 1000}, {1600, 900}}, screen(0, 0, 1600, 1000));
    EXPECT_EQ(origin, (PanelPoint{10, 470}));
}

TEST(MarkerOrigin, FractionsStay) {
    const PanelPoint origin =
        markerOrigin(elementAt({10.5, 20.25}, {99.5, 30.5}), {{0, 0}, {1600, 1000}}, screen(0, 0, 1600, 1000));
    EXPECT_EQ(origin, (PanelPoint{10.5, 949.25}));
}

TEST(TargetsColor, HueGoesRoundTheColourCircle) {
    EXPECT_EQ(colorFromHsb(0, 1, 1), (Color{1, 0, 0, 1}));
    EXPECT_EQ(colorFromHsb(1.0 / 6, 1, 1), (Color{1, 1, 0, 1}));
    EXPECT_EQ(colorFromHsb(2.0 / 6, 1, 1), (Color{0, 1, 0, 1}));
    EXPECT_EQ(colorFromHsb(0.5, 1, 1), (Color{0, 1, 1, 1}));
    EXPECT_EQ(colorFromHsb(4.0 / 6, 1, 1), (Color{0, 0, 1, 1}));
    EXPECT_EQ(colorFromHsb(5.0 / 6, 1, 1), (Color{1, 0, 1, 1}));
    EXPECT_EQ(colorFromHsb(1, 1, 1), (Color{1, 0, 0, 1}));
}

TEST(TargetsColor, AHueBeyondTheEndsIsThatOfTheEnd) {
    EXPECT_EQ(colorFromHsb(-0.5, 1, 1), (Color{1, 0, 0, 1}));
    EXPECT_EQ(colorFromHsb(1.5, 1, 1), (Color{1, 0, 0, 1}));
}

TEST(TargetsColor, WithoutSaturationThereIsGreyAndWithoutBrightnessBlack) {
    EXPECT_EQ(colorFromHsb(0.3, 0, 0.5), (Color{0.5, 0.5, 0.5, 1}));
    EXPECT_EQ(colorFromHsb(0.3, 1, 0), (Color{0, 0, 0, 1}));
}

TEST(TargetsColor, EachCaseHasItsColour) {
    SimulatedColors system;
    EXPECT_EQ(colorOf(TargetsColor::findHighlight, 0, system), system.highlight);
    EXPECT_EQ(colorOf(TargetsColor::accent, 0, system), system.accent);
    EXPECT_EQ(colorOf(TargetsColor::highlight, 0, system), system.selected);
    EXPECT_EQ(colorOf(TargetsColor::voiceOver, 0, system), kBlack);
    EXPECT_EQ(colorOf(TargetsColor::orwynPastelPink, 0, system), (Color{0.96, 0.76, 0.84, 1}));
    EXPECT_EQ(colorOf(TargetsColor::mirelsFavoriteBlue, 0, system), (Color{0.47, 0.91, 0.84, 1}));
    EXPECT_EQ(colorOf(TargetsColor::custom, 0.5, system), (Color{0, 1, 1, 1}));
    const Color fuchsia = colorOf(TargetsColor::qsFlamboyantFuchsia, 0, system);
    EXPECT_THAT(fuchsia.red, DoubleNear(1, 1e-9));
    EXPECT_THAT(fuchsia.green, DoubleNear(0, 1e-9));
    EXPECT_THAT(fuchsia.blue, DoubleNear(0.96, 1e-9));
}

class Markers : public testing::Test {
protected:
    std::shared_ptr<TargetView> add(bool isPrimary, PanelRect frame = {{10, 950}, {100, 30}}) {
        const auto view = std::make_shared<TargetView>(look, isPrimary, frame);
        canvas.addSubview(view);
        return view;
    }
    const std::vector<MarkerDrawing>& painted() { return panels.canvas().markers(); }

    Journal journal;
    SimulatedUserDefaults defaults;
    SimulatedPanels panels{journal};
    TargetLook look{defaults, panels.colors()};
    Canvas canvas{panels};
};

TEST_F(Markers, ThePrimaryOneIsAFilledBlock) {
    add(true);
    const MarkerDrawing block{{{10, 950}, {100, 30}}, 0.6, 5, {MarkerShape{0, 0, panels.systemColors.highlight}}};
    EXPECT_THAT(painted(), ElementsAre(block));
}

TEST_F(Markers, AnotherOneIsAnOutline) {
    add(false);
    const MarkerDrawing outline{{{10, 950}, {100, 30}}, 0.9, 8, {MarkerShape{2, 2, panels.systemColors.highlight}}};
    EXPECT_THAT(painted(), ElementsAre(outline));
}

TEST_F(Markers, TheScreenReaderLookMakesTheMarkerThreeLargerOnEachSide) {
    defaults.set("targetsColor", "voiceOver");
    EXPECT_EQ(add(false)->frame(), (PanelRect{{7, 947}, {106, 36}}));
}

TEST_F(Markers, TheScreenReaderLookOfThePrimaryOneIsWhiteWithABlackFrame) {
    defaults.set("targetsColor", "voiceOver");
    add(true);
    const MarkerDrawing block{
        {{7, 947}, {106, 36}}, 0.6, 5, {MarkerShape{0, 0, kWhite}, MarkerShape{2.5, 2.5, kBlack}}};
    EXPECT_THAT(painted(), ElementsAre(block));
}

TEST_F(Markers, TheScreenReaderLookOfAnotherOneIsThreeNestedFrames) {
    defaults.set("targetsColor", "voiceOver");
    add(false);
    const MarkerDrawing frames{
        {{7, 947}, {106, 36}},
        0.9,
        0,
        {MarkerShape{1.5, 1.5, kWhite}, MarkerShape{3.5, 2.5, kBlack}, MarkerShape{5.5, 1.5, kWhite}}};
    EXPECT_THAT(painted(), ElementsAre(frames));
}

TEST_F(Markers, TheScreenReaderLookLeavesTheCornersOfAMarkerThatWasPrimaryRound) {
    defaults.set("targetsColor", "voiceOver");
    const auto view = add(true);
    painted();
    view->isPrimary = false;
    view->setNeedsDisplay();
    EXPECT_THAT(painted(), ElementsAre(Field(&MarkerDrawing::cornerRadius, 5)));
}

TEST_F(Markers, TheCustomColourHasAHueOfOneHalfUntilTheUserChoosesOne) {
    defaults.set("targetsColor", "custom");
    add(false);
    EXPECT_EQ(painted().front().shapes.front().color, (Color{0, 1, 1, 1}));
    defaults.set("targetsCustomColorHue", 0.0);
    canvas.subviews().front()->setNeedsDisplay();
    EXPECT_EQ(painted().front().shapes.front().color, (Color{1, 0, 0, 1}));
}

TEST_F(Markers, AnUnknownColourReadsAsTheDefault) {
    defaults.set("targetsColor", "mauve");
    add(true);
    EXPECT_EQ(painted().front().shapes.front().color, panels.systemColors.highlight);
}

TEST_F(Markers, AChangedSettingShowsWithTheNextRedrawOfAMarkerAndLeavesFramesAlone) {
    const auto redrawn = add(true);
    const auto left = add(false, {{0, 0}, {10, 10}});
    painted();
    defaults.set("targetsColor", "voiceOver");
    redrawn->setNeedsDisplay();
    EXPECT_EQ(painted()[0].shapes.size(), 2u);
    EXPECT_EQ(painted()[0].frame, (PanelRect{{10, 950}, {100, 30}}));
    EXPECT_EQ(painted()[1].shapes.front().color, panels.systemColors.highlight);
    left->setNeedsDisplay();
    EXPECT_EQ(painted()[1].shapes.size(), 3u);
}

TEST_F(Markers, TheScreenReaderLookKeepsTheCornersOfTheColourLookBeforeIt) {
    const auto view = add(false);
    painted();
    defaults.set("targetsColor", "voiceOver");
    view->setNeedsDisplay();
    EXPECT_THAT(painted(), ElementsAre(Field(&MarkerDrawing::cornerRadius, 8)));
}

TEST_F(Markers, AMarkerMadeForTheScreenReaderStaysLargerInAnotherLook) {
    defaults.set("targetsColor", "voiceOver");
    const auto view = add(true);
    painted();
    defaults.set("targetsColor", "accent");
    view->setNeedsDisplay();
    const MarkerDrawing block{{{7, 947}, {106, 36}}, 0.6, 5, {MarkerShape{0, 0, panels.systemColors.accent}}};
    EXPECT_THAT(painted(), ElementsAre(block));
}

TEST_F(Markers, ASystemColourIsThatOfTheDesktopAtTheTimeOfDrawing) {
    const auto view = add(true);
    painted();
    panels.systemColors.highlight = {0, 1, 0, 1};
    EXPECT_EQ(painted().front().shapes.front().color, (Color{1, 1, 0, 1}));
    view->setNeedsDisplay();
    EXPECT_EQ(painted().front().shapes.front().color, (Color{0, 1, 0, 1}));
}

TEST_F(Markers, AfterAMoveTheNewPrimaryOneIsTheBlockAndTheOldOneAnOutline) {
    const auto first = add(true), second = add(false, {{200, 950}, {100, 30}});
    painted();
    first->isPrimary = false;
    second->isPrimary = true;
    first->setNeedsDisplay();
    second->setNeedsDisplay();
    EXPECT_THAT(painted(), ElementsAre(Field(&MarkerDrawing::alpha, 0.9), Field(&MarkerDrawing::alpha, 0.6)));
    EXPECT_EQ(painted()[0].shapes, (std::vector{MarkerShape{2, 2, panels.systemColors.highlight}}));
    EXPECT_EQ(painted()[1].shapes, (std::vector{MarkerShape{0, 0, panels.systemColors.highlight}}));
}

TEST_F(Markers, BeingPrimaryIsAPlainFlagThatShowsWhenARedrawIsAskedFor) {
    const auto view = add(true);
    painted();
    view->isPrimary = false;
    canvas.setNeedsDisplay();
    EXPECT_EQ(painted().front().alpha, 0.6);
    view->setNeedsDisplay();
    EXPECT_EQ(painted().front().alpha, 0.9);
}

TEST_F(Markers, AMarkerWithoutSizeKeepsIt) {
    EXPECT_EQ(add(false, {{5, 5}, {0, 0}})->frame(), (PanelRect{{5, 5}, {0, 0}}));
}

TEST_F(Markers, TheCanvasPaintsItsViewsInTheirOrderUntilTheyAreRemoved) {
    add(true, {{1, 1}, {10, 10}});
    add(false, {{2, 2}, {10, 10}});
    ASSERT_EQ(painted().size(), 2u);
    EXPECT_EQ(painted()[0].frame.origin, (PanelPoint{1, 1}));
    EXPECT_EQ(painted()[1].frame.origin, (PanelPoint{2, 2}));
    canvas.removeSubviews();
    EXPECT_THAT(painted(), IsEmpty());
}

TEST_F(Markers, AViewOutlivesItsCanvas) {
    const auto view = add(true);
    canvas.removeSubviews();
    painted();
    view->setNeedsDisplay();
    EXPECT_FALSE(panels.canvas().needsDisplay());
}

}  // namespace
}  // namespace tarvix
