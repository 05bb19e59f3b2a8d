#include <gtest/gtest.h>

#include "linux/atspi/Popups.h"

namespace tarvix::atspi {
namespace {

constexpr AxRect kWindow{{100, 100}, {200, 50}};
// Opens below the window's upper edge and goes on below its lower one.
constexpr AxRect kMenu{{100, 125}, {80, 90}};

Node node(int parent, Role role, AxRect frame) {
    Node made;
    made.parent = parent;
    made.role = role;
    made.frame = frame;
    made.shows = true;
    return made;
}

enum : std::size_t { window, panel, button, hidden, menu, first, last };

// A window with a button, another one that is scrolled out of it to where the menu is, and an open menu.
NodeTree tree() {
    NodeTree nodes;
    nodes.push_back(node(-1, Role::frame, kWindow));
    nodes.push_back(node(window, Role::panel, kWindow));
    nodes.push_back(node(panel, Role::pushButton, {{100, 110}, {60, 20}}));
    nodes.push_back(node(panel, Role::pushButton, {{100, 170}, {60, 20}}));
    nodes.push_back(node(window, Role::window, kMenu));
    nodes.push_back(node(menu, Role::menuItem, {{100, 125}, {80, 20}}));
    nodes.push_back(node(menu, Role::menuItem, {{100, 190}, {80, 20}}));
    return nodes;
}

TEST(Popups, AMenuThatGoesBeyondItsWindowHangsOut) {
    EXPECT_TRUE(hangsOut(tree(), Toolkit::gtk3, kWindow));
    EXPECT_FALSE(hangsOut(tree(), Toolkit::gtk3, {{0, 0}, {500, 500}}));
}

TEST(Popups, WhatIsScrolledOutOfAWindowDoesNotHangOut) {
    NodeTree nodes = tree();
    for (const std::size_t each : {std::size_t(menu), std::size_t(first), std::size_t(last)}) nodes[each].shows = false;
    EXPECT_FALSE(hangsOut(nodes, Toolkit::gtk3, kWindow));
}

TEST(Popups, AMenuBarsMenuThatDoesNotFitIntoTheWindowIsNoPopup) {
    NodeTree nodes = tree();
    nodes.resize(3);
    nodes[panel].role = Role::menuBar;
    nodes[button].role = Role::menu;
    nodes[button].inMenuBar = true;
    nodes[button].frame = {{400, 100}, {40, 20}};
    EXPECT_FALSE(hangsOut(nodes, Toolkit::gtk3, kWindow));
}

TEST(Popups, TheWalkIsBoundedByTheWindowAndItsMenuTogether) {
    NodeTree nodes = tree();
    EXPECT_EQ(letHangOut(nodes, Toolkit::gtk3, kWindow, {kMenu}), (AxRect{{100, 100}, {200, 115}}));
    EXPECT_TRUE(nodes[first].shows && nodes[last].shows && nodes[button].shows && nodes[panel].shows);
    EXPECT_FALSE(nodes[hidden].shows) << "it would be within these bounds";
}

TEST(Popups, WhereNoWindowIsSeenNothingHangsOut) {
    NodeTree nodes = tree();
    EXPECT_EQ(letHangOut(nodes, Toolkit::gtk3, kWindow, {{{600, 600}, {10, 10}}}), kWindow);
    EXPECT_TRUE(nodes[first].shows);
    EXPECT_FALSE(nodes[last].shows);
}

TEST(Popups, AListOfAComboBoxHangsOutWhileItIsOpen) {
    NodeTree nodes = tree();
    nodes[menu].role = Role::list;
    nodes[menu].parent = button;
    nodes[button].role = Role::comboBox;
    EXPECT_FALSE(hangsOut(nodes, Toolkit::qt, kWindow));
    nodes[button].states = 1ULL << static_cast<unsigned>(State::expanded);
    EXPECT_TRUE(hangsOut(nodes, Toolkit::qt, kWindow));
}

TEST(Popups, APopoverIsKnownByItsNameInGtk4Alone) {
    Node popover = node(0, Role::filler, kMenu);
    popover.name = "GtkPopoverMenu";
    EXPECT_TRUE(isPopover(Toolkit::gtk4, popover));
    EXPECT_FALSE(isPopover(Toolkit::gtk3, popover));
    popover.name = "GtkBox";
    EXPECT_FALSE(isPopover(Toolkit::gtk4, popover));
}

}  // namespace
}  // namespace tarvix::atspi
