// Enumerations that settings hold: their cases with the texts that are stored and shown.
#pragma once

#include <concepts>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>

namespace tarvix {

struct SettingCase {
    std::string_view rawValue;     // what is stored
    std::string_view displayText;  // what the user reads
};

// An enumeration that is stored by the raw value of its case. It has its cases in the order of their declaration, from
// 0 on, in its own namespace:
//     constexpr std::span<const SettingCase> casesOf(std::type_identity<Case>);
template <class T>
concept SettingEnumeration = std::is_enum_v<T> && requires {
    { casesOf(std::type_identity<T>{}) } -> std::same_as<std::span<const SettingCase>>;
};

template <SettingEnumeration Case>
constexpr const SettingCase& settingCase(Case value) {
    return casesOf(std::type_identity<Case>{})[static_cast<std::size_t>(value)];
}

template <SettingEnumeration Case>
constexpr std::string_view rawValue(Case value) {
    return settingCase(value).rawValue;
}

template <SettingEnumeration Case>
constexpr std::string_view displayText(Case value) {
    return settingCase(value).displayText;
}

// Absent for a text that is no raw value.
template <SettingEnumeration Case>
constexpr std::optional<Case> caseFromRawValue(std::string_view rawValue) {
    const auto cases = casesOf(std::type_identity<Case>{});
    for (std::size_t i = 0; i < cases.size(); ++i)
        if (cases[i].rawValue == rawValue) return static_cast<Case>(i);
    return std::nullopt;
}

}  // namespace tarvix
