#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "ax/AXEngine2.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using Titles = std::vector<std::string>;
using Children = std::vector<SimulatedElement>;

// Places of their own for elements that must not be taken for one.
AxRect place(int n) { return {{10.0 * n, 10}, {8, 8}}; }

SimulatedElement node(const std::string& role, const std::string& title, AxRect frame, Children children = {}) {
    return {.role = role, .title = title, .frame = frame, .children = std::move(children)};
}

class WalkEdges : public testing::Test {
protected:
    UIElement add(const SimulatedElement& element) { return window_.add(element).last; }
    UIElement child(const UIElement& of, std::size_t n) { return desk_.accessibility.child(of, n); }

    Titles walked() { return titles(engine_.frontmostWindowElements(window_.pid)); }
    static Titles titles(const OrderedSet<AccessibilityElement>& elements) {
        Titles all;
        for (const AccessibilityElement& element : elements) all.push_back(element.title.value_or("-"));
        return all;
    }
    bool isLookedAt(const UIElement& element) { return desk_.accessibility.readsOf(element) > 0; }

    SimulatedDesktop desk_;
    SimulatedWindow window_ = desk_.window("Mail", {{0, 0}, {800, 600}});
    AXEngine2 engine_{desk_.platform()};
};

// For each of the 26 roles: is it kept, and are its children gone through, with no, one and two children.
struct RoleRow {
    const char* role;
    std::array<bool, 3> kept;
    std::array<bool, 2> goneBelow;  // with one child and with two
};
constexpr std::array<bool, 3> always = {true, true, true};
constexpr std::array<bool, 3> never = {false, false, false};
constexpr std::array<bool, 2> below = {true, true};
constexpr std::array<RoleRow, 26> roleRows = {{
    {"AXButton", {true, true, false}, {false, true}},
    {"AXTextArea", {true, true, false}, below},
    {"AXComboBox", always, {false, false}},
    {"AXLink", always, {false, false}},
    {"AXCheckBox", always, below},
    {"AXMenuBarItem", always, below},
    {"AXRadioButton", always, below},
    {"AXStaticText", always, below},
    {"AXTextField", always, below},
    {"AXPopUpButton", always, below},  // none of the named roles
    {"AXColumn", never, below},
    {"AXGroup", never, below},
    {"AXHeading", never, below},
    {"AXList", never, below},
    {"AXOpaqueProviderGroup", never, below},
    {"AXOutline", never, below},
    {"AXRow", never, below},
    {"AXScrollArea", never, below},
    {"AXScrollBar", never, below},
    {"AXSplitGroup", never, below},
    {"AXSplitter", never, below},
    {"AXTable", never, below},
    {"AXTabGroup", never, below},
    {"AXToolbar", never, below},
    {"AXWebArea", never, below},
    {"AXWindow", never, below},
}};

TEST_F(WalkEdges, WhichRolesAreKeptAndGoneBelow) {
    for (const RoleRow& row : roleRows) {
        for (std::size_t count = 0; count <= 2; ++count) {
            Children children;
            Titles expected;
            if (row.kept[count]) expected.emplace_back("it");
            for (std::size_t i = 0; i < count; ++i) {
                children.push_back(node("AXStaticText", "child " + std::to_string(i), place(static_cast<int>(i))));
                if (row.goneBelow[count - 1]) expected.push_back("child " + std::to_string(i));
            }
            const UIElement element = add(node(row.role, "it", {{0, 10}, {100, 10}}, children));
            EXPECT_EQ(walked(), expected) << row.role << " with " << count << " children";
            desk_.accessibility.remove(element);
        }
    }
}

TEST_F(WalkEdges, TheChildrenOfAButtonWithTwoAreJudgedByTheirOwnRules) {
    add(node("AXButton", "split", place(1),
             {node("AXGroup", "group", place(2), {node("AXImage", "image", place(3))}),
              node("AXButton", "more", place(4))}));
    EXPECT_EQ(walked(), (Titles{"image", "more"}));
}

TEST_F(WalkEdges, TheChildrenAreReadForOpaqueElementsToo) {
    const UIElement link = add(node("AXLink", "link", place(1)));
    walked();
    bool read = false;
    for (const auto& each : desk_.accessibility.reads())
        read |= each.element == link && each.names == std::vector<std::string>{"AXVisibleChildren"};
    EXPECT_TRUE(read);
}

TEST_F(WalkEdges, ElementsOfNoHeightToSpeakOfAreLeftOut) {
    add(node("AXStaticText", "1.0", {{0, 10}, {10, 1.0}}));
    add(node("AXStaticText", "1.5", {{10, 10}, {10, 1.5}}));
    add(node("AXStaticText", "upwards", {{20, 20}, {10, -8}}));
    add(node("AXImage", "unknown", {{30, 10}, {10, 1}}));
    EXPECT_EQ(walked(), (Titles{"1.5", "upwards"}));
}

