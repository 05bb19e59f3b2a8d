#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "linux/atspi/Translation.h"

namespace tarvix::atspi {
namespace {

Node node(Role role, std::string name = {}) {
    Node made;
    made.role = role;
    made.name = std::move(name);
    return made;
}

Node with(Node node, State state) {
    node.states |= std::uint64_t{1} << static_cast<unsigned>(state);
    return node;
}

Node with(Node node, std::string key, std::string value) {
    node.attributes.emplace_back(std::move(key), std::move(value));
    return node;
}

const AxValue kNone;

AxValue of(const Node& node, std::string_view attribute) {
    const std::optional<AxValue> value = translate(node, attribute);
    EXPECT_TRUE(value.has_value()) << attribute;
    return value.value_or(AxValue());
}
AxValue text(std::string_view value) { return std::string(value); }
AxValue number(std::int64_t value) { return value; }

struct RoleCase {
    Role role;
    std::string_view axRole, subrole;
    std::string_view nameIsIn;
};

class RoleTest : public ::testing::TestWithParam<RoleCase> {};

TEST_P(RoleTest, HasItsRoleAndSubroleAndItsNameInOneAttributeOnly) {
    const Node named = node(GetParam().role, "a name");
    EXPECT_EQ(axRole(named), GetParam().axRole);
    EXPECT_EQ(of(named, ax::role), text(GetParam().axRole));
    EXPECT_EQ(of(named, ax::subrole), GetParam().subrole.empty() ? kNone : text(GetParam().subrole));
    for (const std::string_view attribute : {ax::title, ax::description, ax::value}) {
        const bool isToggle = GetParam().axRole == "AXCheckBox" || GetParam().axRole == "AXRadioButton";
        if (isToggle && attribute == ax::value) continue;  // their state
        EXPECT_EQ(of(named, attribute), attribute == GetParam().nameIsIn ? text("a name") : kNone) << attribute;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Translation, RoleTest,
    ::testing::Values(
        RoleCase{Role::pushButton, "AXButton", "", ax::title},
        RoleCase{Role::pushButtonMenu, "AXMenuButton", "", ax::title},
        RoleCase{Role::toggleButton, "AXCheckBox", "AXToggle", ax::title},
        RoleCase{Role::switchButton, "AXCheckBox", "AXSwitch", ax::title},
        RoleCase{Role::checkBox, "AXCheckBox", "", ax::title},
        RoleCase{Role::radioButton, "AXRadioButton", "", ax::title},
        RoleCase{Role::pageTab, "AXRadioButton", "AXTabButton", ax::title},
        RoleCase{Role::pageTabList, "AXTabGroup", "", ax::description},
        RoleCase{Role::comboBox, "AXPopUpButton", "", ax::value}, RoleCase{Role::link, "AXLink", "", ax::title},
        RoleCase{Role::list, "AXList", "", ax::description}, RoleCase{Role::listItem, "AXRow", "AXTableRow", ax::value},
        RoleCase{Role::treeItem, "AXRow", "AXOutlineRow", ax::value},
        RoleCase{Role::table, "AXTable", "", ax::description},
        RoleCase{Role::treeTable, "AXOutline", "", ax::description}, RoleCase{Role::tableCell, "AXCell", "", ax::value},
        RoleCase{Role::tableColumnHeader, "AXButton", "AXSortButton", ax::title},
        RoleCase{Role::entry, "AXTextField", "", ax::description},
        RoleCase{Role::passwordText, "AXTextField", "AXSecureTextField", ax::description},
        RoleCase{Role::spinButton, "AXTextField", "", ax::description},
        RoleCase{Role::terminal, "AXTextArea", "", ax::description},
        RoleCase{Role::label, "AXStaticText", "", ax::value}, RoleCase{Role::staticText, "AXStaticText", "", ax::value},
        RoleCase{Role::heading, "AXHeading", "", ax::value}, RoleCase{Role::panel, "AXGroup", "", ax::title},
        RoleCase{Role::image, "AXImage", "", ax::description},
        RoleCase{Role::scrollPane, "AXScrollArea", "", ax::description},
        RoleCase{Role::scrollBar, "AXScrollBar", "", ax::description},
        RoleCase{Role::toolBar, "AXToolbar", "", ax::description},
        RoleCase{Role::documentWeb, "AXWebArea", "", ax::description},
        RoleCase{Role::frame, "AXWindow", "AXStandardWindow", ax::title},
        RoleCase{Role::dialog, "AXWindow", "AXDialog", ax::title},
        RoleCase{Role::menuItem, "AXMenuItem", "", ax::title},
        RoleCase{Role::checkMenuItem, "AXMenuItem", "", ax::title},
        RoleCase{Role::slider, "AXSlider", "", ax::description},
        RoleCase{Role::progressBar, "AXProgressIndicator", "", ax::description},
        RoleCase{Role::statusBar, "AXGroup", "AXApplicationStatus", ax::value},
        RoleCase{Role::toolTip, "AXHelpTag", "", ax::value}, RoleCase{Role::unknown, "AXGroup", "", ax::title},
        RoleCase{static_cast<Role>(4711), "AXGroup", "", ax::title}),
    [](const testing::TestParamInfo<RoleCase>& parameter) {
        const RoleCase& row = parameter.param;
        return "Number" + std::to_string(static_cast<int>(row.role)) + "Is" + std::string(row.axRole) +
               std::string(row.subrole);
    });

TEST(Translation, AToggleIsOffOnOrInBetween) {
    for (const Role role : {Role::checkBox, Role::toggleButton, Role::radioButton, Role::switchButton}) {
        EXPECT_EQ(of(node(role, "Bold"), ax::value), number(0));
        EXPECT_EQ(of(with(node(role), State::checked), ax::value), number(1));
        EXPECT_EQ(of(with(node(role), State::pressed), ax::value), number(1));
        EXPECT_EQ(of(with(with(node(role), State::checked), State::indeterminate), ax::value), number(2));
    }
}

TEST(Translation, ATabIsOnWhenItIsSelected) {
    EXPECT_EQ(of(node(Role::pageTab, "Fonts"), ax::value), number(0));
    EXPECT_EQ(of(with(node(Role::pageTab, "Fonts"), State::selected), ax::value), number(1));
    EXPECT_EQ(of(with(node(Role::pageTab, "Fonts"), State::checked), ax::value), number(0));
}

TEST(Translation, AnEditableComboBoxIsAComboBoxAndAnotherAPopUpButton) {
    EXPECT_EQ(axRole(with(node(Role::comboBox), State::editable)), "AXComboBox");
    EXPECT_EQ(axRole(node(Role::comboBox)), "AXPopUpButton");
}

TEST(Translation, AButtonWithAHyperlinkIsALink) {
    Node button = node(Role::pushButton, "Home page");
    button.interfaces = interface::hyperlink | interface::action;
    button.uri = "https://example.org/";
    EXPECT_EQ(axRole(button), "AXLink");
    EXPECT_EQ(of(button, ax::url), AxValue(Url{"https://example.org/"}));
    EXPECT_TRUE(wantsUri(Toolkit::gtk3, button));
    button.interfaces = interface::action;
    EXPECT_EQ(axRole(button), "AXButton");
    EXPECT_FALSE(wantsUri(Toolkit::gtk3, button));
}

TEST(Translation, TheUrlIsAskedOnlyWhereItIsTold) {
    EXPECT_TRUE(wantsUri(Toolkit::chromium, node(Role::link)));
    EXPECT_TRUE(wantsUri(Toolkit::gecko, node(Role::link)));
    EXPECT_FALSE(wantsUri(Toolkit::qt, node(Role::link)));
    EXPECT_FALSE(wantsUri(Toolkit::gtk4, node(Role::link)));
    EXPECT_FALSE(wantsUri(Toolkit::chromium, node(Role::pushButton)));
}

TEST(Translation, ADocumentAndAnImageHaveTheirUrlAmongTheAttributes) {
    EXPECT_EQ(of(with(node(Role::documentWeb), "DocURL", "https://example.org/"), ax::url),
              AxValue(Url{"https://example.org/"}));
    EXPECT_EQ(of(with(node(Role::image), "src", "https://example.org/a.png"), ax::url),
              AxValue(Url{"https://example.org/a.png"}));
    EXPECT_EQ(of(with(node(Role::image), "src", ""), ax::url), kNone);
}

TEST(Translation, AButtonThatOpensAMenuIsAMenuButton) {
    EXPECT_EQ(axRole(with(node(Role::pushButton), State::hasPopup)), "AXMenuButton");
}

TEST(Translation, AMenuIsAMenuBarItemOnlyDirectlyInAMenuBar) {
    for (const Role role : {Role::menu, Role::menuItem}) {
        Node item = node(role, "File");
        EXPECT_EQ(axRole(item), "AXMenuItem");
        item.inMenuBar = true;
        EXPECT_EQ(axRole(item), "AXMenuBarItem");
    }
}

TEST(Translation, ATextOfSeveralLinesIsATextArea) {
    EXPECT_EQ(axRole(with(node(Role::text), State::multiLine)), "AXTextArea");
    EXPECT_EQ(axRole(with(node(Role::entry), State::multiLine)), "AXTextArea");
    EXPECT_EQ(axRole(with(node(Role::passwordText), State::multiLine)), "AXTextField");
    EXPECT_EQ(axRole(node(Role::documentText)), "AXTextArea");
}

TEST(Translation, ATextFieldsValueIsItsTextAndNotItsName) {
    Node field = node(Role::entry, "Search:");
    EXPECT_EQ(of(field, ax::value), kNone);
    field.text = "tea";
    EXPECT_EQ(of(field, ax::value), text("tea"));
    EXPECT_EQ(of(field, ax::description), text("Search:"));
}

TEST(Translation, ANumberIsTheValueOfASlider) {
    Node slider = node(Role::slider, "Volume");
    slider.value = 0.5;
    EXPECT_EQ(of(slider, ax::value), AxValue(0.5));
    EXPECT_TRUE(wantsValue(slider));
    EXPECT_FALSE(wantsValue(node(Role::pushButton)));
}

TEST(Translation, TheTextOfALabelGoesBeforeItsName) {
    Node label = node(Role::label, "name");
    label.text = "text";
    EXPECT_EQ(of(label, ax::value), text("text"));
}

TEST(Translation, AClassNameIsNoName) {
    EXPECT_EQ(of(node(Role::pushButton, "GtkButton"), ax::title), kNone);
    EXPECT_EQ(of(node(Role::image, "GtkBuiltinIcon"), ax::description), kNone);
    EXPECT_EQ(of(node(Role::label, "GtkLabel"), ax::value), kNone);
    for (const char* name : {"Gtk", "Gtk 4", "Gtkmm", "GtkSharp guide", "gtkButton", "My GtkButton", "Gtk-Button"})
        EXPECT_EQ(of(node(Role::pushButton, name), ax::title), text(name));
}

TEST(Translation, ASwitchOfAPageIsToldByItsRoleThere) {
    for (const Role role : {Role::checkBox, Role::toggleButton})
        EXPECT_EQ(of(with(node(role), "xml-roles", "switch"), ax::subrole), text("AXSwitch"));
    EXPECT_EQ(of(with(node(Role::checkBox), "xml-roles", "checkbox"), ax::subrole), kNone);
    EXPECT_EQ(of(with(node(Role::pushButton), "xml-roles", "switch"), ax::subrole), kNone);
}

TEST(Translation, TheButtonsOfATitleBarHaveSubrolesThereOnly) {
    const std::vector<std::pair<std::string, std::string>> buttons = {{"Close", "AXCloseButton"},
                                                                      {"Minimize", "AXMinimizeButton"},
                                                                      {"Maximize", "AXZoomButton"},
                                                                      {"Restore", "AXZoomButton"}};
    for (const auto& [name, subrole] : buttons) {
        Node button = node(Role::pushButton, name);
        EXPECT_EQ(of(button, ax::subrole), kNone);
        button.inTitleBar = true;
        EXPECT_EQ(of(button, ax::subrole), text(subrole));
        button.role = Role::label;
        EXPECT_EQ(of(button, ax::subrole), kNone);
    }
    Node other = node(Role::pushButton, "Open");
    other.inTitleBar = true;
    EXPECT_EQ(of(other, ax::subrole), kNone);
}

TEST(Translation, APlaceholderIsCalledDifferentlyByBrowsers) {
    EXPECT_EQ(of(with(node(Role::entry), "placeholder-text", "Search the web"), ax::placeholderValue),
              text("Search the web"));
    EXPECT_EQ(of(with(node(Role::entry), "placeholder", "Search the web"), ax::placeholderValue),
              text("Search the web"));
    EXPECT_EQ(of(with(node(Role::entry), "placeholder-text", ""), ax::placeholderValue), kNone);
    EXPECT_EQ(of(node(Role::entry), ax::placeholderValue), kNone);
}

TEST(Translation, TheNumberOfAViewIsNoIdentifier) {
    EXPECT_EQ(of(with(node(Role::pushButton), "id", "view_12"), ax::identifier), kNone);
    EXPECT_EQ(of(with(node(Role::pushButton), "id", "send"), ax::identifier), text("send"));
    EXPECT_EQ(of(with(node(Role::pushButton), "id", ""), ax::identifier), kNone);
    Node named = with(node(Role::pushButton), "id", "view_12");
    named.identifier = "save-button";
    EXPECT_EQ(of(named, ax::identifier), text("save-button"));
}

TEST(Translation, ARoleOfItsOwnGoesBeforeTheRolesWord) {
    Node button = node(Role::pushButton);
    EXPECT_EQ(of(button, ax::roleDescription), kNone);
    button.roleWord = "push button";
    EXPECT_EQ(of(button, ax::roleDescription), text("push button"));
    EXPECT_EQ(of(with(button, "roledescription", "key"), ax::roleDescription), text("key"));
    EXPECT_EQ(of(with(button, "roledescription", ""), ax::roleDescription), text("push button"));
}

TEST(Translation, TheValuesWordsComeFromTheInterfaceOrTheAttributes) {
    EXPECT_EQ(of(with(node(Role::slider), "valuetext", "loud"), ax::valueDescription), text("loud"));
    Node slider = with(node(Role::slider), "valuetext", "loud");
    slider.valueText = "70 %";
    EXPECT_EQ(of(slider, ax::valueDescription), text("70 %"));
    EXPECT_EQ(of(node(Role::slider), ax::valueDescription), kNone);
}

TEST(Translation, TheDescriptionIsTheHelp) {
    Node button = node(Role::pushButton, "Send");
    EXPECT_EQ(of(button, ax::help), kNone);
    button.description = "Sends the message";
    EXPECT_EQ(of(button, ax::help), text("Sends the message"));
}

TEST(Translation, AnUnknownAttributeGivesNothingAtAll) {
    EXPECT_EQ(translate(node(Role::pushButton), "AXNoSuchThing"), std::nullopt);
    EXPECT_EQ(translate(node(Role::pushButton), ax::position), std::nullopt);
}

TEST(Translation, AStructuralNodesOwnTextNeedsAnElement) {
    for (const Role role :
         {Role::listItem, Role::treeItem, Role::heading, Role::paragraph, Role::section, Role::statusBar}) {
        EXPECT_TRUE(needsTextElement(node(role, "Chapter one"), false));
        // With children, the name is put together from theirs.
        EXPECT_FALSE(needsTextElement(node(role, "Chapter one"), true));
        Node texted = node(role);
        texted.text = "Chapter one";
        EXPECT_TRUE(needsTextElement(texted, true));
        EXPECT_FALSE(needsTextElement(node(role), false));
        EXPECT_FALSE(needsTextElement(node(role, "GtkListItem"), false));
    }
    for (const Role role : {Role::pushButton, Role::label, Role::panel, Role::entry})
        EXPECT_FALSE(needsTextElement(node(role, "Chapter one"), false));
}

TEST(Translation, AnOrnamentNeedsNoElement) {
    for (const char* ornament : {"•", " – ", "|", "· ·", "---", "—", "  "})
        EXPECT_FALSE(needsTextElement(node(Role::listItem, ornament), false)) << ornament;
    for (const char* word : {"• one", "é", "7", "目次", "→"})
        EXPECT_TRUE(needsTextElement(node(Role::listItem, word), false)) << word;
}

TEST(Translation, ATextElementSaysItsTextAndNothingElse) {
    Node element = node(Role::listItem, "a name");
    element.description = "help";
    element.text = "Chapter one";
    element.synthetic = true;
    EXPECT_EQ(of(element, ax::role), text("AXStaticText"));
    EXPECT_EQ(of(element, ax::subrole), kNone);
    EXPECT_EQ(of(element, ax::value), text("Chapter one"));
    EXPECT_EQ(of(element, ax::title), kNone);
    EXPECT_EQ(of(element, ax::description), kNone);
    EXPECT_EQ(of(element, ax::help), kNone);
    EXPECT_FALSE(needsTextElement(element, false));
}

TEST(Translation, TextsAreAskedWhereAToolkitHasThemNowhereElse) {
    for (const Toolkit toolkit : {Toolkit::gtk3, Toolkit::gtk4, Toolkit::qt, Toolkit::chromium, Toolkit::gecko}) {
        EXPECT_TRUE(wantsText(toolkit, node(Role::entry)));
        EXPECT_EQ(wantsText(toolkit, node(Role::paragraph)), toolkit == Toolkit::gecko);
        EXPECT_FALSE(wantsText(toolkit, node(Role::pushButton)));
    }
    EXPECT_TRUE(wantsText(Toolkit::libreOffice, node(Role::tableCell)));
}

Node onPage(Role role, const std::string& name = {}) {
    Node part = node(role, name);
    part.inWebContent = true;
    return part;
}

TEST(Translation, WhatOnlyHoldsATextOnAPageIsNoTextItself) {
    for (const Role role : {Role::label, Role::caption}) {
        EXPECT_EQ(axRole(onPage(role)), "AXGroup");
        EXPECT_NE(axRole(node(role)), "AXGroup");
        EXPECT_TRUE(needsTextElement(onPage(role, "Full name"), false));
        EXPECT_FALSE(needsTextElement(node(role, "Full name"), false));
    }
}

TEST(Translation, AnEmphasisIsNoTextBesideTheOneWithinIt) {
    Node emphasis = onPage(Role::staticText);
    emphasis.childCount = 1;
    EXPECT_EQ(axRole(emphasis), "AXGroup");
    emphasis.childCount = 0;
    EXPECT_EQ(axRole(emphasis), "AXStaticText");
}

TEST(Translation, ACellOfAPageDoesNotRepeatTheTextWithinIt) {
    EXPECT_EQ(of(onPage(Role::tableCell, "58"), ax::value), kNone);
    EXPECT_EQ(of(onPage(Role::tableCell, "58"), ax::description), kNone);
    EXPECT_EQ(of(node(Role::tableCell, "58"), ax::value), text("58"));
    Node named = onPage(Role::tableCell, "Rent of a whole plot");
    named.attributes = {{"explicit-name", "true"}};
    EXPECT_EQ(of(named, ax::description), text("Rent of a whole plot"));
}

TEST(Translation, AColumnHeaderOfAPageIsAButtonIfItSorts) {
    EXPECT_EQ(axRole(onPage(Role::columnHeader)), "AXCell");
    EXPECT_EQ(of(onPage(Role::columnHeader), ax::subrole), kNone);
    Node sorting = onPage(Role::columnHeader, "Rent");
    sorting.attributes = {{"sort", "ascending"}};
    EXPECT_EQ(axRole(sorting), "AXButton");
    EXPECT_EQ(of(sorting, ax::title), text("Rent"));
}

TEST(Translation, ADropDownListSaysWhatIsChosenAndWhatItIsCalled) {
    Node list = onPage(Role::comboBox, "Site");
    EXPECT_EQ(of(list, ax::value), text("Site"));
    list.text = "Mill Lane";
    EXPECT_EQ(of(list, ax::value), text("Mill Lane"));
    EXPECT_EQ(of(list, ax::description), text("Site"));
}

TEST(Translation, TheCloseButtonOfABrowsersTabIsNotItsWindows) {
    Node close = node(Role::pushButton, "Close");
    close.inTitleBar = true;
    EXPECT_EQ(of(close, ax::subrole), text("AXCloseButton"));
    close.attributes = {{"class", "TabCloseButton"}};
    EXPECT_EQ(of(close, ax::subrole), kNone);
    close.attributes = {{"class", "FrameCaptionButton"}};
    EXPECT_EQ(of(close, ax::subrole), text("AXCloseButton"));
}

}  // namespace
}  // namespace tarvix::atspi
