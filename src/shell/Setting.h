// A typed view on one key of the user defaults.
#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "platform/UserDefaults.h"

namespace tarvix {

// An enumeration that is stored by the raw value of its case. It declares, in its own namespace,
//     std::string_view rawValue(Case);
//     std::optional<Case> caseFromRawValue(std::type_identity<Case>, std::string_view rawValue);
template <class T>
concept SettingEnumeration = std::is_enum_v<T> && requires(T value, std::string_view text) {
    { rawValue(value) } -> std::convertible_to<std::string_view>;
    { caseFromRawValue(std::type_identity<T>{}, text) } -> std::same_as<std::optional<T>>;
};

// Holds nothing but the key and the default that stands for an absent or unusable value, and reads the store at each
// use, so that a change by anyone applies at once. The store must outlive the view; threads are the store's.
template <class T>
requires std::same_as<T, bool> || std::same_as<T, double> || SettingEnumeration<T>
class Setting {
public:
    Setting(UserDefaults& defaults, std::string key, T defaultValue)
        : defaults_(&defaults), key_(std::move(key)), default_(defaultValue) {}

    T value() const {
        const auto stored = defaults_->get(key_);
        return stored ? usable(*stored).value_or(default_) : default_;
    }

    void set(T value) {
        if constexpr (SettingEnumeration<T>)
            defaults_->set(key_, std::string(rawValue(value)));
        else
            defaults_->set(key_, value);
    }

private:
    static std::optional<T> usable(const UserDefaults::Value& stored) {
        if constexpr (SettingEnumeration<T>) {
            const auto* text = std::get_if<std::string>(&stored);
            return text ? caseFromRawValue(std::type_identity<T>{}, *text) : std::nullopt;
        } else {
            const T* value = std::get_if<T>(&stored);
            return value ? std::optional<T>(*value) : std::nullopt;
        }
    }

    UserDefaults* defaults_;
    std::string key_;
    T default_;
};

}  // namespace tarvix
