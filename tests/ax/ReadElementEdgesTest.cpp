#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "ax/AXEngine2.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using Role = AccessibilityElementRole;

class ReadElementEdges : public testing::Test {
protected:
    UIElement add(const SimulatedElement& element) { return window_.add(element).last; }
    std::optional<AccessibilityElement> read(const UIElement& element) {
        return AXEngine2::readElement(desk_.accessibility, element);
    }
    std::optional<std::string> valueOf(AxValue value) {
        return read(add({.role = "AXSlider", .attributes = {{std::string(ax::value), std::move(value)}}}))->value;
    }

    SimulatedDesktop desk_;
    SimulatedWindow window_ = desk_.window("Mail");
    AXEngine2 engine_{desk_.platform()};
};

TEST_F(ReadElementEdges, MissingAttributesLeaveAnEmptyRecord) {
    const UIElement element = add({});
    desk_.accessibility.setStatus(element, ax::position, AxStatus::attributeUnsupported);
    desk_.accessibility.setStatus(element, ax::size, AxStatus::noValue);
    const auto record = read(element);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->role, Role::someOtherShit);
    EXPECT_EQ(record->roleDescription, "");
    EXPECT_EQ(record->frame(), AxRect());
    for (const auto& text : {record->subrole, record->label, record->title, record->help, record->value,
                             record->valueDescription, record->placeholder, record->identifier})
        EXPECT_EQ(text, std::nullopt);
    EXPECT_EQ(record->url, std::nullopt);
}

TEST_F(ReadElementEdges, ValuesOfTheWrongKindCountAsMissing) {
    SimulatedElement element{.role = "AXButton"};
    for (const char* name :
         {"AXRole", "AXRoleDescription", "AXSubrole", "AXDescription", "AXTitle", "AXHelp", "AXPosition", "AXSize",
          "AXValueDescription", "AXPlaceholderValue", "AXURL", "AXIdentifier"})
        element.attributes[name] = std::int64_t{7};
    element.attributes["AXValue"] = AxPoint{1, 2};
    const auto record = read(add(element));
    ASSERT_TRUE(record);
    EXPECT_EQ(record->metadataDump(), AccessibilityElement().metadataDump());
    EXPECT_EQ(record->identifier, std::nullopt);
}

TEST_F(ReadElementEdges, TextIsNotConvertedToAUrl) {
    EXPECT_EQ(read(add({.role = "AXLink", .attributes = {{"AXURL", "https://example.org/"}}}))->url, std::nullopt);
}

TEST_F(ReadElementEdges, AWholeNumberIsAValueAndAFractionIsNot) {
    const double beyond = 9223372036854775808.0;
    const std::vector<std::pair<AxValue, std::optional<std::string>>> rows = {
        {std::int64_t{1}, "1"},
        {0.5, std::nullopt},
        {"abc", "abc"},
        {"", ""},
        {1.0, "1"},
        {-3.0, "-3"},
        {-0.0, "0"},
        {true, "1"},
        {false, "0"},
        {std::numeric_limits<std::int64_t>::min(), "-9223372036854775808"},
        {-beyond, "-9223372036854775808"},
        {beyond, std::nullopt},
        {std::numeric_limits<double>::infinity(), std::nullopt},
        {std::numeric_limits<double>::quiet_NaN(), std::nullopt},
        {std::monostate(), std::nullopt},
        {Url{"https://example.org/"}, std::nullopt},
    };
    for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(valueOf(rows[i].first), rows[i].second) << "row " << i;
}

