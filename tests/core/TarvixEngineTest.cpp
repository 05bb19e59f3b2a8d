// The state of one search session.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/TarvixEngine.h"
#include "display/DisplayEngine.h"
#include "platform/Events.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Role = AccessibilityElementRole;
using Elements = OrderedSet<AccessibilityElement>;

AccessibilityElement button(const std::string& title, AxRect frame) {
    AccessibilityElement element;
    element.role = Role::button;
    element.title = title;
    element.position = frame.origin;
    element.size = frame.size;
    return element;
}

// Buttons titled 0, 1, ..., side by side.
Elements row(int count) {
    Elements elements;
    for (int i = 0; i < count; ++i) elements.insert(button(std::to_string(i), {{10.0 + 30 * i, 20}, {20, 30}}));
    return elements;
}

class TarvixEngineTest : public testing::Test {
protected:
    std::string primary() { return engine.primaryTarget() ? *engine.primaryTarget()->element.title : "none"; }
    void show(const Elements& elements) {
        engine.removeTargets();
        engine.showTargets(elements);
    }
    // Shows a row of buttons and moves the Primary Target to the n-th.
    void showRow(int count, std::size_t n) {
        show(row(count));
        for (std::size_t i = 0; i < n; ++i) engine.nextTarget();
        desk.clearJournal();
    }
    SimulatedCanvasPanel& canvas() { return desk.panels.canvas(); }

    void TearDown() override {
        ASSERT_EQ(engine.targets().size(), engine.canvas().subviews().size());
        std::size_t primaries = 0;
        for (const Target& target : engine.targets()) primaries += target.view->isPrimary ? 1 : 0;
        ASSERT_EQ(primaries, engine.targets().empty() ? 0u : 1u);
        if (!engine.targets().empty()) {
            ASSERT_TRUE(engine.primaryTarget());
            ASSERT_TRUE(engine.targets().contains(*engine.primaryTarget()));
            ASSERT_TRUE(engine.primaryTarget()->view->isPrimary);
        }
    }

    SimulatedDesktop desk;
    DisplayEngine displayEngine{desk.platform()};
    TarvixEngine engine{desk.platform(), std::make_shared<SearchEngine>(desk.platform()), displayEngine};
};

TEST(Target, IsEqualForAnEqualElementAndTheVerySameView) {
    Journal journal;
    SimulatedUserDefaults defaults;
    SimulatedColors colors;
    const TargetLook look(defaults, colors);
    const auto view = std::make_shared<TargetView>(look, true, PanelRect{});
    const Target target{button("a", {{1, 2}, {3, 4}}), view};
    EXPECT_EQ(target, (Target{button("other texts", {{1, 2}, {3, 4}}), view}));
    EXPECT_NE(target, (Target{button("a", {{1, 2}, {3, 5}}), view}));
    EXPECT_NE(target, (Target{target.element, std::make_shared<TargetView>(look, true, PanelRect{})}));
    EXPECT_EQ(std::hash<Target>{}(target), std::hash<AccessibilityElement>{}(target.element));
}

TEST_F(TarvixEngineTest, BeginsEmpty) {
    EXPECT_TRUE(engine.targets().empty());
    EXPECT_TRUE(engine.allElements().empty());
    EXPECT_EQ(engine.primaryTarget(), std::nullopt);
    EXPECT_EQ(engine.axFrontmostApplicationPID(), std::nullopt);
}

// --- startSession

TEST_F(TarvixEngineTest, ASessionWorksOnTheFrontmostApplication) {
    const SimulatedWindow other = desk.window("Other");
    const SimulatedWindow mail = desk.window("Mail");
    desk.accessibility.setFocusedApplication(other.pid);
    engine.startSession();
    EXPECT_EQ(engine.axFrontmostApplicationPID(), mail.pid);
    EXPECT_EQ(desk.panels.dimming().below(), mail.number);
}

TEST_F(TarvixEngineTest, ASessionWorksOnTheFocusedApplicationWhenThatHasANonActivatingPanel) {
    const SimulatedWindow launcher = desk.window("Launcher", {{300, 300}, {400, 60}}, "com.culturedcode.ThingsMac");
    desk.window("Mail");
    desk.accessibility.setFocusedApplication(launcher.pid);
    engine.startSession();
    EXPECT_EQ(engine.axFrontmostApplicationPID(), launcher.pid);
    EXPECT_EQ(desk.panels.dimming().below(), launcher.number);
}

