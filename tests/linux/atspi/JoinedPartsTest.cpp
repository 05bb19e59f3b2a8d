#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "linux/atspi/JoinedParts.h"
#include "linux/atspi/Translation.h"

namespace tarvix::atspi {
namespace {

using ::testing::IsEmpty;

class JoinedPartsTest : public ::testing::Test {
protected:
    JoinedPartsTest() { add(-1, Role::frame); }

    int add(int parent, Role role, std::string name = {}) {
        const int index = static_cast<int>(tree_.size());
        Node& node = tree_.emplace_back();
        node.role = role;
        node.name = std::move(name);
        node.parent = parent;
        node.shows = true;
        if (parent >= 0) tree_[static_cast<std::size_t>(parent)].children.push_back(index);
        return index;
    }

    const Node& at(int index) const { return tree_[static_cast<std::size_t>(index)]; }
    AxValue attribute(int index, std::string_view name) const { return translate(at(index), name).value(); }

    NodeTree tree_;
};

TEST_F(JoinedPartsTest, WhatIsWrittenOnAButtonIsItsTitleAndItsOtherNameItsDescription) {
    const int button = add(0, Role::pushButton, "Square [Ctrl+2]");
    const int label = add(add(button, Role::panel), Role::label, "x2");
    joinParts(tree_, Toolkit::gtk4);
    EXPECT_EQ(attribute(button, ax::title), AxValue(std::string("x2")));
    EXPECT_EQ(attribute(button, ax::description), AxValue(std::string("Square [Ctrl+2]")));
    EXPECT_FALSE(at(label).shows);
}

TEST_F(JoinedPartsTest, ANameThatSaysWhatIsWrittenIsEnough) {
    const int item = add(0, Role::menuItem, "Save as...");
    add(item, Role::label, "Save");
    joinParts(tree_, Toolkit::gtk4);
    EXPECT_EQ(attribute(item, ax::title), AxValue(std::string("Save as...")));
    EXPECT_EQ(attribute(item, ax::description), AxValue());
}

TEST_F(JoinedPartsTest, SeveralLabelsAreOneTextInTheirOrder) {
    const int button = add(0, Role::pushButton);
    const int box = add(button, Role::filler);
    add(box, Role::label, "Sans Regular");
    add(box, Role::image);
    add(box, Role::label, "12");
    joinParts(tree_, Toolkit::gtk4);
    EXPECT_EQ(attribute(button, ax::title), AxValue(std::string("Sans Regular 12")));
}

TEST_F(JoinedPartsTest, AControlThatHoldsAnotherKeepsAllItsParts) {
    const int button = add(0, Role::toggleButton, "Account");
    const int label = add(button, Role::label, "Rose");
    const int inner = add(button, Role::pushButton, "Sign out");
    joinParts(tree_, Toolkit::gtk4);
    EXPECT_TRUE(at(label).shows);
    EXPECT_TRUE(at(inner).shows);
    EXPECT_THAT(at(button).text, IsEmpty());
}

TEST_F(JoinedPartsTest, AButtonThatIsAllOfAMenuButtonIsOneWithIt) {
    const int menu = add(0, Role::pushButton, "GtkMenuButton");
    const int inner = add(add(menu, Role::filler), Role::pushButton, "Basic");
    add(inner, Role::label, "Basic");
    joinParts(tree_, Toolkit::gtk4);
    EXPECT_EQ(attribute(menu, ax::title), AxValue(std::string("Basic")));
    EXPECT_FALSE(at(inner).shows);
}

TEST_F(JoinedPartsTest, AComboBoxShowsWhatIsWrittenOnItsButton) {
    const int combo = add(0, Role::comboBox, "GtkDropDown");
    const int inner = add(combo, Role::toggleButton);
    add(inner, Role::label, "Blue");
    joinParts(tree_, Toolkit::gtk4);
    EXPECT_EQ(attribute(combo, ax::value), AxValue(std::string("Blue")));
    EXPECT_FALSE(at(inner).shows);
}

TEST_F(JoinedPartsTest, AComboBoxWithAnEntryKeepsItsButton) {
    const int combo = add(0, Role::comboBox);
    const int entry = add(combo, Role::text);
    const int inner = add(combo, Role::pushButton);
    joinParts(tree_, Toolkit::gtk4);
    EXPECT_TRUE(at(entry).shows);
    EXPECT_TRUE(at(inner).shows);
}

TEST_F(JoinedPartsTest, ATabOfGtk4SaysWhatIsWrittenOnItAndKeepsItsLabel) {
    const int tab = add(0, Role::pageTab, "Page _1");
    const int label = add(tab, Role::label, "Page 1");
    joinParts(tree_, Toolkit::gtk4);
    EXPECT_EQ(attribute(tab, ax::title), AxValue(std::string("Page 1")));
    EXPECT_TRUE(at(label).shows);
}

TEST_F(JoinedPartsTest, ThePageOfATabInGtk3IsNotItsTitle) {
    const int tab = add(0, Role::pageTab, "Seeds");
    const int label = add(tab, Role::label, "None yet");
    joinParts(tree_, Toolkit::gtk3);
    EXPECT_EQ(attribute(tab, ax::title), AxValue(std::string("Seeds")));
    EXPECT_TRUE(at(label).shows);
}

TEST_F(JoinedPartsTest, HiddenLabelsSayNothing) {
    const int button = add(0, Role::pushButton, "Play");
    tree_[static_cast<std::size_t>(add(button, Role::label, "Pause"))].shows = false;
    joinParts(tree_, Toolkit::gtk4);
    EXPECT_EQ(attribute(button, ax::title), AxValue(std::string("Play")));
}

TEST_F(JoinedPartsTest, AButtonOnAPageIsLeftToThePage) {
    const int button = add(0, Role::pushButton, "Close");
    const int label = add(button, Role::staticText, "x");
    for (const int each : {button, label}) tree_[static_cast<std::size_t>(each)].inWebContent = true;
    joinParts(tree_, Toolkit::gtk4);
    EXPECT_TRUE(at(label).shows);
    EXPECT_EQ(attribute(button, ax::title), AxValue(std::string("Close")));
}

TEST_F(JoinedPartsTest, ACellOfCellsIsAGroupOfThem) {
    const int cell = add(0, Role::tableCell);
    const int text = add(cell, Role::tableCell, "home");
    const int plain = add(0, Role::tableCell, "alone");
    joinParts(tree_, Toolkit::gtk4);
    EXPECT_EQ(axRole(at(cell)), "AXGroup");
    EXPECT_EQ(axRole(at(text)), "AXCell");
    EXPECT_EQ(axRole(at(plain)), "AXCell");
}

}  // namespace
}  // namespace tarvix::atspi
