#include <gtest/gtest.h>

#include <string>

#include "linux/atspi/TitleStrip.h"

namespace tarvix::atspi {
namespace {

class TitleStripTest : public ::testing::Test {
protected:
    TitleStripTest() { add(-1, Role::frame, "Window", {{0, 0}, {800, 600}}); }

    int add(int parent, Role role, std::string name, AxRect frame) {
        const int index = static_cast<int>(tree_.size());
        Node& node = tree_.emplace_back();
        node.role = role;
        node.name = std::move(name);
        node.parent = parent;
        node.frame = frame;
        node.shows = true;
        if (parent >= 0) tree_[static_cast<std::size_t>(parent)].children.push_back(index);
        return index;
    }

    NodeTree tree_;
};

TEST_F(TitleStripTest, TheTitleOfAGroupIsAboveTheFirstOfWhatItHolds) {
    const int group = add(0, Role::panel, "Embedded Design", {{10, 20}, {300, 90}});
    add(group, Role::comboBox, "", {{100, 80}, {150, 22}});
    add(group, Role::pushButton, "", {{100, 48}, {150, 22}});
    EXPECT_EQ(titleStrip(tree_, group), (AxRect{{10, 20}, {300, 28}}));
}

TEST_F(TitleStripTest, TheButtonsOfADockAreBesideItsTitle) {
    const int dock = add(0, Role::frame, "Warnings", {{10, 20}, {300, 90}});
    add(dock, Role::list, "", {{10, 39}, {300, 71}});
    add(dock, Role::pushButton, "Close", {{290, 22}, {13, 15}});
    EXPECT_EQ(titleStrip(tree_, dock), (AxRect{{10, 20}, {300, 19}}));
}

TEST_F(TitleStripTest, WithoutATitleOrRoomForOneThereIsNone) {
    const int untitled = add(0, Role::panel, "", {{10, 20}, {300, 90}});
    const int full = add(0, Role::frame, "Warnings", {{10, 20}, {300, 90}});
    add(full, Role::filler, "", {{10, 20}, {300, 90}});
    EXPECT_EQ(titleStrip(tree_, untitled), std::nullopt);
    EXPECT_EQ(titleStrip(tree_, full), std::nullopt);
    EXPECT_EQ(titleStrip(tree_, 0), std::nullopt) << "the window's own title is not in it";
}

TEST_F(TitleStripTest, WhatDoesNotShowTakesNoRoom) {
    const int group = add(0, Role::panel, "Size", {{10, 20}, {300, 90}});
    tree_[static_cast<std::size_t>(add(group, Role::label, "", {{10, 21}, {30, 10}}))].shows = false;
    EXPECT_EQ(titleStrip(tree_, group), (AxRect{{10, 20}, {300, 90}}));
}

}  // namespace
}  // namespace tarvix::atspi
