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
    EXPECT_EQ(menuBarIn(windowWithMenuBar(25)), 1);
    NodeTree hidden = windowWithMenuBar(25);
    hidden[1].shows = false;
    EXPECT_EQ(menuBarIn(hidden), std::nullopt);
}

TEST(MenuBar, WithoutAnyHeightIsNone) { EXPECT_EQ(menuBarIn(windowWithMenuBar(0)), std::nullopt); }

TEST(MenuBar, WithoutAMenuIsNone) {
    NodeTree tree = windowWithMenuBar(25);
    tree[1].children.clear();
    EXPECT_EQ(menuBarIn(tree), std::nullopt);
}

TEST(MenuBar, OfAWebPageIsNotItsWindows) {
    NodeTree tree = windowWithMenuBar(25);
    tree[1].inWebContent = true;
    EXPECT_EQ(menuBarIn(tree), std::nullopt);
}

TEST(MenuBar, OfAnEmptyTreeThereIsNone) { EXPECT_EQ(menuBarIn({}), std::nullopt); }

}  // namespace
}  // namespace tarvix::atspi
