#include "ax/AccessibilityElementRole.h"

#include <algorithm>
#include <array>

namespace tarvix {

namespace {

struct RoleRow {
    AccessibilityElementRole role;
    std::string_view name;
    std::string_view rawValue;
};

using enum AccessibilityElementRole;

constexpr std::array<RoleRow, accessibilityElementRoleCount> roles = {{
    {button, "button", "AXButton"},
    {checkBox, "checkBox", "AXCheckBox"},
    {column, "column", "AXColumn"},
    {comboBox, "comboBox", "AXComboBox"},
    {group, "group", "AXGroup"},
    {heading, "heading", "AXHeading"},
    {link, "link", "AXLink"},
    {list, "list", "AXList"},
    {menuBarItem, "menuBarItem", "AXMenuBarItem"},
    {opaqueProviderGroup, "opaqueProviderGroup", "AXOpaqueProviderGroup"},
    {outline, "outline", "AXOutline"},
    {row, "row", "AXRow"},
    {scrollArea, "scrollArea", "AXScrollArea"},
    {scrollBar, "scrollBar", "AXScrollBar"},
    {splitGroup, "splitGroup", "AXSplitGroup"},
    {splitter, "splitter", "AXSplitter"},
    {staticText, "staticText", "AXStaticText"},
    {table, "table", "AXTable"},
    {tabGroup, "tabGroup", "AXTabGroup"},
    {textArea, "textArea", "AXTextArea"},
    {textField, "textField", "AXTextField"},
    {toolbar, "toolbar", "AXToolbar"},
    {radioButton, "radioButton", "AXRadioButton"},
    {webArea, "webArea", "AXWebArea"},
    {window, "window", "AXWindow"},
    {someOtherShit, "someOtherShit", "someOtherShit"},
}};

constexpr bool rowsStandAtTheirRoles() {
    for (std::size_t i = 0; i < roles.size(); ++i)
        if (static_cast<std::size_t>(roles[i].role) != i) return false;
    return true;
}
static_assert(rowsStandAtTheirRoles());

}  // namespace

std::string_view rawValue(AccessibilityElementRole role) { return roles[static_cast<std::size_t>(role)].rawValue; }

std::string_view caseName(AccessibilityElementRole role) { return roles[static_cast<std::size_t>(role)].name; }

std::optional<AccessibilityElementRole> accessibilityElementRoleFromRawValue(std::string_view rawValue) {
    const auto found =
        std::find_if(roles.begin(), roles.end(), [rawValue](const RoleRow& each) { return each.rawValue == rawValue; });
    if (found == roles.end()) return std::nullopt;
    return found->role;
}

}  // namespace tarvix