TEST_F(TarvixEngineTest, WithoutAFocusedApplicationOrItsIdentifierNothingIsChanged) {
    const SimulatedWindow mail = desk.window("Mail");
    engine.startSession();
    desk.clearJournal();
    desk.accessibility.setFocusedApplication(std::nullopt);
    engine.startSession();
    desk.accessibility.setFocusedApplication(mail.pid);
    desk.workspace.launch({mail.pid, std::nullopt, "Mail"});
    engine.startSession();
    desk.workspace.quit(mail.pid);
    engine.startSession();
    EXPECT_EQ(engine.axFrontmostApplicationPID(), mail.pid) << "of the session before";
    EXPECT_THAT(desk.journal(), IsEmpty());
}

TEST_F(TarvixEngineTest, WithoutAFrontmostApplicationTheProcessIsNone) {
    desk.window("Mail");
    desk.workspace.activate(std::nullopt);
    engine.startSession();
    EXPECT_EQ(engine.axFrontmostApplicationPID(), std::nullopt);
    EXPECT_THAT(desk.journal(), IsEmpty()) << "and there is no main window";
}

TEST_F(TarvixEngineTest, WithoutAWindowTheCanvasKeepsItsPlaceAndTheSessionGoesOn) {
    const std::int32_t mail = desk.launch("Mail");
    engine.startSession();
    EXPECT_EQ(engine.axFrontmostApplicationPID(), mail);
    EXPECT_THAT(desk.journal(), IsEmpty());
}

TEST_F(TarvixEngineTest, WithoutAScreenTheCanvasKeepsItsPlaceAndTheSessionGoesOn) {
    const SimulatedWindow mail = desk.window("Mail");
    displayEngine.mainWindow();
    desk.screens.setOnly(std::nullopt);
    engine.startSession();
    EXPECT_EQ(engine.axFrontmostApplicationPID(), mail.pid);
    EXPECT_THAT(desk.journal(), IsEmpty());
}

TEST_F(TarvixEngineTest, TheCanvasCoversTheScreenAndTheWindowWhereOneMayStandAcrossTwoScreens) {
    desk.screens.screens = {{{0, 0}, {1600, 1000}}, {{1600, 200}, {800, 800}}};
    desk.window("Mail", {{1200, 100}, {700, 500}});
    engine.startSession();
    EXPECT_EQ(canvas().frame(), (PanelRect{{0, 0}, {1900, 1000}}));
    EXPECT_EQ(desk.panels.dimming().frame(), (PanelRect{{0, 0}, {1600, 1000}}))
        << "the dimming covers the screen alone";
}

TEST_F(TarvixEngineTest, WithSeparateSpacesTheCanvasCoversTheScreenAlone) {
    desk.screens.screens = {{{0, 0}, {1600, 1000}}, {{1600, 200}, {800, 800}}};
    desk.screens.separateSpaces = true;
    desk.window("Mail", {{1200, 100}, {300, 500}});
    engine.startSession();
    EXPECT_EQ(canvas().frame(), (PanelRect{{0, 0}, {1600, 1000}}));
}

TEST_F(TarvixEngineTest, TheCanvasIsInFrontBeforeTheDimming) {
    const SimulatedWindow mail = desk.window("Mail");
    engine.startSession();
    EXPECT_THAT(desk.journal(), ElementsAre("canvas at 0,0 1600x1000", "canvas in front", "dimming at 0,0 1600x1000",
                                            "dimming level 0", "dimming alpha 0.2", "dimming at 0,0 1600x1000",
                                            "dimming below window " + std::to_string(mail.number)));
}

TEST_F(TarvixEngineTest, WithTargetsOnlyNothingIsDimmed) {
    desk.window("Mail");
    desk.userDefaults.set("hazeOverWindowStyle", "onlyTargets");
    engine.startSession();
    EXPECT_THAT(desk.journal({Topic::dimming}), IsEmpty());
}

// --- Targets

TEST_F(TarvixEngineTest, TheFirstElementBecomesThePrimaryTarget) {
    show(row(3));
    EXPECT_EQ(engine.targets().size(), 3u);
    EXPECT_EQ(primary(), "0");
    ASSERT_EQ(canvas().markers().size(), 3u);
    EXPECT_EQ(canvas().markers()[0].alpha, 0.6);
    EXPECT_EQ(canvas().markers()[1].alpha, 0.9);
    EXPECT_EQ(canvas().markers()[2].alpha, 0.9);
}

TEST_F(TarvixEngineTest, AMarkerLiesExactlyOverItsElement) {
    desk.window("Mail");
    engine.startSession();
    show({button("a", {{10, 20}, {100, 30}})});
    EXPECT_EQ(canvas().markers().front().frame, (PanelRect{{10, 950}, {100, 30}}));
}

