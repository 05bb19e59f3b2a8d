// Searches from the shortcut to the click.
#include <gmock/gmock.h>

#include "tests/scenarios/SearchScenario.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WholeSearch : public SearchScenario {
protected:
    SimulatedWindow mail = desk.window("Mail", {{0, 0}, {800, 600}});

    WholeSearch() {
        mail.button("Archive", {{10, 20}, {60, 20}})
            .button("Send later", {{90, 20}, {80, 20}})
            .button("Send", {{190, 20}, {60, 20}})
            .button("Send to all", {{290, 20}, {60, 20}});
    }
};

TEST_F(WholeSearch, ReturnClicksTheFirstTargetAndEndsTheSearch) {
    search("send");
    press(Key::return_);
    EXPECT_EQ(seen(), (Texts{"The Input shown", "moved to 130,30", "left down", "left up", "The Input hidden"}));
}

TEST_F(WholeSearch, TheMarkersLieOverTheMatchingButtonsInTheOrderOfTheWindow) {
    search("send");
    EXPECT_THAT(targets(), ElementsAre("Send later", "Send", "Send to all"));
    const auto& markers = desk.panels.canvas().markers();
    ASSERT_EQ(markers.size(), 3u);
    EXPECT_EQ(markers[0].frame, (PanelRect{{90, 960}, {80, 20}}));
    EXPECT_EQ(markers[1].frame, (PanelRect{{190, 960}, {60, 20}}));
    EXPECT_EQ(markers[2].frame, (PanelRect{{290, 960}, {60, 20}}));
}

TEST_F(WholeSearch, ArrowsMoveThePrimaryTargetAndReturnClicksIt) {
    search("send");
    press(Key::downArrow);
    EXPECT_EQ(primary(), "Send");
    press(Key::tab);
    EXPECT_EQ(primary(), "Send to all");
    press(Key::upArrow);
    EXPECT_EQ(primary(), "Send");
    press(Key::return_);
    EXPECT_EQ(seen(), (Texts{"The Input shown", "moved to 220,30", "left down", "left up", "The Input hidden"}));
}

TEST_F(WholeSearch, EveryKeyThatMovesMoves) {
    search("*");
    const auto afterPressing = [&](Key key, std::uint64_t flags = 0) {
        press(key, flags);
        return primary();
    };
    EXPECT_EQ(afterPressing(Key::end), "Send to all");
    EXPECT_EQ(afterPressing(Key::home), "Archive");
    EXPECT_EQ(afterPressing(Key::downArrow, eventFlag::command), "Send to all");
    EXPECT_EQ(afterPressing(Key::upArrow, eventFlag::command), "Archive");
    EXPECT_EQ(afterPressing(Key::pageDown), "Send");
    EXPECT_EQ(afterPressing(Key::downArrow, eventFlag::control), "Send to all");
    EXPECT_EQ(afterPressing(Key::pageUp), "Send");
    EXPECT_EQ(afterPressing(Key::upArrow, eventFlag::control), "Archive");
    EXPECT_EQ(afterPressing(Key::n, eventFlag::control), "Send later");
    EXPECT_EQ(afterPressing(Key::p, eventFlag::control), "Archive");
    EXPECT_EQ(afterPressing(Key::tab), "Send later");
    EXPECT_EQ(afterPressing(Key::tab, eventFlag::shift), "Archive");
    EXPECT_EQ(desk.panels.input().text(), "*") << "none of them reached the text field";
}

TEST_F(WholeSearch, WithoutCyclingTheLastTargetIsTheEnd) {
    search("send");
    press(Key::end);
    press(Key::downArrow);
    EXPECT_EQ(primary(), "Send to all");
    press(Key::home);
    press(Key::upArrow);
    EXPECT_EQ(primary(), "Send later");
}

TEST_F(WholeSearch, WithCyclingTheFirstFollowsTheLast) {
    desk.userDefaults.set("allowCyclingThroughTargets", true);
    search("send");
    press(Key::upArrow);
    EXPECT_EQ(primary(), "Send to all");
    press(Key::downArrow);
    EXPECT_EQ(primary(), "Send later");
}

TEST_F(WholeSearch, EachFurtherLetterNarrowsTheTargetsAndTheFirstBecomesPrimaryAgain) {
    search("sen");
    press(Key::downArrow);
    EXPECT_EQ(primary(), "Send");
    desk.type("d t");
    EXPECT_THAT(targets(), ElementsAre("Send later", "Send to all"));
    EXPECT_EQ(primary(), "Send later");
    press(Key::delete_);
    press(Key::delete_);
    EXPECT_THAT(targets(), ElementsAre("Send later", "Send", "Send to all"));
}

TEST_F(WholeSearch, ReturnWithAQueryThatMatchesNothingClosesWithoutAClick) {
    search("xyzzy");
    EXPECT_THAT(targets(), IsEmpty());
    EXPECT_EQ(primary(), "none");
    EXPECT_TRUE(desk.panels.canvas().isVisible());
    press(Key::downArrow);
    press(Key::return_);
    EXPECT_EQ(seen(), (Texts{"The Input shown", "The Input hidden"}));
}

