#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "linux/atspi/PanelItems.h"

namespace tarvix::atspi {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr AxRect kBar{{0, 1050}, {1920, 30}};

class PanelItems : public ::testing::Test {
protected:
    PanelItems() {
        panel.window.number = 7;
        panel.window.clickable = kBar;
        panel.nodes.emplace_back();
        panel.nodes[0].reference.bus = ":panel";
        panel.nodes[0].role = Role::frame;
        panel.nodes[0].shows = true;
    }

    int add(int parent, Role role, AxRect frame, const char* name = "", const char* description = "") {
        const int index = static_cast<int>(panel.nodes.size());
        Node& node = panel.nodes.emplace_back();
        node.reference = {":panel", "/" + std::to_string(index)};
        node.parent = parent;
        node.role = role;
        node.frame = frame;
        node.name = name;
        node.description = description;
        node.shows = true;
        at(parent).children.push_back(index);
        return index;
    }
    Node& at(int index) { return panel.nodes[static_cast<std::size_t>(index)]; }
    int addHidden(int parent, Role role) {
        const int index = add(parent, role, {});
        at(index).shows = false;
        at(parent).children.pop_back();
        return index;
    }

    void addClient(const char* title, std::optional<AxRect> button, const char* windowClass = "") {
        X11Window client;
        client.number = static_cast<std::uint32_t>(100 + around.clients.size());
        client.title = title;
        client.windowClass = windowClass;
        client.iconGeometry = button;
        around.clients.push_back(client);
    }
    void addEmbedded(AxRect box, const char* title, const char* windowInstance) {
        X11Window icon;
        icon.number = static_cast<std::uint32_t>(200 + panel.embedded.size());
        icon.client = box;
        icon.title = title;
        icon.windowInstance = windowInstance;
        panel.embedded.push_back(icon);
    }
    void setNotifiers(std::vector<NotifierItem> items) {
        around.notifiers = [items = std::move(items)] { return items; };
    }

    std::vector<std::string> names(PanelRow row) const {
        std::vector<std::string> found;
        for (const PanelItem& item : panelItems(panel, around))
            if (item.row == row) found.push_back(item.node.name);
        return found;
    }

    PanelSeen panel;
    PanelSurroundings around;
};

constexpr AxRect boxAt(double x, double width = 30) { return {{x, 1050}, {width, 30}}; }

TEST_F(PanelItems, AreWhatIsOperatedOrReadAndNotWhatHoldsIt) {
    const int plugin = add(0, Role::panel, kBar);
    add(plugin, Role::toggleButton, boxAt(10), "Applications");
    add(plugin, Role::separator, boxAt(40));
    add(plugin, Role::label, boxAt(70), "12:30");
    add(plugin, Role::label, boxAt(100));
    add(plugin, Role::unknown, boxAt(130));
    const int button = add(plugin, Role::pushButton, boxAt(160), "Volume");
    add(button, Role::icon, boxAt(165), "inside");
    add(plugin, Role::pushButton, {{0, 200}, {30, 30}}, "elsewhere");
    EXPECT_THAT(names(PanelRow::tray), ElementsAre("Applications", "12:30", "", "Volume"));
    EXPECT_THAT(names(PanelRow::dock), IsEmpty());
}

TEST_F(PanelItems, ButtonsOfWindowsAreInTheDocksRowAndGoByTheWindow) {
    add(0, Role::toggleButton, boxAt(140, 200), "Fern");
    add(0, Role::toggleButton, boxAt(340, 200));
    add(0, Role::toggleButton, boxAt(540, 200), "Clock");
    addClient("Fern", boxAt(140, 200));
    addClient("Moss", boxAt(340, 200));
    addClient("Old", boxAt(545, 150));  // what another panel has left
    addClient("None", std::nullopt);
    EXPECT_THAT(names(PanelRow::dock), ElementsAre("Fern", "Moss"));
    EXPECT_THAT(names(PanelRow::tray), ElementsAre("Clock"));
}

TEST_F(PanelItems, LaunchersAreInTheDocksRow) {
    around.isApplication = [](const std::string& name) { return name == "Text Editor"; };
    add(0, Role::pushButton, boxAt(10), "Text Editor");
    const int xfce = add(0, Role::filler, boxAt(40, 60));
    add(xfce, Role::pushButton, boxAt(40), "My Own");
    addHidden(xfce, Role::toggleButton);
    const int unasked = add(0, Role::filler, boxAt(70, 30));
    add(unasked, Role::pushButton, boxAt(70), "My Other");
    addHidden(unasked, Role::invalid);
    add(0, Role::pushButton, boxAt(100), "Log Out");
    const int plug = add(0, Role::pushButton, boxAt(130), "Text Editor");
    at(plug).reference.bus = ":another";
    EXPECT_THAT(names(PanelRow::dock), ElementsAre("Text Editor", "My Own", "My Other"));
    EXPECT_THAT(names(PanelRow::tray), ElementsAre("Log Out", "Text Editor"));
}

TEST_F(PanelItems, TheOnlyControlOfANamedPartGoesByThat) {
    const int clock = add(0, Role::panel, boxAt(10), "Sat, 12:30", "Computer Clock");
    add(clock, Role::toggleButton, boxAt(10), "", "Click to view the month");
    const int area = add(0, Role::panel, boxAt(100, 60), "Notification Area");
    add(area, Role::toggleButton, boxAt(100));
    add(area, Role::toggleButton, boxAt(130));
    const auto items = panelItems(panel, around);
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[0].node.name, "Sat, 12:30");
    EXPECT_EQ(items[0].node.description, "Click to view the month. Computer Clock");
    EXPECT_EQ(items[1].node.name, "");
    EXPECT_EQ(items[2].node.name, "");
}