TEST_F(TarvixEngineTest, TheFirstOfTheNewOnesIsPrimaryEvenIfTheOldPrimaryTargetStillMatches) {
    showRow(3, 1);
    EXPECT_EQ(primary(), "1");
    Elements fewer;
    fewer.insert(row(3)[0]);
    fewer.insert(row(3)[1]);
    show(fewer);
    EXPECT_EQ(primary(), "0");
}

TEST_F(TarvixEngineTest, WhatMatchesNothingLeavesAnEmptyCanvasInFrontAndNoPrimaryTarget) {
    show(row(2));
    desk.clearJournal();
    show({});
    EXPECT_TRUE(engine.targets().empty());
    EXPECT_EQ(engine.primaryTarget(), std::nullopt);
    EXPECT_THAT(desk.journal(), ElementsAre("canvas in front"));
    EXPECT_THAT(canvas().markers(), IsEmpty());
}

TEST_F(TarvixEngineTest, RemovingTheTargetsLeavesThePrimaryOneAndTheCanvas) {
    desk.window("Mail");
    engine.startSession();
    show(row(2));
    engine.removeTargets();
    EXPECT_TRUE(engine.targets().empty());
    EXPECT_EQ(primary(), "0");
    EXPECT_TRUE(canvas().isVisible());
    EXPECT_THAT(canvas().markers(), IsEmpty());
}

TEST_F(TarvixEngineTest, AnElementOffTheCanvasGetsAMarkerAllTheSame) {
    desk.window("Mail");
    engine.startSession();
    show({button("a", {{-500, 3000}, {10, 10}}), button("b", {{90000, -70}, {10, 10}})});
    EXPECT_EQ(canvas().markers()[0].frame.origin, (PanelPoint{-500, -2010}));
    EXPECT_EQ(canvas().markers()[1].frame.origin, (PanelPoint{90000, 1060}));
}

TEST_F(TarvixEngineTest, WithoutAScreenThereAreNoTargetsAndTheCanvasIsNotBroughtToTheFront) {
    desk.screens.setOnly(std::nullopt);
    show(row(3));
    EXPECT_TRUE(engine.targets().empty());
    EXPECT_EQ(engine.primaryTarget(), std::nullopt);
    EXPECT_THAT(desk.journal(), IsEmpty());
}

TEST_F(TarvixEngineTest, WithoutAScreenAndWithoutElementsTheCanvasComesToTheFront) {
    desk.screens.setOnly(std::nullopt);
    show({});
    EXPECT_THAT(desk.journal(), ElementsAre("canvas in front"));
}

// --- Moving

using Move = void (TarvixEngine::*)();

struct MoveRow {
    const char* name;
    Move move;
    int count;
    std::size_t from;
    std::size_t to;
    bool cycling = false;
};

class Moves : public TarvixEngineTest, public testing::WithParamInterface<MoveRow> {};

TEST_P(Moves, LeadWhereTheTableSays) {
    const MoveRow& row = GetParam();
    desk.userDefaults.set("allowCyclingThroughTargets", row.cycling);
    showRow(row.count, row.from);
    (engine.*row.move)();
    EXPECT_EQ(primary(), std::to_string(row.to));
}

