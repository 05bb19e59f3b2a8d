#include <gtest/gtest.h>

#include "linux/atspi/Plank.h"

namespace tarvix::atspi {
namespace {

using Edge = PlankItem::Edge;

X11Window dock(AxRect window, AxRect clickable) {
    X11Window made;
    made.client = window;
    made.clickable = clickable;
    return made;
}

std::string nothing(std::string_view) { return {}; }

std::string nameOf(std::string_view id) { return id == "org.gnome.gedit" ? "Text Editor" : ""; }

PlankItem at(double x, double y, Edge edge = Edge::bottom, const char* uri = "file:///a.desktop") {
    return {uri, {x, y}, edge};
}

// As it was measured: a window over the whole width, icons of 48 pixels, tips above them.
TEST(Plank, AnItemReachesHalfWayToTheNextAndOverWhatTakesClicks) {
    const X11Window bottom = dock({{0, 909}, {1920, 140}}, {{838, 989}, {244, 60}});
    const auto row = plankRow({at(930, 983), at(870, 983), at(1050, 983), at(990, 983)}, {bottom}, nothing);
    ASSERT_EQ(row.size(), 4u);
    EXPECT_EQ(row[0].node.frame, (AxRect{{840, 989}, {60, 60}}));
    EXPECT_EQ(row[1].node.frame, (AxRect{{900, 989}, {60, 60}}));
    EXPECT_EQ(row[3].node.frame, (AxRect{{1020, 989}, {60, 60}}));
    for (const PanelItem& item : row) EXPECT_EQ(item.row, PanelRow::dock);
}

TEST(Plank, AtASideItemsStandOverEachOther) {
    const X11Window left = dock({{0, 0}, {140, 1080}}, {{0, 480}, {60, 120}});
    const auto row = plankRow({at(66, 570, Edge::left), at(66, 510, Edge::left)}, {left}, nothing);
    ASSERT_EQ(row.size(), 2u);
    EXPECT_EQ(row[0].node.frame, (AxRect{{0, 480}, {60, 60}}));
    EXPECT_EQ(row[1].node.frame, (AxRect{{0, 540}, {60, 60}}));
}

TEST(Plank, OneAloneIsTheWholeDock) {
    const X11Window bottom = dock({{0, 909}, {1920, 140}}, {{928, 989}, {64, 60}});
    const auto row = plankRow({at(960, 983)}, {bottom}, nothing);
    ASSERT_EQ(row.size(), 1u);
    EXPECT_EQ(row[0].node.frame, bottom.clickable);
}

TEST(Plank, AnItemOfADockThatDoesNotShowIsLeftOut) {
    const X11Window bottom = dock({{0, 909}, {1920, 140}}, {{928, 989}, {64, 60}});
    EXPECT_TRUE(plankRow({at(960, 93, Edge::top)}, {bottom}, nothing).empty());
    EXPECT_TRUE(plankRow({at(960, 983)}, {}, nothing).empty());
    EXPECT_TRUE(plankRow({}, {bottom}, nothing).empty());
}

TEST(Plank, AnItemGoesByTheNameInItsFileElseByTheFilesOwn) {
    const X11Window bottom = dock({{0, 909}, {1920, 140}}, {{838, 989}, {244, 60}});
    const auto row = plankRow({at(870, 983, Edge::bottom, "file:///usr/share/applications/org.gnome.gedit.desktop"),
                               at(930, 983, Edge::bottom, "file:///home/me/My%20Game.desktop")},
                              {bottom}, nameOf);
    ASSERT_EQ(row.size(), 2u);
    EXPECT_EQ(row[0].node.name, "Text Editor");
    EXPECT_EQ(row[0].node.description, "org.gnome.gedit");
    EXPECT_EQ(row[1].node.name, "My Game");
    EXPECT_EQ(row[1].node.description, "");
}

}  // namespace
}  // namespace tarvix::atspi