TEST_F(WalkEdges, TheRootsOwnFrameIsNoCondition) {
    const UIElement root = add(node("AXGroup", "far away", {{5000, 0}, {0, 0}}, {node("AXButton", "Send", place(1))}));
    EXPECT_EQ(titles(AXEngine2::collectElements(desk_.accessibility, root, {{0, 0}, {800, 600}})), Titles{"Send"});
}

// --- Children.

class WalkChildren : public WalkEdges {
protected:
    std::size_t count(const UIElement& element) {
        const auto record = AXEngine2::readElement(desk_.accessibility, element);
        return AXEngine2::readChildren(desk_.accessibility, *record, element).size();
    }
    UIElement ofRole(const std::string& role) {
        return add(node(role, "it", place(1), {node("AXRow", "", place(2)), node("AXRow", "", place(3))}));
    }
    // Another list under the attribute, to be told apart by its length.
    void setCount(const UIElement& element, std::string_view attribute, std::size_t length) {
        desk_.accessibility.set(element, attribute, std::vector<UIElement>(length, child(element, 0)));
    }
    SimulatedAccessibility& service_ = desk_.accessibility;
};

TEST_F(WalkChildren, OfATableAreItsVisibleRows) {
    for (const char* role : {"AXTable", "AXOutline"}) {
        const UIElement table = ofRole(role);
        setCount(table, ax::visibleRows, 1);
        setCount(table, ax::rows, 5);
        setCount(table, ax::visibleChildren, 7);
        EXPECT_EQ(count(table), 1u);
        setCount(table, ax::visibleRows, 0);
        EXPECT_EQ(count(table), 0u);
        service_.set(table, ax::visibleRows, "no list");
        EXPECT_EQ(count(table), 0u);
        service_.set(table, ax::visibleRows, std::monostate());
        EXPECT_EQ(count(table), 0u);
    }
}

TEST_F(WalkChildren, OfATableWithoutAValueForVisibleRowsAreAllRows) {
    const UIElement table = ofRole("AXTable");
    setCount(table, ax::rows, 5);
    service_.setStatus(table, ax::visibleRows, AxStatus::noValue);
    EXPECT_EQ(count(table), 5u);
    service_.setStatus(table, ax::rows, AxStatus::cannotComplete);
    EXPECT_EQ(count(table), 0u);
    service_.setStatus(table, ax::rows, AxStatus::noValue);
    EXPECT_EQ(count(table), 0u);
}

TEST_F(WalkChildren, OfATableThatDoesNotKnowVisibleRowsAreNone) {
    const UIElement table = ofRole("AXTable");
    for (const AxStatus status :
         {AxStatus::attributeUnsupported, AxStatus::failure, AxStatus::cannotComplete, AxStatus::invalidElement}) {
        service_.setStatus(table, ax::visibleRows, status);
        EXPECT_EQ(count(table), 0u);
    }
}

TEST_F(WalkChildren, NavigationOrderHelpsWhereNoVisibleChildrenAreTold) {
    const UIElement group = ofRole("AXGroup");
    setCount(group, ax::childrenInNavigationOrder, 3);
    setCount(group, ax::visibleChildren, 0);
    EXPECT_EQ(count(group), 3u);
    for (const AxStatus status : {AxStatus::noValue, AxStatus::attributeUnsupported, AxStatus::failure}) {
        service_.setStatus(group, ax::visibleChildren, status);
        EXPECT_EQ(count(group), 3u);
    }
    service_.set(group, ax::childrenInNavigationOrder, 1.0);
    EXPECT_EQ(count(group), 0u);
    service_.setStatus(group, ax::childrenInNavigationOrder, AxStatus::noValue);
    EXPECT_EQ(count(group), 0u);
}

TEST_F(WalkChildren, VisibleChildrenThatAreNoListEndTheMatter) {
    const UIElement group = ofRole("AXGroup");
    for (const AxValue& value : std::vector<AxValue>{std::monostate(), "text", child(group, 0)}) {
        service_.set(group, ax::visibleChildren, value);
        EXPECT_EQ(count(group), 0u);
    }
}

TEST_F(WalkChildren, AreNotThoseOfTheAttributeForAllChildren) {
    const UIElement group = ofRole("AXGroup");
    service_.setStatus(group, ax::visibleChildren, AxStatus::attributeUnsupported);
    service_.setStatus(group, ax::childrenInNavigationOrder, AxStatus::attributeUnsupported);
    setCount(group, "AXChildren", 3);
    EXPECT_EQ(count(group), 0u);
}

// --- Trees that break or lie.