constexpr MoveRow kMoves[] = {
    {"NextFromTheMiddle", &TarvixEngine::nextTarget, 5, 1, 2},
    {"NextFromTheLast", &TarvixEngine::nextTarget, 5, 4, 4},
    {"NextFromTheLastCycling", &TarvixEngine::nextTarget, 5, 4, 0, true},
    {"PreviousFromTheMiddle", &TarvixEngine::previousTarget, 5, 1, 0},
    {"PreviousFromTheFirst", &TarvixEngine::previousTarget, 5, 0, 0},
    {"PreviousFromTheFirstCycling", &TarvixEngine::previousTarget, 5, 0, 4, true},
    {"FirstFromTheMiddle", &TarvixEngine::firstTarget, 5, 3, 0},
    {"FirstFromTheFirst", &TarvixEngine::firstTarget, 5, 0, 0},
    {"LastFromTheMiddle", &TarvixEngine::lastTarget, 5, 3, 4},
    {"LastFromTheLast", &TarvixEngine::lastTarget, 5, 4, 4},
    {"DownFrom0Of5", &TarvixEngine::halfwayDownTarget, 5, 0, 2},
    {"DownFrom1Of5", &TarvixEngine::halfwayDownTarget, 5, 1, 2},
    {"DownFrom2Of5", &TarvixEngine::halfwayDownTarget, 5, 2, 4},
    {"DownFrom3Of5", &TarvixEngine::halfwayDownTarget, 5, 3, 4},
    {"DownFrom4Of5", &TarvixEngine::halfwayDownTarget, 5, 4, 4},
    {"DownFrom4Of5Cycling", &TarvixEngine::halfwayDownTarget, 5, 4, 4, true},
    {"UpFrom4Of5", &TarvixEngine::halfwayUpTarget, 5, 4, 2},
    {"UpFrom3Of5", &TarvixEngine::halfwayUpTarget, 5, 3, 2},
    {"UpFrom2Of5", &TarvixEngine::halfwayUpTarget, 5, 2, 0},
    {"UpFrom1Of5", &TarvixEngine::halfwayUpTarget, 5, 1, 0},
    {"UpFrom0Of5", &TarvixEngine::halfwayUpTarget, 5, 0, 0},
    {"DownFrom1Of4", &TarvixEngine::halfwayDownTarget, 4, 1, 2},
    {"DownFrom2Of4", &TarvixEngine::halfwayDownTarget, 4, 2, 3},
    {"UpFrom3Of4", &TarvixEngine::halfwayUpTarget, 4, 3, 2},
    {"UpFrom2Of4", &TarvixEngine::halfwayUpTarget, 4, 2, 0},
    {"NextOfOne", &TarvixEngine::nextTarget, 1, 0, 0, true},
    {"PreviousOfOne", &TarvixEngine::previousTarget, 1, 0, 0, true},
    {"DownOfOne", &TarvixEngine::halfwayDownTarget, 1, 0, 0},
    {"UpOfOne", &TarvixEngine::halfwayUpTarget, 1, 0, 0},
};

INSTANTIATE_TEST_SUITE_P(Table, Moves, testing::ValuesIn(kMoves),
                         [](const auto& row) { return std::string(row.param.name); });

constexpr Move kAllMoves[] = {&TarvixEngine::nextTarget,        &TarvixEngine::previousTarget,
                              &TarvixEngine::firstTarget,       &TarvixEngine::lastTarget,
                              &TarvixEngine::halfwayDownTarget, &TarvixEngine::halfwayUpTarget};

TEST_F(TarvixEngineTest, WithoutTargetsNothingMoves) {
    desk.workspace.voiceOver = true;
    show({});
    desk.clearJournal();
    for (const Move move : kAllMoves) (engine.*move)();
    EXPECT_EQ(primary(), "none");
    EXPECT_THAT(desk.journal(), IsEmpty());
}

TEST_F(TarvixEngineTest, APrimaryTargetThatIsNoneOfTheTargetsDoesNotMove) {
    desk.workspace.voiceOver = true;
    show(row(3));
    engine.endSession();
    desk.clearJournal();
    for (const Move move : kAllMoves) (engine.*move)();
    EXPECT_EQ(primary(), "0");
    EXPECT_THAT(desk.journal(), IsEmpty());
}

TEST_F(TarvixEngineTest, AMoveRedrawsTheOldAndTheNewMarker) {
    show(row(3));
    canvas().markers();
    engine.nextTarget();
    EXPECT_EQ(canvas().markers()[0].alpha, 0.9);
    EXPECT_EQ(canvas().markers()[1].alpha, 0.6);
    EXPECT_EQ(canvas().markers()[2].alpha, 0.9);
}

TEST_F(TarvixEngineTest, CyclingIsReadAtEachMove) {
    showRow(2, 1);
    engine.nextTarget();
    EXPECT_EQ(primary(), "1");
    desk.userDefaults.set("allowCyclingThroughTargets", true);
    engine.nextTarget();
    EXPECT_EQ(primary(), "0");
}

// --- The screen reader

TEST_F(TarvixEngineTest, TheScreenReaderHearsLabelTitleAndValue) {
    desk.workspace.voiceOver = true;
    AccessibilityElement element = button("title", {{1, 2}, {3, 4}});
    element.label = "label";
    element.value = "value";
    show({element});
    EXPECT_THAT(desk.journal({Topic::announcement}), ElementsAre("announced 'label title value' at 90"));
}

TEST_F(TarvixEngineTest, AbsentTextsCountAsEmptyForTheScreenReader) {
    desk.workspace.voiceOver = true;
    show({button("title", {{1, 2}, {3, 4}})});
    EXPECT_THAT(desk.journal({Topic::announcement}), ElementsAre("announced ' title ' at 90"));
}

