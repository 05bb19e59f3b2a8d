// Where a click goes, and what is posted for it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/Pointer.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Role = AccessibilityElementRole;

AccessibilityElement element(Role role, AxRect frame, std::optional<std::string> subrole = std::nullopt) {
    AccessibilityElement made;
    made.role = role;
    made.position = frame.origin;
    made.size = frame.size;
    made.subrole = std::move(subrole);
    return made;
}

TEST(ClickPoint, OfALinkIsNearItsLowerLeftCorner) {
    EXPECT_EQ(clickPoint(element(Role::link, {{10, 10}, {20, 100}})), (AxPoint{19, 101}));
}

TEST(ClickPoint, OfALinkThatIsLowerThanNineLiesAboveIt) {
    EXPECT_EQ(clickPoint(element(Role::link, {{10, 10}, {20, 4}})), (AxPoint{19, 5}));
}

TEST(ClickPoint, OfAnythingElseIsItsCentre) {
    EXPECT_EQ(clickPoint(element(Role::button, {{10, 10}, {25, 101}})), (AxPoint{22.5, 60.5}));
}

TEST(Press, IsForARadioButtonThatIsNoTab) {
    EXPECT_TRUE(isPressed(element(Role::radioButton, {})));
    EXPECT_TRUE(isPressed(element(Role::radioButton, {}, "")));
    EXPECT_FALSE(isPressed(element(Role::radioButton, {}, "AXTabButton")));
    EXPECT_FALSE(isPressed(element(Role::button, {})));
    EXPECT_FALSE(isPressed(element(Role::checkBox, {})));
}

class PointerTest : public testing::Test {
protected:
    SimulatedDesktop desk;
    Pointer pointer{desk.platform()};
};

TEST_F(PointerTest, ThePositionIsFlippedByTheFirstScreensHeight) {
    desk.screens.screens = {{{0, 0}, {1600, 1000}}, {{1600, 200}, {800, 800}}};
    desk.screens.pointer = {1700, 900};
    EXPECT_EQ(pointer.currentMousePosition(), (AxPoint{1700, 100}));
    desk.screens.setOnly(std::nullopt);
    EXPECT_EQ(pointer.currentMousePosition(), std::nullopt);
}

TEST_F(PointerTest, ALeftClickIsTwoEventsThatLeaveTheModifiersAlone) {
    pointer.postClick(MouseButton::left, {90, 20});
    EXPECT_THAT(desk.events.mouseEvents,
                ElementsAre(MouseEvent{.type = MouseEventType::leftMouseDown, .point = {90, 20}, .clickState = 1},
                            MouseEvent{.type = MouseEventType::leftMouseUp, .point = {90, 20}, .clickState = 1}));
}

TEST_F(PointerTest, ARightClickHasItsOwnTypesAndButton) {
    pointer.postClick(MouseButton::right, {90, 20});
    EXPECT_THAT(
        desk.events.mouseEvents,
        ElementsAre(MouseEvent{.type = MouseEventType::rightMouseDown, .point = {90, 20}, .button = 1, .clickState = 1},
                    MouseEvent{.type = MouseEventType::rightMouseUp, .point = {90, 20}, .button = 1, .clickState = 1}));
}

TEST_F(PointerTest, ADoubleClickIsAMoveAndTwoClicksWithoutAnyModifier) {
    pointer.postDoubleClick(MouseButton::left, {90, 20});
    const MouseEvent first{.type = MouseEventType::leftMouseDown, .point = {90, 20}, .clickState = 1, .flags = 0};
    std::vector<MouseEvent> events = {
        {.type = MouseEventType::mouseMoved, .point = {90, 20}}, first, first, first, first};
    events[2].type = events[4].type = MouseEventType::leftMouseUp;
    events[3].clickState = events[4].clickState = 2;
    EXPECT_EQ(desk.events.mouseEvents, events);
}

TEST_F(PointerTest, ARightDoubleClickHasTheOtherButton) {
    pointer.postDoubleClick(MouseButton::right, {90, 20});
    EXPECT_THAT(desk.journal({Topic::mouse}),
                ElementsAre("moved to 90,20", "right down, flags 0", "right up, flags 0",
                            "right down, click 2, flags 0", "right up, click 2, flags 0"));
    for (std::size_t i = 1; i < desk.events.mouseEvents.size(); ++i) EXPECT_EQ(desk.events.mouseEvents[i].button, 1);
}

TEST_F(PointerTest, OfADoubleClickEachEventThatCannotBeMadeIsLeftOut) {
    desk.faults.failNth("postMouse", 3);
    pointer.postDoubleClick(MouseButton::left, {90, 20});
    EXPECT_THAT(desk.journal({Topic::mouse}), ElementsAre("moved to 90,20", "left down, flags 0",
                                                          "left down, click 2, flags 0", "left up, click 2, flags 0"));
}

TEST_F(PointerTest, AMoveHasNoFurtherFields) {
    pointer.postMove({90, 20});
    EXPECT_THAT(desk.events.mouseEvents,
                ElementsAre(MouseEvent{.type = MouseEventType::mouseMoved, .point = {90, 20}}));
}

TEST_F(PointerTest, AnEventThatCannotBeMadeIsLeftOutAndTheRestGoesOn) {
    desk.faults.failNth("postMouse", 1);
    pointer.postClick(MouseButton::left, {90, 20});
    EXPECT_THAT(desk.journal({Topic::mouse}), ElementsAre("left up at 90,20"));
}

TEST_F(PointerTest, PressingPerformsTheElementsActionAndPostsNothing) {
    desk.window("Mail").add(
        {.role = "AXRadioButton", .title = "Weekly", .frame = {{10, 10}, {80, 20}}, .children = {}});
    pointer.pressAt({50, 20});
    EXPECT_THAT(desk.journal({Topic::accessibility}), ElementsAre(HasSubstr("AXPress on ")));
    EXPECT_THAT(desk.journal({Topic::mouse}), IsEmpty());
}

TEST_F(PointerTest, ARefusedPressGoesUnnoticed) {
    desk.window("Mail").add(
        {.role = "AXRadioButton", .title = "Weekly", .frame = {{10, 10}, {80, 20}}, .children = {}});
    desk.faults.fail("perform");
    pointer.pressAt({50, 20});
    EXPECT_THAT(desk.journal({Topic::mouse}), IsEmpty());
}

TEST_F(PointerTest, WhereThereIsNoElementToPressALeftClickIsPosted) {
    pointer.pressAt({50, 20});
    EXPECT_THAT(desk.journal({Topic::mouse}), ElementsAre("left down at 50,20", "left up"));
}

TEST_F(PointerTest, ARadioButtonWhereNoElementIsFoundGetsALeftClickEvenWhenTheRightOneIsAskedFor) {
    pointer.act(element(Role::radioButton, {}), MouseButton::right, {50, 20});
    EXPECT_THAT(desk.journal({Topic::mouse}), ElementsAre("left down at 50,20", "left up"));
}

TEST_F(PointerTest, ATabIsClickedWithTheButtonThatIsAskedFor) {
    pointer.act(element(Role::radioButton, {}, "AXTabButton"), MouseButton::right, {50, 20});
    EXPECT_THAT(desk.journal({Topic::mouse}), ElementsAre("right down at 50,20", "right up"));
}

TEST_F(PointerTest, WithNoElementItIsAClick) {
    pointer.act(std::nullopt, MouseButton::right, {50, 20});
    EXPECT_THAT(desk.journal({Topic::mouse}), ElementsAre("right down at 50,20", "right up"));
}

}  // namespace
}  // namespace tarvix