class WalkOfFive : public WalkEdges {
protected:
    UIElement parent_ = add(node("AXGroup", "", {{0, 0}, {100, 100}},
                                 {node("AXGroup", "", place(1), {node("AXButton", "first", place(1))}),
                                  node("AXButton", "second", place(2)), node("AXGroup", "third", place(3)),
                                  node("AXButton", "fourth", place(4)), node("AXButton", "fifth", place(5))}));
    UIElement after_ = add(node("AXButton", "after", place(6)));
    UIElement third_ = child(parent_, 2);
    SimulatedAccessibility& service_ = desk_.accessibility;

    void expectTheRowToEndThere() {
        service_.forgetReads();
        EXPECT_EQ(walked(), (Titles{"first", "second", "after"}));
        EXPECT_FALSE(isLookedAt(child(parent_, 3)));
        EXPECT_FALSE(isLookedAt(child(parent_, 4)));
    }
};

TEST_F(WalkOfFive, AChildWhoseRoleCannotBeReadEndsItsRow) {
    service_.setStatus(third_, ax::role, AxStatus::cannotComplete);
    expectTheRowToEndThere();
    service_.set(third_, ax::role, std::monostate());
    expectTheRowToEndThere();
    service_.set(third_, ax::role, std::int64_t{1});
    expectTheRowToEndThere();
}

TEST_F(WalkOfFive, AChildWhoseFrameCannotBeReadEndsItsRow) {
    service_.failNthRead(third_, 2, AxStatus::cannotComplete);
    expectTheRowToEndThere();
}

TEST_F(WalkOfFive, AChildThatHasGoneEndsItsRow) {
    service_.set(parent_, ax::visibleChildren,
                 std::vector<UIElement>{child(parent_, 0), child(parent_, 1), third_, child(parent_, 3)});
    service_.remove(third_);
    EXPECT_EQ(walked(), (Titles{"first", "second", "after"}));
}

TEST_F(WalkEdges, ADyingApplicationGivesWhatWasReadBefore) {
    add(node("AXButton", "first", place(1)));
    add(node("AXButton", "second", place(2)));
    for (int calls = 1; calls < 12; ++calls) {
        desk_.faults.failFrom("attributes", calls);
        const Titles found = walked();
        EXPECT_LE(found.size(), 2u);
        const bool isInOrder = found.empty() || found.front() == "first";
        EXPECT_TRUE(isInOrder);
    }
    desk_.faults.mend("attributes");
    EXPECT_EQ(walked(), (Titles{"first", "second"}));
}

// --- Where it begins.

class WalkRoot : public WalkEdges {
protected:
    void SetUp() override {
        window_.button("focused", place(1));
        SimulatedWindow main = desk_.addWindow(window_.pid, "Main", {{0, 0}, {800, 600}});
        main.button("main", place(1));
        desk_.accessibility.setMainWindow(window_.pid, main.element);
        desk_.accessibility.setFocusedWindow(window_.pid, window_.element);
    }
    // The frontmost application is another than the walked one.
    void bringToFront(std::optional<std::string> bundleIdentifier) {
        desk_.workspace.launch({7777, std::move(bundleIdentifier), "Other"});
        desk_.workspace.activate(7777);
    }
};

TEST_F(WalkRoot, IsTheFocusedWindowWhereNothingIsKnownOfTheFrontmostApplication) {
    bringToFront(std::nullopt);
    EXPECT_EQ(walked(), Titles{"focused"});
    desk_.workspace.activate(std::nullopt);
    EXPECT_EQ(walked(), Titles{"focused"});
}

TEST_F(WalkRoot, AFocusedDesktopWindowWithoutTitleIsNothingToSearch) {
    bringToFront("com.apple.finder");
    EXPECT_EQ(walked(), Titles{"focused"});
    desk_.accessibility.set(window_.element, ax::title, "");
    EXPECT_EQ(walked(), Titles{"focused"});
    desk_.accessibility.set(window_.element, ax::title, std::monostate());
    EXPECT_EQ(walked(), Titles());
    desk_.accessibility.setStatus(window_.element, ax::title, AxStatus::attributeUnsupported);
    EXPECT_EQ(walked(), Titles());
}

TEST_F(WalkRoot, AnotherApplicationsWindowNeedsNoTitle) {
    desk_.accessibility.setStatus(window_.element, ax::title, AxStatus::attributeUnsupported);
    EXPECT_EQ(walked(), Titles{"focused"});
}

TEST_F(WalkRoot, AWindowWhoseFrameCannotBeReadIsNothing) {
    desk_.accessibility.failReads(window_.element, AxStatus::cannotComplete);
    EXPECT_EQ(walked(), Titles());
}

}  // namespace
}  // namespace tarvix