TEST_F(TarvixEngineTest, WithoutAScreenReaderNothingIsAnnounced) {
    showRow(5, 0);
    for (const Move move : kAllMoves) (engine.*move)();
    EXPECT_THAT(desk.journal({Topic::announcement}), IsEmpty());
}

TEST_F(TarvixEngineTest, AMoveAnnouncesTheNewPrimaryTarget) {
    desk.workspace.voiceOver = true;
    showRow(3, 0);
    engine.nextTarget();
    EXPECT_THAT(desk.journal({Topic::announcement}), ElementsAre("announced ' 1 ' at 90"));
}

TEST_F(TarvixEngineTest, AMoveThatDoesNotHappenIsNotAnnounced) {
    desk.workspace.voiceOver = true;
    showRow(3, 2);
    engine.nextTarget();
    EXPECT_THAT(desk.journal({Topic::announcement}), IsEmpty());
}

TEST_F(TarvixEngineTest, ToTheFirstOrLastIsAMoveEvenWhenItIsThereAlready) {
    desk.workspace.voiceOver = true;
    showRow(3, 0);
    engine.firstTarget();
    EXPECT_THAT(desk.journal({Topic::announcement}), ElementsAre("announced ' 0 ' at 90"));
}

TEST_F(TarvixEngineTest, HalfwayDownIsAnnouncedTwiceAndHalfwayUpOnce) {
    desk.workspace.voiceOver = true;
    showRow(5, 0);
    engine.halfwayDownTarget();
    engine.halfwayDownTarget();
    engine.halfwayUpTarget();
    EXPECT_THAT(desk.journal({Topic::announcement}),
                ElementsAre("announced ' 2 ' at 90", "announced ' 2 ' at 90", "announced ' 4 ' at 90",
                            "announced ' 4 ' at 90", "announced ' 2 ' at 90"));
}

// --- elementUnderMouse

TEST_F(TarvixEngineTest, UnderTheMouseIsTheSmallestCandidateTargetOrNot) {
    engine.setAllElements({button("window", {{0, 0}, {800, 600}}), button("small", {{90, 90}, {20, 20}}),
                           button("group", {{50, 50}, {200, 200}})});
    show({});
    desk.screens.pointer = {100, 900};
    EXPECT_EQ(engine.elementUnderMouse()->title, "small");
    desk.screens.pointer = {60, 940};
    EXPECT_EQ(engine.elementUnderMouse()->title, "group");
    desk.screens.pointer = {1500, 10};
    EXPECT_EQ(engine.elementUnderMouse(), std::nullopt);
}

TEST_F(TarvixEngineTest, OfEquallyLargeCandidatesUnderTheMouseTheFirstIsTaken) {
    engine.setAllElements({button("wide", {{90, 90}, {40, 20}}), button("high", {{90, 90}, {20, 40}})});
    desk.screens.pointer = {100, 900};
    EXPECT_EQ(engine.elementUnderMouse()->title, "wide");
}

TEST_F(TarvixEngineTest, ItsUpperEdgeIsNotUnderTheMouseAndItsLowerEdgeIs) {
    engine.setAllElements({button("a", {{90, 90}, {20, 20}})});
    const auto at = [&](double x, double y) {
        desk.screens.pointer = flip(AxPoint{x, y}, 1000);
        return engine.elementUnderMouse().has_value();
    };
    EXPECT_FALSE(at(100, 90));
    EXPECT_TRUE(at(100, 110));
    EXPECT_TRUE(at(90, 100));
    EXPECT_FALSE(at(110, 100));
}

TEST_F(TarvixEngineTest, WithoutScreensNothingIsUnderTheMouse) {
    engine.setAllElements({button("window", {{0, 0}, {8000, 6000}})});
    desk.screens.setOnly(std::nullopt);
    EXPECT_EQ(engine.elementUnderMouse(), std::nullopt);
}

// --- Actions

TEST_F(TarvixEngineTest, ClickingMovesToThePrimaryTargetAndClicks) {
    show({button("a", {{10, 10}, {100, 20}})});
    desk.clearJournal();
    engine.clickPrimaryTarget(MouseButton::left);
    EXPECT_THAT(desk.journal(), ElementsAre("moved to 60,20", "left down", "left up"));
    EXPECT_EQ(desk.milestones.moments().back().first, milestone::actionPosted);
}

TEST_F(TarvixEngineTest, WithoutAPrimaryTargetNothingIsClicked) {
    engine.clickPrimaryTarget(MouseButton::left);
    EXPECT_THAT(desk.journal(), IsEmpty());
    EXPECT_THAT(desk.milestones.moments(), IsEmpty());
}

