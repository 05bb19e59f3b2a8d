// Which text of an element is copied.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/Copying.h"
#include "simulated/SimulatedPasteboard.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using Role = AccessibilityElementRole;
using Text = std::optional<std::string>;

constexpr const char* kUntouched = "from before";

struct Texts {
    Text title = {}, label = {}, value = {}, url = {};
};

AccessibilityElement element(Role role, const Texts& texts) {
    AccessibilityElement made;
    made.role = role;
    made.title = texts.title;
    made.label = texts.label;
    made.value = texts.value;
    if (texts.url) made.url = Url{*texts.url};
    return made;
}

class CopyingTest : public testing::Test {
protected:
    Text textOf(Role role, const Texts& texts) { return after(copyText, role, texts); }
    Text metadataOf(Role role, const Texts& texts) { return after(copyMetadata, role, texts); }

private:
    Text after(void (*copies)(const AccessibilityElement&, Pasteboard&), Role role, const Texts& texts) {
        pasteboard_.text = kUntouched;
        copies(element(role, texts), pasteboard_);
        return pasteboard_.text;
    }

    Journal journal_;
    SimulatedPasteboard pasteboard_{journal_};
};

TEST(Copying, EmptiesThePasteboardBeforeItIsSet) {
    Journal journal;
    SimulatedPasteboard pasteboard(journal);
    copyText(element(Role::button, {.title = "Send"}), pasteboard);
    EXPECT_THAT(journal.entries(), ElementsAre("pasteboard cleared", "pasteboard set to 'Send'"));
}

TEST_F(CopyingTest, TheTextOfAButtonIsItsTitleEvenIfItHasAValue) {
    for (const Role role : {Role::button, Role::checkBox, Role::link, Role::radioButton}) {
        EXPECT_EQ(textOf(role, {.title = "title", .label = "label", .value = "value"}), "title");
        EXPECT_EQ(textOf(role, {.title = "", .label = "label", .value = "value"}), "label");
        EXPECT_EQ(textOf(role, {.value = "value"}), "value");
    }
}

TEST_F(CopyingTest, TheTextOfAnythingElseIsItsValueEvenIfItHasATitle) {
    for (const Role role : {Role::textField, Role::staticText, Role::menuBarItem, Role::someOtherShit}) {
        EXPECT_EQ(textOf(role, {.title = "title", .label = "label", .value = "value"}), "value");
        EXPECT_EQ(textOf(role, {.title = "title", .label = "label", .value = ""}), "label");
        EXPECT_EQ(textOf(role, {.title = "title", .label = ""}), "title");
    }
}

TEST_F(CopyingTest, AnElementWithoutTextsLeavesThePasteboardAsItWas) {
    EXPECT_EQ(textOf(Role::textField, {}), kUntouched);
    EXPECT_EQ(textOf(Role::button, {.title = "", .label = ""}), kUntouched) << "the last field is absent";
    EXPECT_EQ(metadataOf(Role::textField, {}), kUntouched);
}

TEST_F(CopyingTest, AnEmptyTextInTheLastPlaceEmptiesThePasteboard) {
    EXPECT_EQ(textOf(Role::textField, {.title = ""}), "");
    EXPECT_EQ(textOf(Role::button, {.value = ""}), "");
    EXPECT_EQ(metadataOf(Role::textField, {.label = ""}), "");
    EXPECT_EQ(metadataOf(Role::checkBox, {.title = "title", .value = ""}), "");
}

TEST_F(CopyingTest, BehindACheckBoxOrARadioButtonIsItsValueAlone) {
    for (const Role role : {Role::checkBox, Role::radioButton}) {
        EXPECT_EQ(metadataOf(role, {.title = "title", .label = "label", .value = "1"}), "1");
        EXPECT_EQ(metadataOf(role, {.title = "title", .label = "label"}), kUntouched);
    }
}

TEST_F(CopyingTest, BehindALinkIsItsAddressAlone) {
    EXPECT_EQ(metadataOf(Role::link, {.title = "title", .value = "value", .url = "https://example.org/"}),
              "https://example.org/");
    EXPECT_EQ(metadataOf(Role::link, {.title = "title", .label = "label", .value = "value"}), kUntouched);
}

TEST_F(CopyingTest, BehindAnythingElseIsItsValueThenTitleThenLabel) {
    for (const Role role : {Role::button, Role::textField, Role::someOtherShit}) {
        EXPECT_EQ(metadataOf(role, {.title = "title", .label = "label", .value = "value"}), "value");
        EXPECT_EQ(metadataOf(role, {.title = "title", .label = "label", .value = ""}), "title");
        EXPECT_EQ(metadataOf(role, {.title = "", .label = "label"}), "label");
    }
}

}  // namespace
}  // namespace tarvix