TEST_F(PanelItems, NamelessButtonsGoByTheTraysItems) {
    const int launcher = add(0, Role::filler, boxAt(100, 30));
    add(launcher, Role::pushButton, boxAt(100));
    addHidden(launcher, Role::invalid);
    const int box = add(0, Role::panel, boxAt(1800, 60));
    for (const int button : {add(box, Role::pushButton, boxAt(1800)), addHidden(box, Role::invalid),
                             add(box, Role::pushButton, boxAt(1830))})
        at(button).reference.bus = ":wrapper";
    EXPECT_TRUE(hasNamelessButtons(panel.nodes));
    around.order = TrayOrder{{"willow", "alder", "rowan"}, {"alder"}};
    setNotifiers({{":1", "/", "rowan", "Rowan", "3 berries", false},
                  {":2", "/", "willow", "", "", false},
                  {":3", "/", "alder", "", "", false}});
    EXPECT_THAT(names(PanelRow::tray), ElementsAre("willow", "Rowan"));
    EXPECT_EQ(panelItems(panel, around).back().node.description, "3 berries");
}

TEST_F(PanelItems, AnItemThatAButtonTellsOfNamesNoOther) {
    const int box = add(0, Role::panel, boxAt(1800, 60));
    add(box, Role::pushButton, boxAt(1800), "", "Willow tip");
    const int menu = add(0, Role::panel, boxAt(0));
    add(menu, Role::pushButton, boxAt(1));
    setNotifiers({{":1", "/", "willow", "Willow", "Willow tip", false}});
    EXPECT_THAT(names(PanelRow::tray), ElementsAre("", "")) << "the menu's button stays nameless";
}

TEST_F(PanelItems, WhereThePanelHasNoOrderOneOfManyIsNotNamed) {
    const int menu = add(0, Role::panel, boxAt(0));
    add(menu, Role::pushButton, boxAt(1));
    setNotifiers({{":1", "/", "willow", "", "", false}, {":2", "/", "rowan", "", "", false}});
    EXPECT_THAT(names(PanelRow::tray), ElementsAre(""));
}

TEST_F(PanelItems, AnIconInAWindowOfItsOwnGoesByItsPlugAndByItsWindow) {
    const int plug = add(0, Role::frame, kBar, "Network", "Connected");
    add(plug, Role::icon, {{1700, 1054}, {22, 22}});
    addEmbedded({{1690, 1050}, {60, 30}}, "wrapper-2.0", "wrapper-2.0");
    addEmbedded({{1700, 1054}, {22, 22}}, "Network", "nm-applet");
    addEmbedded({{1724, 1054}, {22, 22}}, "", "toad");
    addEmbedded({{1724, 1400}, {22, 22}}, "beyond", "beyond");
    panel.embedded[2].windowClass = "Toad";
    const auto items = panelItems(panel, around);
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0].node.name, "Network");
    EXPECT_EQ(items[0].node.description, "Connected. nm-applet");
    EXPECT_EQ(items[1].node.name, "Toad");
    EXPECT_EQ(items[1].node.frame, (AxRect{{1724, 1054}, {22, 22}}));
    EXPECT_EQ(items[1].node.role, Role::icon);
}

TEST_F(PanelItems, WithoutATreeTheButtonsOfWindowsAreWhereTheirWindowsSay) {
    panel.nodes.clear();
    addClient("Fern", boxAt(50, 150), "Gedit");
    addClient("Moss", boxAt(200, 150));
    addClient("Moss, too", boxAt(200, 150));  // the two are one button
    addClient("elsewhere", AxRect{{0, 0}, {50, 30}});
    EXPECT_THAT(names(PanelRow::dock), ElementsAre("Fern", "Moss, Moss, too"));
    const auto items = panelItems(panel, around);
    EXPECT_EQ(items[0].node.frame, boxAt(50, 150));
    EXPECT_EQ(items[0].node.description, "Gedit");
}

TEST_F(PanelItems, OneAtThePanelsLeftEdgeGivesUpAColumnToBeNoParkedStatusItem) {
    add(0, Role::toggleButton, boxAt(0, 100), "Applications");
    EXPECT_EQ(panelItems(panel, around)[0].node.frame, boxAt(1, 99));
    addClient("Fern", boxAt(0, 100));
    EXPECT_EQ(panelItems(panel, around)[0].node.frame, boxAt(0, 100)) << "in the dock's row";
}

}  // namespace
}  // namespace tarvix::atspi