TEST_F(TarvixEngineTest, APlainRadioButtonIsPressedEvenByARightClick) {
    desk.window("Mail").add(
        {.role = "AXRadioButton", .title = "Weekly", .frame = {{10, 10}, {80, 20}}, .children = {}});
    AccessibilityElement radio = button("Weekly", {{10, 10}, {80, 20}});
    radio.role = Role::radioButton;
    show({radio});
    desk.clearJournal();
    engine.clickPrimaryTarget(MouseButton::right);
    EXPECT_THAT(desk.journal({Topic::mouse}), ElementsAre("moved to 50,20"));
    EXPECT_THAT(desk.journal({Topic::accessibility}), ElementsAre(HasSubstr("AXPress on ")));
}

TEST_F(TarvixEngineTest, ThePointerGoesBackAfterTheClickIfTheUserWantsItSo) {
    desk.screens.pointer = {800, 500};
    show({button("a", {{10, 10}, {100, 20}})});
    desk.userDefaults.set("repositionMouseAfterClick", true);
    desk.clearJournal();
    engine.clickPrimaryTarget(MouseButton::right);
    EXPECT_THAT(desk.journal(), ElementsAre("moved to 60,20", "right down", "right up", "moved to 800,500"));
}

TEST_F(TarvixEngineTest, ThePointerStaysOnAMenuBarItemWhoseSubroleIsTheEmptyText) {
    desk.userDefaults.set("repositionMouseAfterClick", true);
    AccessibilityElement item = button("File", {{10, 0}, {40, 20}});
    item.role = Role::menuBarItem;
    const auto lastMove = [&](std::optional<std::string> subrole) {
        desk.screens.pointer = {800, 500};
        item.subrole = std::move(subrole);
        show({item});
        desk.clearJournal();
        engine.clickPrimaryTarget(MouseButton::left);
        return desk.journal({Topic::mouse}).back();
    };
    EXPECT_EQ(lastMove(""), "left up");
    EXPECT_EQ(lastMove("AXMenuExtra"), "moved to 800,500");
    EXPECT_EQ(lastMove(std::nullopt), "moved to 800,500");
}

TEST_F(TarvixEngineTest, WithoutScreensTheWayBackIsToTheClickedPoint) {
    show({button("a", {{10, 10}, {100, 20}})});
    desk.screens.setOnly(std::nullopt);
    desk.userDefaults.set("repositionMouseAfterClick", true);
    desk.clearJournal();
    engine.clickPrimaryTarget(MouseButton::left);
    EXPECT_EQ(desk.events.mouseEvents.back().type, MouseEventType::mouseMoved);
    EXPECT_EQ(desk.events.mouseEvents.back().point, (AxPoint{60, 20}));
}

TEST_F(TarvixEngineTest, AClickAtThePointerIsWhereItStoodWhenTheSessionAskedAndMovesNothing) {
    desk.screens.pointer = {300, 900};
    displayEngine.focusedMouse();
    desk.screens.pointer = {310, 900};
    engine.clickAtMouse(MouseButton::right);
    EXPECT_THAT(desk.journal(), ElementsAre("right down at 300,100", "right up"));
}

TEST_F(TarvixEngineTest, AClickAtThePointerCountsFromTheScreenUnderIt) {
    desk.screens.screens = {{{0, 0}, {1600, 1000}}, {{1600, 0}, {800, 600}}};
    desk.screens.pointer = {1700, 500};
    engine.clickAtMouse(MouseButton::left);
    EXPECT_EQ(desk.events.mouseEvents.front().point, (AxPoint{1700, 100}));
}

TEST_F(TarvixEngineTest, WithoutAScreenUnderThePointerNothingIsClicked) {
    desk.screens.setOnly(std::nullopt);
    engine.clickAtMouse(MouseButton::left);
    EXPECT_THAT(desk.journal(), IsEmpty());
}

TEST_F(TarvixEngineTest, ARadioButtonUnderThePointerIsPressedEvenByARightClick) {
    desk.window("Mail").add(
        {.role = "AXRadioButton", .title = "Weekly", .frame = {{90, 90}, {20, 20}}, .children = {}});
    AccessibilityElement radio = button("Weekly", {{90, 90}, {20, 20}});
    radio.role = Role::radioButton;
    engine.setAllElements({radio});
    desk.screens.pointer = {100, 900};
    engine.clickAtMouse(MouseButton::right);
    EXPECT_THAT(desk.journal({Topic::mouse}), IsEmpty());
    EXPECT_THAT(desk.journal({Topic::accessibility}), ElementsAre(HasSubstr("AXPress on ")));
}

