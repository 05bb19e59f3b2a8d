// From the tree of a window to the ordered list of what can be searched in it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ax/AXEngine2.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// An element with a frame of its own, so that no two of a test are equal by chance.
SimulatedElement element(const std::string& role, const std::string& title,
                         std::vector<SimulatedElement> children = {}) {
    static double last = 0;
    last = last > 500 ? 1 : last + 1;
    return {.role = role, .title = title, .frame = {{last, last}, {50, 20}}, .children = std::move(children)};
}

SimulatedElement at(AxRect frame, SimulatedElement stated) {
    stated.frame = frame;
    return stated;
}

class WindowWalk : public testing::Test {
protected:
    UIElement window(std::vector<SimulatedElement> children) {
        const UIElement made = desk.accessibility.addWindow(
            pid,
            {.role = "AXWindow", .title = "Window", .frame = {{0, 0}, {800, 600}}, .children = std::move(children)}, 7);
        desk.accessibility.setFocusedWindow(pid, made);
        return made;
    }

    std::vector<std::string> found() {
        std::vector<std::string> titles;
        for (const AccessibilityElement& each : engine.frontmostWindowElements(pid))
            titles.push_back(each.title.value_or("-"));
        return titles;
    }

    std::vector<std::string> foundIn(std::vector<SimulatedElement> children) {
        window(std::move(children));
        return found();
    }

    SimulatedDesktop desk;
    std::int32_t pid = desk.launch("Editor");
    AXEngine2 engine{desk.platform()};
};

TEST_F(WindowWalk, AWindowWithoutChildrenGivesNothing) { EXPECT_THAT(foundIn({}), IsEmpty()); }

TEST_F(WindowWalk, ParentsComeBeforeChildrenAndChildrenInTheirOrder) {
    EXPECT_THAT(foundIn({element("AXCheckBox", "a", {element("AXStaticText", "b"), element("AXStaticText", "c")}),
                         element("AXGroup", "g", {element("AXTextField", "d")}), element("AXImage", "e")}),
                ElementsAre("a", "b", "c", "d", "e"));
}

TEST_F(WindowWalk, StructuralRolesAreNeverKeptAndAlwaysGoneBelow) {
    for (const char* role :
         {"AXColumn", "AXGroup", "AXHeading", "AXList", "AXOpaqueProviderGroup", "AXOutline", "AXRow", "AXScrollArea",
          "AXScrollBar", "AXSplitGroup", "AXSplitter", "AXTable", "AXTabGroup", "AXToolbar", "AXWebArea", "AXWindow"})
        EXPECT_THAT(foundIn({element(role, role, {element("AXStaticText", "inside")})}), ElementsAre("inside")) << role;
}

TEST_F(WindowWalk, EveryOtherRoleIsKept) {
    for (const char* role :
         {"AXCheckBox", "AXMenuBarItem", "AXRadioButton", "AXStaticText", "AXTextField", "AXImage", "AXSlider"})
        EXPECT_THAT(foundIn({element(role, role, {element("AXStaticText", "inside")})}), ElementsAre(role, "inside"));
}

TEST_F(WindowWalk, AButtonWithOneChildIsKeptAndTheChildIsNot) {
    EXPECT_THAT(foundIn({element("AXButton", "button", {element("AXStaticText", "text")})}), ElementsAre("button"));
}

TEST_F(WindowWalk, TwoChildrenStandInForAButton) {
    EXPECT_THAT(
        foundIn({element("AXButton", "button", {element("AXImage", "image"), element("AXStaticText", "text")})}),
        ElementsAre("image", "text"));
}

TEST_F(WindowWalk, ATextAreaWithOneChildIsKeptWithIt) {
    EXPECT_THAT(foundIn({element("AXTextArea", "area", {element("AXLink", "link")})}), ElementsAre("area", "link"));
}

TEST_F(WindowWalk, TwoChildrenStandInForATextArea) {
    EXPECT_THAT(foundIn({element("AXTextArea", "area", {element("AXLink", "one"), element("AXLink", "two")})}),
                ElementsAre("one", "two"));
}

