// The Input: where it appears, what its text does, and when it goes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "display/DisplayEngine.h"
#include "display/TheInput.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RecordingSession : public QuerySession {
public:
    OrderedSet<AccessibilityElement> filteredElements(std::string_view query) override {
        calls.push_back("filteredElements '" + std::string(query) + "'");
        return {AccessibilityElement{}};
    }
    void removeTargets() override { calls.push_back("removeTargets"); }
    void showTargets(const OrderedSet<AccessibilityElement>& elements) override {
        calls.push_back("showTargets " + std::to_string(elements.size()));
    }
    void endSession() override { calls.push_back("endSession"); }

    std::vector<std::string> calls;
};

class TheInputTest : public testing::Test {
protected:
    PanelPoint origin() { return panel().frame().origin; }
    SimulatedInputPanel& panel() { return desk.panels.input(); }
    // Opens it where this position says, and closes it again.
    PanelPoint originAt(const char* position) {
        desk.userDefaults.set("inputPosition", position);
        displayEngine.resetCaches();
        theInput.open();
        theInput.close();
        return origin();
    }

    SimulatedDesktop desk;
    DisplayEngine displayEngine{desk.platform()};
    RecordingSession session;
    Sauce sauce{desk.inputSources};
    TheInput theInput{desk.platform(), displayEngine, session, sauce};
};

TEST_F(TheInputTest, ByDefaultItOpensAboveTheFrontmostWindow) {
    desk.window("Mail", {{100, 300}, {800, 600}});
    theInput.open();
    EXPECT_TRUE(theInput.isVisible());
    EXPECT_EQ(origin(), (PanelPoint{100, 700}));
    EXPECT_THAT(desk.journal({Topic::theInput, Topic::notification}),
                ElementsAre("The Input shown", "posted TarvixInputDidAppear"));
}

TEST_F(TheInputTest, TheWindowOfAnApplicationWithANonActivatingPanelIsItsFocusedOne) {
    const SimulatedWindow launcher = desk.window("Launcher", {{300, 400}, {400, 60}}, "com.apple.Spotlight");
    desk.window("Mail", {{100, 300}, {800, 600}});
    desk.accessibility.setFocusedApplication(launcher.pid);
    theInput.open();
    EXPECT_EQ(origin(), (PanelPoint{300, 600}));
}

TEST_F(TheInputTest, AboveTheWindowItStaysOnTheScreen) {
    desk.window("Mail", {{-20, 0}, {800, 600}});
    theInput.open();
    EXPECT_EQ(origin(), (PanelPoint{0, 1000 - panel().frame().size.height}));
}

TEST_F(TheInputTest, AboveTheCurrentInput) {
    SimulatedWindow window = desk.window("Mail", {{100, 300}, {800, 600}});
    window.add({.role = "AXTextField", .title = "To", .frame = {{150, 400}, {300, 20}}, .children = {}});
    desk.accessibility.setFocusedElement(window.last);
    EXPECT_EQ(originAt("aboveInput"), (PanelPoint{150, 600}));
}

TEST_F(TheInputTest, AboveAnInputWithoutAPositionItOpensAtItsLastPlace) {
    SimulatedWindow window = desk.window("Mail", {{100, 300}, {800, 600}});
    window.add({.role = "AXTextField", .title = "To", .frame = {{150, 400}, {300, 20}}, .children = {}});
    desk.accessibility.setFocusedElement(window.last);
    const PanelPoint last = originAt("aboveInput");
    desk.accessibility.setStatus(window.last, ax::position, AxStatus::failure);
    desk.clearJournal();
    EXPECT_EQ(originAt("aboveInput"), last);
    EXPECT_EQ(desk.journal({Topic::theInput}).front(), "The Input shown");
}

TEST_F(TheInputTest, AboveATextAreaWithoutAParentItOpensAtItsLastPlace) {
    SimulatedWindow window = desk.window("Mail", {{100, 300}, {800, 600}});
    window.add({.role = "AXTextArea", .title = "", .frame = {{150, 400}, {300, 20}}, .children = {}});
    desk.accessibility.setFocusedElement(window.last);
    desk.accessibility.setStatus(window.last, ax::parent, AxStatus::noValue);
    EXPECT_EQ(originAt("aboveInput"), (PanelPoint{0, 0}));
}

