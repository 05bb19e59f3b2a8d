#include <gtest/gtest.h>

#include "linux/atspi/MenuBar.h"

namespace tarvix::atspi {
namespace {

// A window whose only child is a menu bar with one menu.
NodeTree windowWithMenuBar(double height) {
    NodeTree tree(3);
    tree[0].role = Role::frame;
    tree[0].children = {1};
    tree[1].role = Role::menuBar;
    tree[1].parent = 0;
    tree[1].children = {2};
    tree[1].frame = {{0, 0}, {500, height}};
    tree[2].role = Role::menu;
    tree[2].parent = 1;
    for (Node& node : tree) node.shows = true;
    return tree;
}

TEST(MenuBar, IsTheOneThatShows) {
    EXPECT_EQ(menuBarIn(windowWithMenuBar(25), Toolkit::chromium), 1);
    NodeTree hidden = windowWithMenuBar(25);
    hidden[1].shows = false;
    EXPECT_EQ(menuBarIn(hidden, Toolkit::chromium), std::nullopt);
}

TEST(MenuBar, WithoutAnyHeightIsNone) { EXPECT_EQ(menuBarIn(windowWithMenuBar(0), Toolkit::chromium), std::nullopt); }

TEST(MenuBar, WithoutAMenuIsNone) {
    NodeTree tree = windowWithMenuBar(25);
    tree[1].children.clear();
    EXPECT_EQ(menuBarIn(tree, Toolkit::chromium), std::nullopt);
}

TEST(MenuBar, OfAWebPageIsNotItsWindows) {
    NodeTree tree = windowWithMenuBar(25);
    tree[1].inWebContent = true;
    EXPECT_EQ(menuBarIn(tree, Toolkit::chromium), std::nullopt);
}

TEST(MenuBar, AnOpenMenuThatCallsItselfABarIsNone) {
    const NodeTree bar = windowWithMenuBar(25);
    NodeTree tree = {bar[0], bar[0], bar[1], bar[2]};
    tree[1].parent = 0;
    tree[1].children = {2};
    tree[2].parent = 1;
    tree[2].children = {3};
    tree[3].parent = 2;
    EXPECT_EQ(menuBarIn(tree, Toolkit::chromium), std::nullopt);
    tree[1].role = Role::panel;
    EXPECT_EQ(menuBarIn(tree, Toolkit::chromium), 2);
}

TEST(MenuBar, OfAnEmptyTreeThereIsNone) { EXPECT_EQ(menuBarIn({}, Toolkit::chromium), std::nullopt); }

}  // namespace
}  // namespace tarvix::atspi