TEST_F(WindowWalk, ALinkIsOneElementWhateverItHolds) {
    EXPECT_THAT(
        foundIn({element("AXLink", "link", {element("AXHeading", "heading"), element("AXStaticText", "text")})}),
        ElementsAre("link"));
}

TEST_F(WindowWalk, AComboBoxHidesItsListAndAPopUpButtonDoesNot) {
    EXPECT_THAT(foundIn({element("AXComboBox", "combo", {element("AXStaticText", "hidden")}),
                         element("AXPopUpButton", "pop-up", {element("AXMenuItem", "item")})}),
                ElementsAre("combo", "pop-up", "item"));
}

TEST_F(WindowWalk, ABrowsersAddressFieldIsNeverKeptButGoneBelow) {
    SimulatedElement field = element("AXTextField", "address", {element("AXButton", "reload")});
    field.attributes["AXIdentifier"] = std::string("WEB_BROWSER_ADDRESS_AND_SEARCH_FIELD");
    EXPECT_THAT(foundIn({field}), ElementsAre("reload"));
}

TEST_F(WindowWalk, AnElementWithoutAnyTextIsKept) {
    window({element("AXImage", "")});
    EXPECT_EQ(engine.frontmostWindowElements(pid).size(), 1U);
}

TEST_F(WindowWalk, WhatIsNotHigherThanOnePixelIsLeftOut) {
    EXPECT_THAT(foundIn({at({{10, 10}, {50, 1.0}}, element("AXStaticText", "line")),
                         at({{10, 30}, {50, 1.5}}, element("AXStaticText", "low"))}),
                ElementsAre("low"));
}

TEST_F(WindowWalk, AGroupOfAnyHeightIsGoneThrough) {
    EXPECT_THAT(foundIn({at({{10, 10}, {50, 0}}, element("AXGroup", "flat", {element("AXButton", "inside")}))}),
                ElementsAre("inside"));
}

TEST_F(WindowWalk, AnUnknownRoleOfNoHeightIsNoGroup) {
    EXPECT_THAT(foundIn({at({{10, 10}, {50, 0}}, element("AXPane", "flat", {element("AXButton", "inside")}))}),
                IsEmpty());
}

TEST_F(WindowWalk, WhatLiesOutsideTheWindowIsLeftOutWithAllInIt) {
    EXPECT_THAT(
        foundIn({at({{900, 10}, {50, 20}}, element("AXGroup", "outside", {element("AXButton", "within the window")})),
                 element("AXButton", "inside")}),
        ElementsAre("inside"));
}

TEST_F(WindowWalk, WhatOnlyTouchesTheWindowsEdgeIsOutsideAndWhatReachesOverItIsNot) {
    EXPECT_THAT(foundIn({at({{800, 10}, {50, 20}}, element("AXButton", "right of it")),
                         at({{10, 600}, {50, 20}}, element("AXButton", "below it")),
                         at({{-50, 10}, {50, 20}}, element("AXButton", "left of it")),
                         at({{10, -20}, {50, 20}}, element("AXButton", "above it")),
                         at({{799, 10}, {50, 20}}, element("AXButton", "over the edge"))}),
                ElementsAre("over the edge"));
}

TEST_F(WindowWalk, AnInnerScrollAreaClipsNothing) {
    EXPECT_THAT(
        foundIn({at({{0, 0}, {100, 100}},
                    element("AXScrollArea", "area", {at({{0, 300}, {50, 20}}, element("AXButton", "further down"))}))}),
        ElementsAre("further down"));
}

TEST_F(WindowWalk, OfTwoElementsWithOneRoleAndFrameTheFirstStays) {
    const AxRect same{{10, 10}, {50, 20}};
    EXPECT_THAT(
        foundIn({element("AXGroup", "", {at(same, element("AXStaticText", "first"))}),
                 element("AXGroup", "",
                         {at(same, element("AXStaticText", "second")), at(same, element("AXImage", "other role"))})}),
        ElementsAre("first", "other role"));
}

