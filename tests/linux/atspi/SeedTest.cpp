#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "linux/atspi/Replies.h"
#include "linux/atspi/Seed.h"
#include "tests/linux/atspi/MessageMaker.h"

namespace tarvix::atspi {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;

constexpr const char* kBus = ":1.7";

struct Item {
    std::string path, parent;
    std::int32_t index = 0, count = 0;
    std::string name = "a name";
};

class SeedTest : public ::testing::Test {
protected:
    Message items(const std::vector<Item>& items) const {
        Message message = make_.open();
        sd_bus_message* m = message.get();
        EXPECT_GE(sd_bus_message_open_container(m, 'a', "((so)(so)(so)iiassusau)"), 0);
        for (const Item& item : items)
            EXPECT_GE(sd_bus_message_append(m, "((so)(so)(so)iiassusau)", kBus, item.path.c_str(), kBus, "/root", kBus,
                                            item.parent.c_str(), item.index, item.count, 2, "org.a11y.atspi.Component",
                                            "org.a11y.atspi.Action", item.name.c_str(), 43U, "a description", 2,
                                            1U << 25U, 1U),
                      0);
        EXPECT_GE(sd_bus_message_close_container(m), 0);
        return MessageMaker::seal(std::move(message));
    }

    static std::vector<std::string> paths(const std::vector<Reference>& references) {
        std::vector<std::string> paths;
        for (const Reference& each : references) paths.push_back(each.path);
        return paths;
    }

    const MessageMaker make_;
};

TEST_F(SeedTest, AnItemHoldsAllFieldsOfItsObject) {
    const Seed seed = readItems(items({{"/a", "/w", 0, 3}}).get());
    const SeedItem& item = seed.at("/a");
    EXPECT_EQ(item.role, Role::pushButton);
    EXPECT_EQ(item.states, (1ULL << 25U) | (1ULL << 32U));
    EXPECT_EQ(item.interfaces, interface::component | interface::action);
    EXPECT_EQ(item.childCount, 3);
    EXPECT_EQ(item.name, "a name");
    EXPECT_EQ(item.description, "a description");
    EXPECT_FALSE(item.hasBox);
}

TEST_F(SeedTest, ChildrenAreInTheOrderOfTheirIndices) {
    const Seed seed =
        readItems(items({{"/c", "/w", 2}, {"/a", "/w", 0}, {"/w", "/root", 0, 3}, {"/b", "/w", 1}}).get());
    EXPECT_THAT(paths(seed.at("/w").children), ElementsAre("/a", "/b", "/c"));
    EXPECT_EQ(seed.at("/w").childCount, 3);
}

TEST_F(SeedTest, ChildrenStayAsTheyCameWhereAnIndexIsMissing) {
    const Seed seed = readItems(items({{"/c", "/w", 2}, {"/a", "/w", -1}, {"/b", "/w", 1}}).get());
    EXPECT_THAT(paths(seed.at("/w").children), ElementsAre("/c", "/a", "/b"));
}

TEST_F(SeedTest, AParentThatTheReplyDoesntHoldHasNoRole) {
    const Seed seed = readItems(items({{"/a", "/w", 0}}).get());
    EXPECT_EQ(seed.at("/w").role, Role::invalid);
}

TEST_F(SeedTest, OverlongNamesAreCut) {
    const Seed seed = readItems(items({{"/a", "/w", 0, 0, std::string(1'000'000, 'x')}}).get());
    EXPECT_THAT(seed.at("/a").name, SizeIs(kLongestName));
}

TEST_F(SeedTest, AWrongReplyHoldsNothing) {
    EXPECT_THAT(readItems(nullptr), IsEmpty());
    EXPECT_THAT(readItems(make_.nothing().get()), IsEmpty());
    EXPECT_THAT(readItems(make_.of("s", "items").get()), IsEmpty());
    // Qt's older shape, which is empty where it is answered at all.
    EXPECT_THAT(readItems(make_.of("a((so)(so)(so)a(so)assusau)", 0).get()), IsEmpty());
}

TEST_F(SeedTest, TheTreeAddsBoxesAttributesAndIdentifiers) {
    Seed seed = readItems(items({{"/a", "/w", 0}, {"/b", "/w", 1}}).get());
    const Message tree = make_.of("a((so)a{sv})", 2,                                                    //
                                  kBus, "/a", 4, "AccessibleId", "s", "send", "Unknown", "as", 1, "x",  //
                                  "Attributes", "a{ss}", 1, "placeholder-text", "To",                   //
                                  "Component.ScreenExtents", "(uuuu)", 4294967286U, 20U, 30U, 40U,      //
                                  kBus, "/stranger", 1, "AccessibleId", "s", "other");
    addTree(tree.get(), seed);
    const SeedItem& a = seed.at("/a");
    EXPECT_EQ(a.identifier, "send");
    EXPECT_THAT(a.attributes, ElementsAre(Pair("placeholder-text", "To")));
    EXPECT_TRUE(a.hasBox);
    EXPECT_EQ(a.box, (RawBox{-10, 20, 30, 40}));
    EXPECT_FALSE(seed.at("/b").hasBox);
    EXPECT_EQ(seed.count("/stranger"), 0U);
}

TEST_F(SeedTest, AnObjectOfTheTreeWithoutABoxHasNone) {
    Seed seed = readItems(items({{"/a", "/w", 0}}).get());
    addTree(make_.of("a((so)a{sv})", 1, kBus, "/a", 1, "AccessibleId", "s", "send").get(), seed);
    EXPECT_TRUE(seed.at("/a").hasBox);
    EXPECT_EQ(seed.at("/a").box, std::nullopt);
}

TEST_F(SeedTest, APropertyOfAWrongTypeIsAbsentAndTheOthersAreRead) {
    Seed seed = readItems(items({{"/a", "/w", 0}, {"/b", "/w", 1}}).get());
    const Message tree = make_.of("a((so)a{sv})", 2,                                                             //
                                  kBus, "/a", 4, "AccessibleId", "i", 7, "Attributes", "s", "none",              //
                                  "Component.ScreenExtents", "(iiii)", 1, 2, 3, 4, "AccessibleId", "s", "late",  //
                                  kBus, "/b", 1, "Component.ScreenExtents", "(uuuu)", 1U, 2U, 3U, 4U);
    addTree(tree.get(), seed);
    EXPECT_EQ(seed.at("/a").identifier, "late");
    EXPECT_EQ(seed.at("/a").box, std::nullopt);
    EXPECT_THAT(seed.at("/a").attributes, IsEmpty());
    EXPECT_EQ(seed.at("/b").box, (RawBox{1, 2, 3, 4}));
}

TEST_F(SeedTest, AWrongTreeAddsNothing) {
    Seed seed = readItems(items({{"/a", "/w", 0}}).get());
    addTree(nullptr, seed);
    addTree(make_.of("a(so)", 1, kBus, "/a").get(), seed);
    EXPECT_FALSE(seed.at("/a").hasBox);
}

}  // namespace
}  // namespace tarvix::atspi