TEST_F(ReadElementEdges, ATextAreaWhoseParentFailsSomewhereLeavesItsOwnFrame) {
    const AxRect own = {{12, 13}, {296, 9000}};
    const auto inScrollArea = [&] {
        return add({.role = "AXScrollArea",
                    .frame = {{10, 20}, {300, 100}},
                    .children = {{.role = "AXTextArea", .frame = own}}});
    };
    const auto frameBelow = [&](const UIElement& parent) {
        return read(desk_.accessibility.child(parent, 0))->frame();
    };
    UIElement parent = inScrollArea();
    desk_.accessibility.setStatus(desk_.accessibility.child(parent, 0), ax::parent, AxStatus::cannotComplete);
    EXPECT_EQ(frameBelow(parent), own);

    parent = inScrollArea();
    desk_.accessibility.set(desk_.accessibility.child(parent, 0), ax::parent, "no element");
    EXPECT_EQ(frameBelow(parent), own);

    parent = inScrollArea();
    desk_.accessibility.failNthRead(parent, 1, AxStatus::cannotComplete);  // of its role
    EXPECT_EQ(frameBelow(parent), own);

    parent = inScrollArea();
    desk_.accessibility.failNthRead(parent, 2, AxStatus::cannotComplete);  // of its frame
    EXPECT_EQ(frameBelow(parent), own);
    EXPECT_EQ(frameBelow(parent), (AxRect{{10, 20}, {300, 100}}));
}

TEST_F(ReadElementEdges, AnyFailureOfTheCallEndsTheReadWithoutARetry) {
    const UIElement element = add({.role = "AXButton"});
    for (const AxStatus status : {AxStatus::failure, AxStatus::noValue, AxStatus::cannotComplete}) {
        desk_.accessibility.failNthRead(element, 1, status);
        desk_.accessibility.forgetReads();
        EXPECT_EQ(read(element), std::nullopt);
        EXPECT_EQ(desk_.accessibility.reads().size(), 1u);
    }
    EXPECT_TRUE(read(element));
}

TEST_F(ReadElementEdges, ARoleIsAbsentOnlyWhenItCannotBeRead) {
    const auto role = [&](const std::optional<UIElement>& element) {
        return AXEngine2::readRole(desk_.accessibility, element);
    };
    EXPECT_EQ(role(std::nullopt), std::nullopt);
    EXPECT_EQ(role(add({.role = "AXLink"})), Role::link);
    EXPECT_EQ(role(add({.role = "AXImage"})), Role::someOtherShit);
    EXPECT_EQ(role(add({})), std::nullopt);
    EXPECT_EQ(role(add({.attributes = {{"AXRole", ""}}})), Role::someOtherShit);
    EXPECT_EQ(role(add({.attributes = {{"AXRole", std::monostate()}}})), std::nullopt);
    EXPECT_EQ(role(add({.attributes = {{"AXRole", std::int64_t{3}}}})), std::nullopt);
}

TEST_F(ReadElementEdges, AFrameIsPresentEvenWithoutPositionAndSize) {
    const auto frame = [&](const std::optional<UIElement>& element) {
        return AXEngine2::readFrame(desk_.accessibility, element);
    };
    EXPECT_EQ(frame(std::nullopt), std::nullopt);
    EXPECT_EQ(frame(add({.frame = {{1, 2}, {3, 4}}})), (AxRect{{1, 2}, {3, 4}}));
    EXPECT_EQ(frame(add({.attributes = {{"AXPosition", 1.0}, {"AXSize", AxPoint{1, 2}}}})), AxRect());
}

TEST_F(ReadElementEdges, TheFocusedApplicationsProcess) {
    EXPECT_EQ(engine_.focusedApplicationProcessIdentifier(), window_.pid);
    desk_.accessibility.setFocusedApplication(4711);
    EXPECT_EQ(engine_.focusedApplicationProcessIdentifier(), 4711);
    desk_.accessibility.setFocusedApplication(-1);
    EXPECT_EQ(engine_.focusedApplicationProcessIdentifier(), std::nullopt);
    desk_.accessibility.setFocusedApplication(4711);
    desk_.faults.failNth("pid", 1);
    EXPECT_EQ(engine_.focusedApplicationProcessIdentifier(), std::nullopt);
    for (const AxStatus status : {AxStatus::cannotComplete, AxStatus::apiDisabled, AxStatus::attributeUnsupported}) {
        desk_.accessibility.setStatus(desk_.accessibility.systemWide(), ax::focusedApplication, status);
        EXPECT_EQ(engine_.focusedApplicationProcessIdentifier(), std::nullopt);
    }
}

}  // namespace
}  // namespace tarvix
