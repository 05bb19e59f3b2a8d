#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "linux/atspi/Replies.h"
#include "tests/linux/atspi/MessageMaker.h"

namespace tarvix::atspi {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class Replies : public ::testing::Test {
protected:
    const MessageMaker make_;
};

TEST_F(Replies, ATextIsCutAtAWholeCharacter) {
    EXPECT_EQ(bounded("abcdef", 6), "abcdef");
    EXPECT_EQ(bounded("abcdefg", 6), "abcdef");
    EXPECT_EQ(bounded("abcdeé", 6), "abcde");  // two bytes, the second beyond
    EXPECT_EQ(bounded("abcd€", 6), "abcd");    // three, the last beyond
    EXPECT_EQ(bounded("abc😀", 6), "abc");      // four
    EXPECT_EQ(bounded("ab😀", 6), "ab😀");       // ends exactly there
    EXPECT_EQ(bounded("ab😀c", 6), "ab😀");      // and goes on
    EXPECT_EQ(bounded("", 6), "");
}

TEST_F(Replies, AnOverlongTextIsCut) {
    std::string longText = "x";
    while (longText.size() < 10'000'000) longText += "é";
    const std::optional<std::string> read = readText(make_.of("s", longText.c_str()).get(), kLongestName);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->size(), kLongestName - 1);  // 1 and two for each, which doesn't come out even
    EXPECT_EQ(*read, longText.substr(0, kLongestName - 1));
}

TEST_F(Replies, StatesAreTwoWords) {
    EXPECT_EQ(readStates(make_.of("au", 2, 1U << 25U, 1U).get()), (1ULL << 25U) | (1ULL << 32U));
    EXPECT_EQ(readStates(make_.of("au", 1, 1U << 25U).get()), std::nullopt);
    EXPECT_EQ(readStates(make_.of("au", 0).get()), std::nullopt);
    EXPECT_EQ(readStates(make_.of("au", 3, 7U, 8U, 9U).get()), 7ULL | 8ULL << 32U);
    EXPECT_EQ(readStates(make_.of("u", 1U).get()), std::nullopt);
    EXPECT_EQ(readStates(make_.of("as", 1, "showing").get()), std::nullopt);
}

TEST_F(Replies, AWrongTypeIsAbsent) {
    const Message text = make_.of("s", "text"), number = make_.of("u", 7U), empty = make_.nothing();
    for (sd_bus_message* each : {text.get(), empty.get(), static_cast<sd_bus_message*>(nullptr)}) {
        EXPECT_EQ(readStates(each), std::nullopt);
        EXPECT_EQ(readUnsigned(each), std::nullopt);
        EXPECT_EQ(readInteger(each), std::nullopt);
        EXPECT_EQ(readBox(each), std::nullopt);
        EXPECT_EQ(readReference(each), std::nullopt);
        EXPECT_THAT(readReferences(each), IsEmpty());
        EXPECT_EQ(readInterfaces(each), 0U);
        EXPECT_THAT(readAttributes(each), IsEmpty());
        EXPECT_EQ(readVariantText(each), std::nullopt);
        EXPECT_EQ(readVariantDouble(each), std::nullopt);
        EXPECT_EQ(readVariantInteger(each), std::nullopt);
    }
    EXPECT_EQ(readText(number.get(), 10), std::nullopt);
    EXPECT_EQ(readText(empty.get(), 10), std::nullopt);
    EXPECT_EQ(readText(nullptr, 10), std::nullopt);
}

TEST_F(Replies, ARightTypeIsRead) {
    EXPECT_EQ(readUnsigned(make_.of("u", 43U).get()), 43U);
    EXPECT_EQ(readInteger(make_.of("i", -1).get()), -1);
    EXPECT_EQ(readBox(make_.of("(iiii)", -1, 2, 3, 4).get()), (RawBox{-1, 2, 3, 4}));
    EXPECT_EQ(readBox(make_.of("(iii)", 1, 2, 3).get()), std::nullopt);
    EXPECT_EQ(readVariantText(make_.of("v", "s", "Send").get()), "Send");
    EXPECT_EQ(readVariantText(make_.of("v", "d", 0.5).get()), std::nullopt);
    EXPECT_EQ(readVariantDouble(make_.of("v", "d", 0.5).get()), 0.5);
    EXPECT_EQ(readVariantDouble(make_.of("v", "i", 1).get()), std::nullopt);
    EXPECT_EQ(readVariantInteger(make_.of("v", "i", 70007).get()), 70007);
    EXPECT_EQ(readVariantInteger(make_.of("v", "u", 70007U).get()), std::nullopt);
}