TEST_F(WindowWalk, ATableIsWalkedByItsVisibleRows) {
    const UIElement top = window({element("AXTable", "table",
                                          {element("AXRow", "", {element("AXStaticText", "one")}),
                                           element("AXRow", "", {element("AXStaticText", "two")})})});
    const UIElement table = desk.accessibility.child(top, 0);
    desk.accessibility.set(table, ax::visibleRows, std::vector{desk.accessibility.child(table, 1)});
    EXPECT_THAT(found(), ElementsAre("two"));
}

TEST_F(WindowWalk, ATableWithoutVisibleRowsAtPresentIsWalkedByAllRows) {
    const UIElement top =
        window({element("AXOutline", "outline", {element("AXRow", "", {element("AXStaticText", "one")})})});
    desk.accessibility.setStatus(desk.accessibility.child(top, 0), ax::visibleRows, AxStatus::noValue);
    EXPECT_THAT(found(), ElementsAre("one"));
}

TEST_F(WindowWalk, ATableThatDoesntKnowVisibleRowsHasNone) {
    const UIElement top =
        window({element("AXTable", "table", {element("AXRow", "", {element("AXStaticText", "one")})})});
    desk.accessibility.setStatus(desk.accessibility.child(top, 0), ax::visibleRows, AxStatus::attributeUnsupported);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(WindowWalk, AnEmptyListOfVisibleRowsStaysEmpty) {
    const UIElement top =
        window({element("AXTable", "table", {element("AXRow", "", {element("AXStaticText", "one")})})});
    desk.accessibility.set(desk.accessibility.child(top, 0), ax::visibleRows, std::vector<UIElement>());
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(WindowWalk, AListIsWalkedByItsVisibleChildren) {
    const UIElement top =
        window({element("AXList", "list", {element("AXStaticText", "one"), element("AXStaticText", "two")})});
    const UIElement list = desk.accessibility.child(top, 0);
    desk.accessibility.set(list, ax::visibleChildren, std::vector{desk.accessibility.child(list, 0)});
    EXPECT_THAT(found(), ElementsAre("one"));
}

TEST_F(WindowWalk, WithoutVisibleChildrenTheNavigationOrderCounts) {
    const UIElement top =
        window({element("AXGroup", "g", {element("AXStaticText", "one"), element("AXStaticText", "two")})});
    const UIElement group = desk.accessibility.child(top, 0);
    desk.accessibility.set(group, ax::childrenInNavigationOrder,
                           std::vector{desk.accessibility.child(group, 1), desk.accessibility.child(group, 0)});
    desk.accessibility.setStatus(group, ax::visibleChildren, AxStatus::attributeUnsupported);
    EXPECT_THAT(found(), ElementsAre("two", "one"));
    desk.accessibility.set(group, ax::visibleChildren, std::vector<UIElement>());
    EXPECT_THAT(found(), ElementsAre("two", "one"));
}

TEST_F(WindowWalk, VisibleChildrenThatAreNoListAreNone) {
    const UIElement top = window({element("AXGroup", "g", {element("AXStaticText", "one")})});
    const UIElement group = desk.accessibility.child(top, 0);
    desk.accessibility.set(group, ax::visibleChildren, AxValue());
    EXPECT_THAT(found(), IsEmpty());
    desk.accessibility.set(group, ax::visibleChildren, std::string("one"));
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(WindowWalk, AnUnreadableChildEndsItsRowOfSiblingsAndNothingElse) {
    const UIElement top = window({element("AXGroup", "g",
                                          {element("AXButton", "one"), element("AXButton", "two"),
                                           element("AXButton", "three"), element("AXButton", "four")}),
                                  element("AXButton", "behind the group")});
    const UIElement group = desk.accessibility.child(top, 0);
    desk.accessibility.setStatus(desk.accessibility.child(group, 2), ax::role, AxStatus::cannotComplete);
    EXPECT_THAT(found(), ElementsAre("one", "two", "behind the group"));
    EXPECT_EQ(desk.accessibility.readsOf(desk.accessibility.child(group, 3)), 0U);
}

TEST_F(WindowWalk, AChildWhoseFrameCantBeReadEndsItsRowToo) {
    const UIElement top =
        window({element("AXButton", "one"), element("AXButton", "two"), element("AXButton", "three")});
    desk.accessibility.failNthRead(desk.accessibility.child(top, 1), 2, AxStatus::cannotComplete);
    EXPECT_THAT(found(), ElementsAre("one"));
}

TEST_F(WindowWalk, AChildThatCantBeReadInFullGivesNothingAndItsSiblingsGoOn) {
    const UIElement top =
        window({element("AXButton", "one"), element("AXButton", "two"), element("AXButton", "three")});
    desk.accessibility.failNthRead(desk.accessibility.child(top, 1), 3, AxStatus::cannotComplete);
    EXPECT_THAT(found(), ElementsAre("one", "three"));
}

TEST_F(WindowWalk, AnElementWhoseChildrenCantBeReadIsALeaf) {
    const UIElement top = window({element("AXButton", "button", {element("AXImage", "i"), element("AXImage", "j")})});
    const UIElement button = desk.accessibility.child(top, 0);
    desk.accessibility.setStatus(button, ax::visibleChildren, AxStatus::failure);
    desk.accessibility.setStatus(button, ax::childrenInNavigationOrder, AxStatus::failure);
    EXPECT_THAT(found(), ElementsAre("button"));
}

TEST_F(WindowWalk, AnElementThatListsItselfIsNotWalkedAgain) {
    const UIElement top = window({element("AXCheckBox", "box", {element("AXStaticText", "text")})});
    const UIElement box = desk.accessibility.child(top, 0);
    desk.accessibility.set(box, ax::visibleChildren, std::vector{box, desk.accessibility.child(box, 0)});
    EXPECT_THAT(found(), ElementsAre("box", "text"));
}

TEST_F(WindowWalk, APrunedChildCostsTwoReads) {
    const UIElement top = window({at({{900, 10}, {50, 20}}, element("AXButton", "outside"))});
    desk.accessibility.forgetReads();
    found();
    EXPECT_EQ(desk.accessibility.readsOf(desk.accessibility.child(top, 0)), 2U);
}

TEST_F(WindowWalk, AWindowThatCantBeReadGivesNothing) {
    const UIElement top = window({element("AXButton", "one")});
    desk.accessibility.failReads(top, AxStatus::cannotComplete);
    EXPECT_THAT(found(), IsEmpty());
    desk.accessibility.setStatus(desk.accessibility.application(pid), ax::focusedWindow, AxStatus::failure);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(WindowWalk, AnUnknownProcessHasNothingToSearch) { EXPECT_TRUE(engine.frontmostWindowElements(-1).empty()); }

// The choice of the root.

TEST_F(WindowWalk, InOurOwnApplicationTheMainWindowIsWalked) {
    const UIElement focused = window({element("AXButton", "in the focused window")});
    const UIElement main = window({element("AXButton", "in the main window")});
    desk.accessibility.setFocusedWindow(pid, focused);
    desk.accessibility.setMainWindow(pid, main);
    EXPECT_THAT(found(), ElementsAre("in the focused window"));
    const std::int32_t ours = desk.launch("Tarvix", desk.workspace.ownBundleIdentifier());
    desk.activate(ours);
    EXPECT_THAT(found(), ElementsAre("in the main window"));
}

TEST_F(WindowWalk, AFileManagersWindowWithoutATitleIsItsDesktopAndGivesNothing) {
    const UIElement top = window({element("AXButton", "one")});
    desk.activate(desk.launch("Files", "com.apple.finder"));
    EXPECT_THAT(found(), ElementsAre("one"));
    desk.accessibility.set(top, ax::title, std::string());
    EXPECT_THAT(found(), ElementsAre("one"));  // an empty title is one
    desk.accessibility.set(top, ax::title, AxValue());
    EXPECT_THAT(found(), IsEmpty());
    desk.accessibility.setStatus(top, ax::title, AxStatus::noValue);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(WindowWalk, WithNoFrontmostApplicationTheFocusedWindowIsWalked) {
    window({element("AXButton", "one")});
    desk.activate(std::nullopt);
    EXPECT_THAT(found(), ElementsAre("one"));
}

TEST_F(WindowWalk, OneWalkReadsAheadOnce) {
    window({element("AXButton", "one")});
    found();
    EXPECT_EQ(desk.accessibility.readsAhead(), 1U);
}

}  // namespace
}  // namespace tarvix
