// Reading one element: how untyped attributes become the record's fields.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ax/AXEngine2.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

class AttributeAccess : public testing::Test {
protected:
    // An element of its own in a window, read.
    std::optional<AccessibilityElement> read(const SimulatedElement& element) {
        return AXEngine2::readElement(desk.accessibility, placed(element));
    }

    UIElement placed(const SimulatedElement& element) {
        const UIElement window = desk.accessibility.addWindow(
            pid, {.role = "AXWindow", .title = "Window", .frame = {{0, 0}, {800, 600}}, .children = {}}, ++lastWindow);
        return desk.accessibility.add(window, element);
    }

    static SimulatedElement withValue(AxValue value) {
        return {.role = "AXSlider",
                .title = "",
                .frame = {{1, 2}, {3, 4}},
                .children = {},
                .attributes = {{"AXValue", value}}};
    }

    SimulatedDesktop desk;
    std::int32_t pid = desk.launch("Editor");
    std::uint32_t lastWindow = 100;
};

TEST_F(AttributeAccess, AllThirteenAttributesAreAskedInOneCallInTheirOrder) {
    const UIElement element = placed({.role = "AXButton", .title = "Save", .frame = {{1, 2}, {3, 4}}, .children = {}});
    desk.accessibility.forgetReads();
    AXEngine2::readElement(desk.accessibility, element);
    ASSERT_EQ(desk.accessibility.reads().size(), 1U);
    EXPECT_THAT(desk.accessibility.reads().front().names,
                testing::ElementsAre("AXRole", "AXRoleDescription", "AXSubrole", "AXDescription", "AXTitle", "AXHelp",
                                     "AXPosition", "AXSize", "AXValue", "AXValueDescription", "AXPlaceholderValue",
                                     "AXURL", "AXIdentifier"));
}

TEST_F(AttributeAccess, EachAttributeGoesToItsField) {
    const auto record = read({.role = "AXButton",
                              .title = "Save",
                              .frame = {{10, 20}, {30, 40}},
                              .children = {},
                              .attributes = {{"AXRoleDescription", std::string("button")},
                                             {"AXSubrole", std::string("AXToggle")},
                                             {"AXDescription", std::string("label")},
                                             {"AXHelp", std::string("help")},
                                             {"AXValue", std::string("value")},
                                             {"AXValueDescription", std::string("said")},
                                             {"AXPlaceholderValue", std::string("placeholder")},
                                             {"AXURL", Url{"https://example.org/"}},
                                             {"AXIdentifier", std::string("id")}}});
    ASSERT_TRUE(record);
    EXPECT_EQ(record->role, AccessibilityElementRole::button);
    EXPECT_EQ(record->roleDescription, "button");
    EXPECT_EQ(record->subrole, "AXToggle");
    EXPECT_EQ(record->label, "label");
    EXPECT_EQ(record->title, "Save");
    EXPECT_EQ(record->help, "help");
    EXPECT_EQ(record->frame(), (AxRect{{10, 20}, {30, 40}}));
    EXPECT_EQ(record->value, "value");
    EXPECT_EQ(record->valueDescription, "said");
    EXPECT_EQ(record->placeholder, "placeholder");
    EXPECT_EQ(record->url, Url{"https://example.org/"});
    EXPECT_EQ(record->identifier, "id");
}

TEST_F(AttributeAccess, AWholeNumberAsValueIsItsDecimalText) {
    EXPECT_EQ(read(withValue(std::int64_t{1}))->value, "1");
    EXPECT_EQ(read(withValue(-7.0))->value, "-7");
    EXPECT_EQ(read(withValue(true))->value, "1");
}

TEST_F(AttributeAccess, ANumberWithAFractionIsNoValue) {
    EXPECT_EQ(read(withValue(0.5))->value, std::nullopt);
    EXPECT_EQ(read(withValue(1e300))->value, std::nullopt);
    EXPECT_EQ(read(withValue(std::numeric_limits<double>::quiet_NaN()))->value, std::nullopt);
}

TEST_F(AttributeAccess, ATextAsValueIsTheValueAndAnEmptyOneStaysEmpty) {
    EXPECT_EQ(read(withValue(std::string("abc")))->value, "abc");
    EXPECT_EQ(read(withValue(std::string()))->value, "");
}

TEST_F(AttributeAccess, WithoutARoleDescriptionItIsEmptyAndNotAbsent) {
    const auto record = read({.role = "AXButton", .title = "Save", .frame = {{1, 2}, {3, 4}}, .children = {}});
    EXPECT_EQ(record->roleDescription, "");
    EXPECT_EQ(record->subrole, std::nullopt);
    EXPECT_EQ(record->identifier, std::nullopt);
}

TEST_F(AttributeAccess, AnElementWithASizeAndNoPositionIsAtTheOrigin) {
    const UIElement element =
        placed({.role = "AXButton", .title = "Save", .frame = {{10, 20}, {30, 40}}, .children = {}});
    desk.accessibility.setStatus(element, ax::position, AxStatus::attributeUnsupported);
    EXPECT_EQ(AXEngine2::readElement(desk.accessibility, element)->frame(), (AxRect{{0, 0}, {30, 40}}));
}

