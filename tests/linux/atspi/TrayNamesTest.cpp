#include <gtest/gtest.h>

#include "linux/atspi/TrayNames.h"

namespace tarvix::atspi {
namespace {

using Which = std::vector<std::vector<std::size_t>>;

NotifierItem item(const char* id, const char* title = "", bool isPassive = false) {
    return {":1." + std::string(id), "/StatusNotifierItem", id, title, "", isPassive};
}

TEST(TrayNames, AnItemGoesByItsTitleElseByItsId) {
    EXPECT_EQ(item("nm-applet", "Network").name(), "Network");
    EXPECT_EQ(item("nm-applet").name(), "nm-applet");
}

TEST(TrayNames, ButtonsStandInTheOrderThatThePanelKeeps) {
    const TrayOrder order{{"willow", "gone", "rowan", "alder"}, {}};
    EXPECT_EQ(itemsOfButtons({true, true, true}, {item("alder"), item("willow"), item("rowan")}, order),
              (Which{{1}, {2}, {0}}));
}

TEST(TrayNames, AnItemWithoutAKnownIdIsKnownByItsTitle) {
    EXPECT_EQ(itemsOfButtons({true, true}, {item("1", "Rowan"), item("willow")}, TrayOrder{{"willow", "Rowan"}, {}}),
              (Which{{1}, {0}}));
}

TEST(TrayNames, AHiddenItemHasAButtonThatDoesNotShowOrNone) {
    const std::vector<NotifierItem> items{item("alder"), item("willow"), item("rowan")};
    const TrayOrder order{{"willow", "alder", "rowan"}, {"alder"}};
    EXPECT_EQ(itemsOfButtons({true, false, true}, items, order), (Which{{1}, {}, {2}}));
    EXPECT_EQ(itemsOfButtons({true, true}, items, order), (Which{{1}, {2}}));
    EXPECT_EQ(itemsOfButtons({true, true, true}, items, order), (Which{{1}, {0}, {2}})) << "the panel is unfolded";
}

TEST(TrayNames, APassiveItemMayHaveNoButton) {
    EXPECT_EQ(itemsOfButtons({true}, {item("alder", "", true), item("willow")}, TrayOrder{{"willow", "alder"}, {}}),
              (Which{{1}}));
    EXPECT_EQ(itemsOfButtons({true}, {item("alder", "", true), item("willow")}, std::nullopt), (Which{{1}}));
}

TEST(TrayNames, OneButtonAndOneItemNeedNoOrder) {
    EXPECT_EQ(itemsOfButtons({true}, {item("alder")}, std::nullopt), (Which{{0}}));
    EXPECT_EQ(itemsOfButtons({true}, {item("alder")}, TrayOrder{}), (Which{{0}}));
}

// A search for one of them shows all, rather than another one's button alone.
TEST(TrayNames, WhereTheOrderIsNotCertainEachButtonMayBeAny) {
    const std::vector<NotifierItem> two{item("alder"), item("willow")};
    EXPECT_EQ(itemsOfButtons({true, true}, two, std::nullopt), (Which{{0, 1}, {0, 1}}));
    EXPECT_EQ(itemsOfButtons({true, true}, two, TrayOrder{{"alder"}, {}}), (Which{{0, 1}, {0, 1}}));
    EXPECT_EQ(itemsOfButtons({true, false, true}, two, TrayOrder{{"alder"}, {}}), (Which{{0, 1}, {}, {0, 1}}));
    EXPECT_EQ(itemsOfButtons({true}, two, TrayOrder{{"alder", "willow"}, {}}), (Which{{0, 1}})) << "one comes or goes";
}

TEST(TrayNames, TwoOfOneIdAreNotToldApart) {
    EXPECT_EQ(itemsOfButtons({true, true, true}, {item("chat"), item("alder"), item("chat")},
                             TrayOrder{{"alder", "chat"}, {}}),
              (Which{{1}, {0, 2}, {0, 2}}));
}

TEST(TrayNames, WithoutItemsButtonsStayNameless) {
    EXPECT_EQ(itemsOfButtons({true, true}, {}, std::nullopt), (Which{{}, {}}));
    EXPECT_EQ(itemsOfButtons({}, {item("alder")}, std::nullopt), Which{});
}

}  // namespace
}  // namespace tarvix::atspi
