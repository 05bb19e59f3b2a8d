#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "ax/AccessibilityElement.h"
#include "ax/AccessibilityElementRole.h"
#include "base/OrderedSet.h"

namespace tarvix {
namespace {

using Role = AccessibilityElementRole;

std::size_t hashOf(const AccessibilityElement& element) { return std::hash<AccessibilityElement>{}(element); }

AccessibilityElement at(double x, double y, double width, double height) {
    AccessibilityElement element;
    element.role = Role::button;
    element.position = {x, y};
    element.size = {width, height};
    return element;
}

TEST(AccessibilityElementRole, TheOrderOfTheCasesWithTheirRawValues) {
    const std::vector<std::string> expected = {
        "AXButton",     "AXCheckBox",   "AXColumn",      "AXComboBox",    "AXGroup",
        "AXHeading",    "AXLink",       "AXList",        "AXMenuBarItem", "AXOpaqueProviderGroup",
        "AXOutline",    "AXRow",        "AXScrollArea",  "AXScrollBar",   "AXSplitGroup",
        "AXSplitter",   "AXStaticText", "AXTable",       "AXTabGroup",    "AXTextArea",
        "AXTextField",  "AXToolbar",    "AXRadioButton", "AXWebArea",     "AXWindow",
        "someOtherShit"};
    ASSERT_EQ(expected.size(), accessibilityElementRoleCount);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(rawValue(static_cast<Role>(i)), expected[i]);
        EXPECT_EQ(accessibilityElementRoleFromRawValue(expected[i]), static_cast<Role>(i));
    }
}

TEST(AccessibilityElementRole, ACaseIsNamedLikeItsRawValueWithoutThePrefix) {
    EXPECT_EQ(caseName(Role::button), "button");
    EXPECT_EQ(caseName(Role::opaqueProviderGroup), "opaqueProviderGroup");
    EXPECT_EQ(caseName(Role::someOtherShit), "someOtherShit");
    for (std::size_t i = 0; i + 1 < accessibilityElementRoleCount; ++i) {
        const auto role = static_cast<Role>(i);
        std::string name(caseName(role));
        name[0] = static_cast<char>(std::toupper(name[0]));
        EXPECT_EQ("AX" + name, rawValue(role));
    }
}

TEST(AccessibilityElementRole, ATextThatIsNoRawValueHasNoCase) {
    for (const char* text : {"", "AXImage", "axbutton", "AXButton ", "button", "AXSlider"})
        EXPECT_EQ(accessibilityElementRoleFromRawValue(text), std::nullopt) << text;
    EXPECT_EQ(accessibilityElementRoleFromRawValue("AXImage").value_or(Role::someOtherShit), Role::someOtherShit);
    EXPECT_EQ(rawValue(Role::someOtherShit), "someOtherShit");
}

TEST(AccessibilityElementRole, TheHashIsThatOfTheRawText) {
    EXPECT_EQ(std::hash<Role>{}(Role::table), std::hash<std::string_view>{}("AXTable"));
}

TEST(AccessibilityElement, TextsTakeNoPartInEquality) {
    AccessibilityElement a = at(1, 2, 3, 4);
    AccessibilityElement b = a;
    a.title = "Open";
    b.title = "Close";
    EXPECT_EQ(a, b);
    EXPECT_EQ(hashOf(a), hashOf(b));
    b.roleDescription = "button";
    b.subrole = b.label = b.help = b.value = b.valueDescription = b.placeholder = b.identifier = "other";
    b.url = Url{"https://example.org/"};
    EXPECT_EQ(a, b);
    EXPECT_EQ(hashOf(a), hashOf(b));
}

TEST(AccessibilityElement, RoleAndEachCoordinateTakePartInEquality) {
    const AccessibilityElement one = at(1, 2, 3, 4);
    AccessibilityElement otherRole = one;
    otherRole.role = Role::link;
    const double justAbove = std::nextafter(3.0, 4.0);
    for (const AccessibilityElement& other :
         {otherRole, at(1.5, 2, 3, 4), at(1, 2.5, 3, 4), at(1, 2, justAbove, 4), at(1, 2, 3, -4), at(2, 1, 3, 4)}) {
        EXPECT_FALSE(one == other);
        EXPECT_NE(hashOf(one), hashOf(other));
    }
}

TEST(AccessibilityElement, BothZerosAreOnePlace) {
    EXPECT_EQ(at(0.0, 0.0, 0.0, 0.0), at(-0.0, -0.0, -0.0, -0.0));
    EXPECT_EQ(hashOf(at(0.0, 0.0, 0.0, 0.0)), hashOf(at(-0.0, -0.0, -0.0, -0.0)));
}

TEST(AccessibilityElement, ACoordinateThatIsNoNumberMakesItUnequalToItself) {
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    for (const AccessibilityElement& element :
         {at(notANumber, 0, 1, 1), at(0, notANumber, 1, 1), at(0, 0, notANumber, 1), at(0, 0, 1, notANumber)})
        EXPECT_FALSE(element == element);  // NOLINT(misc-redundant-expression)
}

TEST(AccessibilityElement, TheFirstOfTwoInOneFrameStaysInASet) {
    AccessibilityElement first = at(10, 10, 80, 20);
    first.title = "first";
    AccessibilityElement second = first;
    second.title = "second";
    OrderedSet<AccessibilityElement> elements;
    EXPECT_TRUE(elements.insert(first));
    EXPECT_FALSE(elements.insert(second));
    ASSERT_EQ(elements.size(), 1u);
    EXPECT_EQ(elements.front().title, "first");
}

TEST(AccessibilityElement, HashesOfAGridOfControlsSpreadOverALowBitsTable) {
    constexpr std::size_t slots = 4096;
    std::vector<int> used(slots);
    for (int x = 0; x < 32; ++x)
        for (int y = 0; y < 64; ++y) ++used[hashOf(at(x * 24, y * 24, 24, 24)) % slots];
    std::size_t filled = 0;
    for (const int count : used) filled += count > 0;
    EXPECT_GT(filled, 1400u);  // 2,048 evenly random hashes fill about 1,610 of 4,096 slots
}

TEST(AccessibilityElement, WithoutTextsTheSearchableTextsAreBlanks) {
    EXPECT_EQ(AccessibilityElement().searchableText(), "       ");
    EXPECT_EQ(AccessibilityElement().fuzzySearchableText(), "     ");
}

TEST(AccessibilityElement, TheSearchableTextsJoinTheFieldsInTheirOrder) {
    AccessibilityElement element = at(1, 2, 3, 4);
    element.roleDescription = "button";
    element.subrole = "AXCloseButton";
    element.label = "label";
    element.title = "title";
    element.help = "help";
    element.value = "value";
    element.valueDescription = "described";
    element.placeholder = "placeholder";
    element.url = Url{"https://example.org/"};
    element.identifier = "identifier";
    EXPECT_EQ(element.searchableText(), "button AXCloseButton label title help value described placeholder");
    EXPECT_EQ(element.fuzzySearchableText(), "label title help value described placeholder");
    element.title.reset();
    element.help = "";
    EXPECT_EQ(element.searchableText(), "button AXCloseButton label   value described placeholder");
}

TEST(AccessibilityElement, TheDumpOfAnElementWithEverything) {
    AccessibilityElement element = at(10, -3.5, 0.1, 100000);
    element.roleDescription = "a \"b\" \\";
    element.subrole = "AXToggle";
    element.label = "say \"hi\" \\o/";
    element.title = "";
    element.help = "help";
    element.value = "1";
    element.valueDescription = "on";
    element.placeholder = "type\nhere";
    element.url = Url{"https://example.org/a\"b"};
    element.identifier = "not in the dump";
    EXPECT_EQ(element.metadataDump(),
              "AccessibilityElement(\n"
              "    role: .button,\n"
              "    roleDescription: \"a \"b\" \\\",\n"
              "    subrole: Optional(\"AXToggle\"),\n"
              "    label: Optional(\"say \\\"hi\\\" \\\\o/\"),\n"
              "    title: Optional(\"\"),\n"
              "    help: Optional(\"help\"),\n"
              "    position: CGPoint(x: 10.0, y: -3.5),\n"
              "    size: CGSize(width: 0.1, height: 100000.0),\n"
              "    value: Optional(\"1\"),\n"
              "    valueDescription: Optional(\"on\"),\n"
              "    placeholder: Optional(\"type\nhere\"),\n"
              "    url: URL(string: \"https://example.org/a\"b\")\n"
              "),\n");
}

TEST(AccessibilityElement, TheDumpOfAnEmptyElement) {
    const std::string dump = AccessibilityElement().metadataDump();
    EXPECT_TRUE(dump.starts_with("AccessibilityElement(\n    role: .someOtherShit,\n    roleDescription: \"\",\n"));
    EXPECT_NE(dump.find("subrole: nil,\n    label: nil,\n    title: nil,\n    help: nil,\n"), std::string::npos);
    EXPECT_TRUE(dump.ends_with(",\n    url: nil\n),\n"));
}

TEST(AccessibilityElement, TheDumpPrintsTheShortestNumbersThatReadBack) {
    const std::vector<std::pair<double, std::string>> rows = {{10, "10.0"},
                                                              {-0.0, "-0.0"},
                                                              {0.1 + 0.2, "0.30000000000000004"},
                                                              {1e21, "1000000000000000000000.0"},
                                                              {1e-7, "0.0000001"},
                                                              {1.0 / 3, "0.3333333333333333"}};
    for (const auto& [number, text] : rows)
        EXPECT_NE(at(number, 0, 0, 0).metadataDump().find("CGPoint(x: " + text + ", y: 0.0)"), std::string::npos)
            << text;
}

TEST(AccessibilityElement, TheDumpSurvivesTheSmallestAndTheLargestNumber) {
    for (const double number : {std::numeric_limits<double>::denorm_min(), -std::numeric_limits<double>::max()}) {
        const std::string dump = at(number, 0, 0, 0).metadataDump();
        const std::size_t start = dump.find("(x: ") + 4;
        EXPECT_EQ(std::strtod(dump.c_str() + start, nullptr), number) << dump;
    }
}

}  // namespace
}  // namespace tarvix