TEST_F(AttributeAccess, ValuesOfTheWrongKindAreMissing) {
    const auto record = read({.role = "AXButton",
                              .title = "Save",
                              .frame = {{10, 20}, {30, 40}},
                              .children = {},
                              .attributes = {{"AXRoleDescription", std::int64_t{1}},
                                             {"AXDescription", Url{"x"}},
                                             {"AXPosition", Size{1, 2}},
                                             {"AXSize", std::string("large")},
                                             {"AXURL", std::string("https://example.org/")}}});
    ASSERT_TRUE(record);
    EXPECT_EQ(record->roleDescription, "");
    EXPECT_EQ(record->label, std::nullopt);
    EXPECT_EQ(record->frame(), (AxRect{{0, 0}, {0, 0}}));
    EXPECT_EQ(record->url, std::nullopt);
}

TEST_F(AttributeAccess, ARoleThatIsNoTextIsTheCatchAll) {
    const auto record =
        read({.role = "AXButton", .title = "", .frame = {}, .children = {}, .attributes = {{"AXRole", true}}});
    EXPECT_EQ(record->role, AccessibilityElementRole::someOtherShit);
}

TEST_F(AttributeAccess, ATextAreaInAScrollAreaHasExactlyTheScrollAreasFrame) {
    const UIElement scroll =
        placed({.role = "AXScrollArea",
                .title = "",
                .frame = {{5, 6}, {100, 50}},
                .children = {{.role = "AXTextArea", .title = "", .frame = {{5, -900}, {100, 4000}}, .children = {}}}});
    EXPECT_EQ(AXEngine2::readElement(desk.accessibility, desk.accessibility.child(scroll, 0))->frame(),
              (AxRect{{5, 6}, {100, 50}}));
}

TEST_F(AttributeAccess, ATextAreaInAGroupKeepsItsOwnFrame) {
    const UIElement group =
        placed({.role = "AXGroup",
                .title = "",
                .frame = {{5, 6}, {100, 50}},
                .children = {{.role = "AXTextArea", .title = "", .frame = {{7, 8}, {9, 10}}, .children = {}}}});
    EXPECT_EQ(AXEngine2::readElement(desk.accessibility, desk.accessibility.child(group, 0))->frame(),
              (AxRect{{7, 8}, {9, 10}}));
}

TEST_F(AttributeAccess, ATextAreaWhoseParentCantBeReadKeepsItsOwnFrame) {
    const UIElement scroll =
        placed({.role = "AXScrollArea",
                .title = "",
                .frame = {{5, 6}, {100, 50}},
                .children = {{.role = "AXTextArea", .title = "", .frame = {{7, 8}, {9, 10}}, .children = {}}}});
    const UIElement text = desk.accessibility.child(scroll, 0);
    desk.accessibility.setStatus(text, ax::parent, AxStatus::noValue);
    EXPECT_EQ(AXEngine2::readElement(desk.accessibility, text)->frame(), (AxRect{{7, 8}, {9, 10}}));
}

TEST_F(AttributeAccess, AnApplicationThatHasQuitMakesTheReadAbsentAndNothingElse) {
    const UIElement element = placed({.role = "AXButton", .title = "Save", .frame = {{1, 2}, {3, 4}}, .children = {}});
    desk.accessibility.quit(pid);
    EXPECT_FALSE(AXEngine2::readElement(desk.accessibility, element));
    EXPECT_FALSE(AXEngine2::readRole(desk.accessibility, element));
    EXPECT_FALSE(AXEngine2::readFrame(desk.accessibility, element));
}

TEST_F(AttributeAccess, AnAbsentElementHasNeitherRoleNorFrame) {
    EXPECT_FALSE(AXEngine2::readRole(desk.accessibility, std::nullopt));
    EXPECT_FALSE(AXEngine2::readFrame(desk.accessibility, std::nullopt));
}

TEST_F(AttributeAccess, ARoleOfNoInterestIsReadAndOneThatCantBeReadIsAbsent) {
    const UIElement image = placed({.role = "AXImage", .title = "", .frame = {}, .children = {}});
    EXPECT_EQ(AXEngine2::readRole(desk.accessibility, image), AccessibilityElementRole::someOtherShit);
    desk.accessibility.setStatus(image, ax::role, AxStatus::failure);
    EXPECT_EQ(AXEngine2::readRole(desk.accessibility, image), std::nullopt);
    const UIElement odd =
        placed({.role = "AXImage", .title = "", .frame = {}, .children = {}, .attributes = {{"AXRole", 3.0}}});
    EXPECT_EQ(AXEngine2::readRole(desk.accessibility, odd), std::nullopt);
}

TEST_F(AttributeAccess, TheFocusedApplicationIsThatOfTheWholeDesktop) {
    const AXEngine2 engine(desk.platform());
    desk.accessibility.setFocusedApplication(pid);
    EXPECT_EQ(engine.focusedApplicationProcessIdentifier(), pid);
    desk.accessibility.setStatus(desk.accessibility.systemWide(), ax::focusedApplication, AxStatus::cannotComplete);
    EXPECT_EQ(engine.focusedApplicationProcessIdentifier(), std::nullopt);
}

TEST_F(AttributeAccess, ADesktopWhereNothingIsFocusedAndNothingFailedEndsTheProcess) {
    const AXEngine2 engine(desk.platform());
    desk.accessibility.setStatus(desk.accessibility.systemWide(), ax::focusedApplication, AxStatus::noValue);
    EXPECT_DEATH((void)engine.focusedApplicationProcessIdentifier(), "");
}

}  // namespace
}  // namespace tarvix