TEST_F(WholeSearch, ReturnWithAnEmptyQueryClicksWhereThePointerStands) {
    desk.screens.pointer = {300, 700};
    open();
    press(Key::return_);
    EXPECT_EQ(seen(), (Texts{"The Input shown", "left down", "left up", "The Input hidden"}));
    EXPECT_EQ(desk.events.mouseEvents.front().point, (AxPoint{300, 300}));
}

TEST_F(WholeSearch, DownWithAnEmptyQueryIsConsumedAndMovesNothing) {
    open();
    press(Key::downArrow);
    EXPECT_EQ(primary(), "none");
    EXPECT_THAT(desk.journal({Topic::key}), IsEmpty());
}

TEST_F(WholeSearch, AQueryOfBlanksHasNoTargetsAndReturnDoesNotClickAtThePointer) {
    search("  ");
    EXPECT_THAT(targets(), IsEmpty());
    press(Key::return_);
    EXPECT_EQ(seen(), (Texts{"The Input shown", "The Input hidden"}));
}

TEST_F(WholeSearch, ControlOptionReturnIsTheTextFields) {
    search("send");
    press(Key::return_, eventFlag::control | eventFlag::option);
    EXPECT_TRUE(inputIsShown());
    press(Key::return_, eventFlag::secondaryFn);
    EXPECT_TRUE(inputIsShown());
    EXPECT_EQ(seen(), Texts{"The Input shown"});
}

TEST_F(WholeSearch, AModifierHeldWithReturnStaysOnTheClick) {
    search("send");
    press(Key::return_, eventFlag::command);
    for (const MouseEvent& event : desk.events.mouseEvents) EXPECT_EQ(event.flags, std::nullopt);
    EXPECT_EQ(seen(), (Texts{"The Input shown", "moved to 130,30", "left down", "left up", "The Input hidden"}));
}

TEST_F(WholeSearch, TheActionIsPostedWhileTheInputIsStillUp) {
    search("archive");
    desk.clearJournal();
    press(Key::return_);
    EXPECT_THAT(desk.journal(),
                ElementsAre("moved to 40,30", "left down", "left up", "canvas hidden", "dimming fades to 0",
                            "The Input hidden", "posted TarvixInputDidDisappear"));
}

TEST_F(WholeSearch, APlainRadioButtonIsPressedThroughTheAccessibilityInterface) {
    mail.add({.role = "AXRadioButton", .title = "Weekly digest", .frame = {{10, 60}, {80, 20}}, .children = {}});
    search("weekly");
    press(Key::return_);
    EXPECT_EQ(seen(), (Texts{"The Input shown", "moved to 50,70", "The Input hidden"}));
    EXPECT_EQ(desk.journal({Topic::accessibility}).size(), 1u);
}

TEST_F(WholeSearch, ATabIsClicked) {
    mail.add({.role = "AXRadioButton",
              .title = "Weekly digest",
              .frame = {{10, 60}, {80, 20}},
              .children = {},
              .attributes = {{std::string(ax::subrole), std::string("AXTabButton")}}});
    search("weekly");
    press(Key::return_);
    EXPECT_EQ(seen(), (Texts{"The Input shown", "moved to 50,70", "left down", "left up", "The Input hidden"}));
}

TEST_F(WholeSearch, ALinkIsClickedNearItsLowerLeftCorner) {
    mail.add({.role = "AXLink", .title = "Unsubscribe", .frame = {{10, 60}, {20, 100}}, .children = {}});
    search("unsub");
    press(Key::return_);
    EXPECT_EQ(seen()[1], "moved to 19,151");
}

TEST_F(WholeSearch, ThePointerGoesBackIfTheUserWantsItSo) {
    desk.userDefaults.set("repositionMouseAfterClick", true);
    desk.screens.pointer = {800, 500};
    search("archive");
    press(Key::return_);
    EXPECT_EQ(seen(), (Texts{"The Input shown", "moved to 40,30", "left down", "left up", "moved to 800,500",
                             "The Input hidden"}));
}

TEST_F(WholeSearch, TheScreenReaderHearsEachPrimaryTargetAndTwiceTheOneHalfwayDown) {
    desk.workspace.voiceOver = true;
    search("send");
    desk.clearJournal();
    press(Key::downArrow);
    press(Key::pageDown);
    press(Key::pageUp);
    EXPECT_THAT(desk.journal({Topic::announcement}),
                ElementsAre("announced ' Send ' at 90", "announced ' Send to all ' at 90",
                            "announced ' Send to all ' at 90", "announced ' Send ' at 90"));
}

TEST_F(WholeSearch, TheMilestonesOfASearchAreReached) {
    search("send");
    press(Key::return_);
    using Moment = SimulatedMilestones::Moment;
    EXPECT_THAT(desk.milestones.moments(),
                ElementsAre(Moment(milestone::ready, 0), Moment(milestone::candidatesRead, 4),
                            Moment(milestone::actionPosted, 0)));
}

TEST_F(WholeSearch, OnADvorakLayoutTheKeysFollowWhatTheyType) {
    desk.inputSources.setEnabled({simulatedLayout::dvorak()});
    search("send");
    EXPECT_EQ(desk.panels.input().text(), "send");
    desk.press(37, eventFlag::control);  // the position that types n there
    EXPECT_EQ(primary(), "Send");
}

}  // namespace
}  // namespace tarvix