TEST_F(TheInputTest, AboveTheMouseWithNoNeedOfAnApplication) {
    desk.screens.pointer = {640, 480};
    EXPECT_EQ(originAt("aboveMouse"), (PanelPoint{640, 480}));
}

TEST_F(TheInputTest, WhereTheUserLeftItSurvivesClosingAndOpening) {
    EXPECT_EQ(originAt("fixed"), (PanelPoint{0, 0}));
    panel().setFrame({{123, 456}, panel().frame().size});  // dragged
    EXPECT_EQ(originAt("fixed"), (PanelPoint{123, 456}));
}

TEST_F(TheInputTest, AnUnknownPositionIsAboveTheWindow) {
    desk.window("Mail", {{100, 300}, {800, 600}});
    EXPECT_EQ(originAt("onTheMoon"), (PanelPoint{100, 700}));
}

TEST_F(TheInputTest, WithoutAFocusedApplicationItStaysHiddenAndSaysItAppearedAllTheSame) {
    const SimulatedWindow window = desk.window("Mail");
    for (const char* position : {"aboveWindow", "aboveInput"}) {
        desk.userDefaults.set("inputPosition", position);
        desk.clearJournal();
        desk.activate(std::nullopt);
        theInput.open();
        desk.activate(window.pid);
        desk.workspace.launch({window.pid, std::nullopt, "Mail"});
        theInput.open();
        desk.workspace.quit(window.pid);
        theInput.open();
        EXPECT_FALSE(theInput.isVisible());
        EXPECT_THAT(desk.journal(), ElementsAre("posted TarvixInputDidAppear", "posted TarvixInputDidAppear",
                                                "posted TarvixInputDidAppear"));
    }
}

TEST_F(TheInputTest, WithoutAWindowOrAScreenItOpensAtItsLastPlace) {
    const std::int32_t mail = desk.launch("Mail");
    theInput.open();
    EXPECT_TRUE(theInput.isVisible());
    EXPECT_EQ(origin(), (PanelPoint{0, 0}));
    theInput.close();
    desk.addWindow(mail, "Inbox", {{100, 300}, {800, 600}});
    desk.screens.setOnly(std::nullopt);
    theInput.open();
    EXPECT_TRUE(theInput.isVisible());
    EXPECT_EQ(origin(), (PanelPoint{0, 0}));
}

TEST_F(TheInputTest, InPlaceItShowsATextWhereItStands) {
    desk.window("Mail", {{100, 300}, {800, 600}});
    panel().setFrame({{5, 6}, panel().frame().size});
    theInput.openInPlace("hello, world!");
    EXPECT_EQ(origin(), (PanelPoint{5, 6}));
    EXPECT_EQ(panel().text(), "hello, world!");
    EXPECT_EQ(theInput.value(), "hello, world!");
    EXPECT_TRUE(theInput.isVisible());
}

TEST_F(TheInputTest, ClosingEndsTheSessionThenHidesThenTells) {
    desk.window("Mail");
    theInput.open();
    panel().insert("query");
    session.calls.clear();
    desk.clearJournal();
    theInput.close();
    EXPECT_THAT(session.calls, ElementsAre("endSession"));
    EXPECT_THAT(desk.journal(), ElementsAre("The Input hidden", "posted TarvixInputDidDisappear"));
    EXPECT_EQ(theInput.value(), "");
    EXPECT_EQ(panel().text(), "");
}

TEST_F(TheInputTest, ClosingAHiddenPanelDoesNothingAtAll) {
    theInput.close();
    EXPECT_THAT(session.calls, IsEmpty());
    EXPECT_THAT(desk.journal(), IsEmpty());
}

TEST_F(TheInputTest, CancellingClosesIt) {
    desk.window("Mail");
    theInput.open();
    desk.press(qwertyKeyCode(Key::escape));
    EXPECT_FALSE(theInput.isVisible());
    EXPECT_THAT(session.calls, ElementsAre("endSession"));
}

TEST_F(TheInputTest, LosingTheKeyboardClosesIt) {
    desk.window("Mail");
    theInput.open();
    desk.clickElsewhere();
    EXPECT_FALSE(theInput.isVisible());
    EXPECT_THAT(session.calls, ElementsAre("endSession"));
}