TEST_F(Replies, TheNullObjectIsNone) {
    EXPECT_EQ(readReference(make_.of("(so)", ":1.7", "/org/a11y/atspi/null").get()), std::nullopt);
    EXPECT_EQ(readReference(make_.of("(so)", ":1.7", "/org/a11y/atspi/accessible/3").get()),
              (Reference{":1.7", "/org/a11y/atspi/accessible/3"}));
    EXPECT_THAT(readReferences(make_.of("a(so)", 3, ":1.7", "/a", ":1.7", "/org/a11y/atspi/null", ":1.8", "/b").get()),
                ElementsAre(Reference{":1.7", "/a"}, Reference{":1.8", "/b"}));
}

TEST_F(Replies, NoMoreChildrenAreReadThanAnythingHas) {
    Message message = make_.open();
    ASSERT_GE(sd_bus_message_open_container(message.get(), 'a', "(so)"), 0);
    for (std::size_t i = 0; i < kMostChildren + 10; ++i)
        ASSERT_GE(sd_bus_message_append(message.get(), "(so)", ":1.7", "/a"), 0);
    ASSERT_GE(sd_bus_message_close_container(message.get()), 0);
    EXPECT_EQ(readReferences(MessageMaker::seal(std::move(message)).get()).size(), kMostChildren);
}

TEST_F(Replies, InterfacesAreKnownByTheirLastPart) {
    EXPECT_EQ(readInterfaces(make_
                                 .of("as", 4, "org.a11y.atspi.Accessible", "org.a11y.atspi.Action",
                                     "org.a11y.atspi.Component", "org.a11y.atspi.Table")
                                 .get()),
              interface::action | interface::component | interface::table);
    EXPECT_EQ(readInterfaces(make_.of("as", 2, "Action", "org.a11y.atspi.").get()), 0U);
    EXPECT_EQ(readInterfaces(make_.of("as", 0).get()), 0U);
}

TEST_F(Replies, AttributesOfUseAreKept) {
    EXPECT_THAT(readAttributes(make_.of("a{ss}", 3, "id", "send", "text-indent", "0px", "placeholder", "To").get()),
                ElementsAre(Pair("id", "send"), Pair("placeholder", "To")));
}

TEST_F(Replies, AllPropertiesGoIntoTheirFields) {
    const Message reply = make_.of("a{sv}", 7, "Locale", "s", "de", "Name", "s", "Send", "Description", "s", "Sends it",
                                   "AccessibleId", "s", "send-button", "ChildCount", "i", 3, "Parent", "(so)", ":1.7",
                                   "/org/a11y/atspi/accessible/1", "Attributes", "a{ss}", 1, "id", "x");
    Node node;
    readAllProperties(reply.get(), node);
    EXPECT_EQ(node.name, "Send");
    EXPECT_EQ(node.description, "Sends it");
    EXPECT_EQ(node.identifier, "send-button");
    EXPECT_EQ(node.childCount, 3);
    EXPECT_THAT(node.attributes, ElementsAre(Pair("id", "x")));
}

TEST_F(Replies, APropertyOfAWrongTypeIsAbsentAndTheOthersAreRead) {
    const Message reply = make_.of("a{sv}", 5, "Name", "i", 7, "ChildCount", "u", 4U, "Attributes", "as", 1, "id",
                                   "Description", "s", "Sends it", "AccessibleId", "s", "send-button");
    Node node;
    readAllProperties(reply.get(), node);
    EXPECT_EQ(node.name, "");
    EXPECT_EQ(node.childCount, 0);
    EXPECT_THAT(node.attributes, IsEmpty());
    EXPECT_EQ(node.description, "Sends it");
    EXPECT_EQ(node.identifier, "send-button");
}

}  // namespace
}  // namespace tarvix::atspi