TEST_F(TarvixEngineTest, ADoubleClickOnARadioButtonIsADoubleClickAndNoPress) {
    AccessibilityElement radio = button("Weekly", {{10, 10}, {80, 20}});
    radio.role = Role::radioButton;
    show({radio});
    desk.clearJournal();
    engine.doubleClickPrimaryTarget(MouseButton::left);
    EXPECT_THAT(desk.journal(), ElementsAre("moved to 50,20", "left down, flags 0", "left up, flags 0",
                                            "left down, click 2, flags 0", "left up, click 2, flags 0"));
    EXPECT_EQ(desk.milestones.moments().back().first, milestone::actionPosted);
}

TEST_F(TarvixEngineTest, ADoubleClickWithTheOtherButtonIsOne) {
    show({button("a", {{10, 10}, {100, 20}})});
    desk.clearJournal();
    engine.doubleClickPrimaryTarget(MouseButton::right);
    EXPECT_THAT(desk.journal(), ElementsAre("moved to 60,20", "right down, flags 0", "right up, flags 0",
                                            "right down, click 2, flags 0", "right up, click 2, flags 0"));
}

TEST_F(TarvixEngineTest, ThePointerGoesBackAfterADoubleClickToo) {
    desk.screens.pointer = {800, 500};
    desk.userDefaults.set("repositionMouseAfterClick", true);
    show({button("a", {{10, 10}, {100, 20}})});
    engine.doubleClickPrimaryTarget(MouseButton::left);
    EXPECT_EQ(desk.journal({Topic::mouse}).back(), "moved to 800,500");
}

TEST_F(TarvixEngineTest, ATabIsClickedWithEitherButton) {
    AccessibilityElement tab = button("Weekly", {{10, 10}, {80, 20}});
    tab.role = Role::radioButton;
    tab.subrole = "AXTabButton";
    show({tab});
    desk.clearJournal();
    engine.clickPrimaryTarget(MouseButton::left);
    engine.clickPrimaryTarget(MouseButton::right);
    EXPECT_THAT(desk.journal(),
                ElementsAre("moved to 50,20", "left down", "left up", "moved to 50,20", "right down", "right up"));
}

TEST_F(TarvixEngineTest, ARadioButtonWhereNoElementIsFoundGetsALeftClickEvenWhenTheRightOneIsAskedFor) {
    AccessibilityElement radio = button("Weekly", {{10, 10}, {80, 20}});
    radio.role = Role::radioButton;
    show({radio});
    desk.clearJournal();
    engine.clickPrimaryTarget(MouseButton::right);
    EXPECT_THAT(desk.journal(), ElementsAre("moved to 50,20", "left down", "left up"));
}

// The click itself may have been on the control that changes the setting.
class EventsWhoseClickTurnsOnTheReposition : public Events {
public:
    explicit EventsWhoseClickTurnsOnTheReposition(SimulatedDesktop& desk) : desk_(desk) {}

    bool post(const MouseEvent& event) override {
        if (event.type == MouseEventType::leftMouseUp) desk_.userDefaults.set("repositionMouseAfterClick", true);
        return desk_.events.post(event);
    }
    bool post(const KeyEvent& event) override { return desk_.events.post(event); }
    [[nodiscard]] Subscription monitorKeyDown(std::function<Verdict(const KeyEvent&)> seen) override {
        return desk_.events.monitorKeyDown(std::move(seen));
    }

private:
    SimulatedDesktop& desk_;
};

TEST(TarvixEngineActions, WhetherThePointerGoesBackIsReadAfterTheClick) {
    SimulatedDesktop desk;
    EventsWhoseClickTurnsOnTheReposition events(desk);
    const Platform whole = desk.platform();
    const Platform platform{.accessibility = whole.accessibility,
                            .application = whole.application,
                            .workspace = whole.workspace,
                            .windowServer = whole.windowServer,
                            .screens = whole.screens,
                            .events = events,
                            .eventTaps = whole.eventTaps,
                            .hotKeys = whole.hotKeys,
                            .inputSources = whole.inputSources,
                            .panels = whole.panels,
                            .runLoop = whole.runLoop,
                            .userDefaults = whole.userDefaults,
                            .pasteboard = whole.pasteboard,
                            .notificationCenter = whole.notificationCenter,
                            .milestones = whole.milestones,
                            .statusBar = whole.statusBar,
                            .loginItems = whole.loginItems,
                            .updater = whole.updater};
    DisplayEngine displayEngine(platform);
    TarvixEngine engine(platform, std::make_shared<SearchEngine>(platform), displayEngine);
    engine.showTargets({button("a", {{10, 10}, {100, 20}})});
    engine.clickPrimaryTarget(MouseButton::left);
    EXPECT_EQ(desk.journal({Topic::mouse}).back(), "moved to 800,500");
}