TEST_F(TheInputTest, TheTextOfTheLastSearchComesBackSelectedIfTheUserWantsItKept) {
    desk.window("Mail");
    desk.userDefaults.set("dontFlushTheInput", true);
    theInput.open();
    desk.settle();
    desk.type("mail");
    theInput.close();
    EXPECT_EQ(theInput.value(), "mail");
    desk.clearJournal();

    theInput.open();
    EXPECT_THAT(desk.journal({Topic::theInput, Topic::key, Topic::notification}),
                ElementsAre("The Input shown", "key down 0 flags " + std::to_string(eventFlag::command),
                            "key up 0 flags " + std::to_string(eventFlag::command), "posted TarvixInputDidAppear"));
    desk.settle();
    EXPECT_TRUE(panel().isTextSelected());
    desk.type("s");
    EXPECT_EQ(theInput.value(), "s");
}

TEST_F(TheInputTest, TheKeyThatSelectsTheTextFollowsTheKeyboardLayout) {
    desk.inputSources.setEnabled({simulatedLayout::dvorak()});
    desk.window("Mail");
    desk.userDefaults.set("dontFlushTheInput", true);
    theInput.open();
    ASSERT_EQ(desk.events.keyEvents.size(), 2u);
    EXPECT_EQ(desk.events.keyEvents.front().keyCode, sauce.keyCodeForKey(Key::a));
}

TEST_F(TheInputTest, EachChangeOfTheTextFiltersAndRedrawsAtOnceWithTheTextTrimmed) {
    desk.window("Mail");
    theInput.open();
    panel().insert(" a\t");
    EXPECT_THAT(session.calls, ElementsAre("filteredElements 'a'", "removeTargets", "showTargets 1"));
    EXPECT_EQ(theInput.value(), " a\t");
}

TEST_F(TheInputTest, ATextOfSpacesFiltersWithTheEmptyText) {
    desk.window("Mail");
    theInput.open();
    desk.type("  ");
    EXPECT_EQ(session.calls.back(), "showTargets 1");
    EXPECT_EQ(session.calls[0], "filteredElements ''");
}

TEST_F(TheInputTest, ItsWidthFollowsTheTextAtTheLeftEdgeAndIsNeverBelow32) {
    desk.window("Mail", {{100, 300}, {800, 600}});
    theInput.open();
    EXPECT_EQ(panel().measuredWidth(), 24) << "XXX";
    EXPECT_EQ(panel().frame().size.width, 32);
    const PanelRect before = panel().frame();
    desk.type("send later");
    EXPECT_EQ(panel().frame().origin, before.origin);
    EXPECT_EQ(panel().frame().size.height, before.size.height);
    EXPECT_EQ(panel().frame().size.width, 13 * SimulatedInputPanel::characterWidth);
    for (int i = 0; i < 9; ++i) desk.press(qwertyKeyCode(Key::delete_));
    EXPECT_EQ(panel().frame().size.width, 32);
}

TEST_F(TheInputTest, ItShowsThatTheCandidatesAreStillBeingRead) {
    EXPECT_FALSE(panel().showsProgress());
    theInput.setShowPreloading(true);
    EXPECT_TRUE(panel().showsProgress());
    theInput.setShowPreloading(false);
    EXPECT_FALSE(panel().showsProgress());
}

TEST_F(TheInputTest, ItsLookFollowsTheSettings) {
    EXPECT_EQ(panel().look(), (InputLook{16, 0.9, 6, 2}));
    desk.userDefaults.set("inputTextSize", 32.0);
    desk.userDefaults.set("inputBackgroundOpacity", 0.5);
    desk.userDefaults.set("inputCornerRadius", 9.4);
    desk.userDefaults.set("inputBorderThickness", 0.43);
    EXPECT_EQ(panel().look(), (InputLook{32, 0.5, 9.4, 0.43}));
    desk.userDefaults.set("inputTextSize", "large");
    EXPECT_EQ(panel().look().textSize, 16);
}

TEST_F(TheInputTest, AFileMaySayAnythingAndThePanelCanBeDrawn) {
    for (const char* key : {"inputTextSize", "inputBackgroundOpacity", "inputCornerRadius", "inputBorderThickness"})
        desk.userDefaults.set(key, 1e300);
    EXPECT_EQ(panel().look(), (InputLook{400, 1, 400, 400}));
    for (const char* key : {"inputTextSize", "inputBackgroundOpacity", "inputCornerRadius", "inputBorderThickness"})
        desk.userDefaults.set(key, -1e300);
    EXPECT_EQ(panel().look(), (InputLook{1, 0, 0, 0}));
}

}  // namespace
}  // namespace tarvix
