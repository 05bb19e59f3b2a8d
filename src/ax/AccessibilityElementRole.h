// The roles that the system tells apart.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace tarvix {

enum class AccessibilityElementRole : std::uint8_t {
    button,
    checkBox,
    column,
    comboBox,
    group,
    heading,
    link,
    list,
    menuBarItem,
    opaqueProviderGroup,
    outline,
    row,
    scrollArea,
    scrollBar,
    splitGroup,
    splitter,
    staticText,
    table,
    tabGroup,
    textArea,
    textField,
    toolbar,
    radioButton,
    webArea,
    window,
    someOtherShit,  // every role of the platform that isn't one of the above
};

inline constexpr std::size_t accessibilityElementRoleCount = 26;

// The text of the "AXRole" attribute, such as "AXButton"; of the catch-all its own name.
std::string_view rawValue(AccessibilityElementRole role);
// The name of the case, such as "button".
std::string_view caseName(AccessibilityElementRole role);
// The case with exactly this raw value. Absent for every other text, also where a caller goes on with the catch-all.
std::optional<AccessibilityElementRole> accessibilityElementRoleFromRawValue(std::string_view rawValue);

}  // namespace tarvix

template <>
struct std::hash<tarvix::AccessibilityElementRole> {
    std::size_t operator()(tarvix::AccessibilityElementRole role) const {
        return std::hash<std::string_view>{}(tarvix::rawValue(role));
    }
};