TEST_F(TarvixEngineTest, MovingOnlyLeavesThePointerThereWhateverTheSetting) {
    desk.userDefaults.set("repositionMouseAfterClick", true);
    show({button("a", {{10, 10}, {100, 20}})});
    desk.clearJournal();
    engine.moveMouseToPrimaryTarget();
    EXPECT_THAT(desk.journal(), ElementsAre("moved to 60,20"));
    EXPECT_EQ(desk.milestones.moments().back().first, milestone::actionPosted);
}

TEST_F(TarvixEngineTest, WithoutAPrimaryTargetNothingIsDoubleClickedOrMoved) {
    engine.doubleClickPrimaryTarget(MouseButton::left);
    engine.moveMouseToPrimaryTarget();
    EXPECT_THAT(desk.journal(), IsEmpty());
    EXPECT_THAT(desk.milestones.moments(), IsEmpty());
}

TEST_F(TarvixEngineTest, ADoubleClickAtThePointerIsWhereItStoodWhenTheSessionAsked) {
    desk.userDefaults.set("repositionMouseAfterClick", true);
    desk.screens.pointer = {300, 900};
    displayEngine.focusedMouse();
    desk.screens.pointer = {310, 900};
    engine.doubleClickAtMouse();
    EXPECT_THAT(desk.journal(), ElementsAre("moved to 300,100", "left down, flags 0", "left up, flags 0",
                                            "left down, click 2, flags 0", "left up, click 2, flags 0"));
}

TEST_F(TarvixEngineTest, WithoutAScreenUnderThePointerNothingIsDoubleClicked) {
    desk.screens.setOnly(std::nullopt);
    engine.doubleClickAtMouse();
    EXPECT_THAT(desk.journal(), IsEmpty());
}

TEST_F(TarvixEngineTest, TheDescriptionOfTheTargetsIsTheDumpOfEachInTheirOrder) {
    const AccessibilityElement first = button("a", {{10, 10}, {100, 20}}), second = button("b", {{10, 40}, {100, 20}});
    show({first, second});
    engine.nextTarget();
    engine.copyTargetsDescription();
    EXPECT_EQ(desk.pasteboard.text, first.metadataDump() + second.metadataDump());
}

TEST_F(TarvixEngineTest, TheDescriptionOfNoTargetsIsTheEmptyText) {
    desk.pasteboard.text = "from before";
    engine.copyTargetsDescription();
    EXPECT_THAT(desk.journal(), ElementsAre("pasteboard cleared", "pasteboard set to ''"));
    EXPECT_EQ(desk.pasteboard.text, "");
}

// --- endSession

TEST_F(TarvixEngineTest, TheEndResetsEverythingButThePrimaryTarget) {
    desk.window("Mail");
    engine.startSession();
    engine.setAllElements(row(3));
    show(row(3));
    engine.endSession();
    EXPECT_EQ(engine.axFrontmostApplicationPID(), std::nullopt);
    EXPECT_TRUE(engine.allElements().empty());
    EXPECT_TRUE(engine.targets().empty());
    EXPECT_TRUE(engine.canvas().subviews().empty());
    EXPECT_EQ(primary(), "0");
    EXPECT_FALSE(displayEngine.cachedMainWindow);
    EXPECT_FALSE(displayEngine.cachedScreenForWindow);
}

TEST_F(TarvixEngineTest, TheEndHidesTheCanvasThenFadesTheDimming) {
    desk.window("Mail");
    engine.startSession();
    desk.clearJournal();
    engine.endSession();
    EXPECT_THAT(desk.journal(), ElementsAre("canvas hidden", "dimming fades to 0"));
    EXPECT_THAT(canvas().markers(), IsEmpty());
}

TEST_F(TarvixEngineTest, TheEndIsToldWhenEverythingElseIsOver) {
    desk.window("Mail");
    engine.startSession();
    engine.setAllElements(row(3));
    int told = 0;
    {
        const Subscription end = engine.onSessionEnded([&] {
            ++told;
            EXPECT_TRUE(engine.allElements().empty());
            EXPECT_FALSE(canvas().isVisible());
        });
        engine.endSession();
    }
    engine.endSession();
    EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace tarvix
