// A typed view on one key of the user defaults.
#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "platform/UserDefaults.h"
#include "shell/SettingsTable.h"

namespace tarvix {

template <class T>
concept SettingType = std::same_as<T, bool> || std::same_as<T, double> || SettingEnumeration<T>;

// The key with the default that stands for an absent or unusable value, as literals at the view. What isn't in the
// table of settings doesn't compile.
template <SettingType T>
struct SettingKey {
    consteval SettingKey(std::string_view theKey, T theDefault) : key(theKey), defaultValue(theDefault) {
        if (!isInSettingsTable(theKey, theDefault)) throw "no such setting, or another type or default";
    }

    std::string_view key;
    T defaultValue;
};

// Reads the store at each use, so that a change by anyone applies at once. The store must outlive the view; threads are
// the store's.
template <SettingType T>
class Setting {
public:
    Setting(UserDefaults& defaults, SettingKey<T> key) : defaults_(&defaults), key_(key) {}

    T value() const {
        const auto stored = defaults_->get(key_.key);
        return stored ? usable(*stored).value_or(key_.defaultValue) : key_.defaultValue;
    }

    void set(T value) {
        if constexpr (SettingEnumeration<T>)
            defaults_->set(key_.key, std::string(rawValue(value)));
        else
            defaults_->set(key_.key, value);
    }

    // Whether the store holds anything under the key, usable or not.
    bool isStored() const { return defaults_->get(key_.key).has_value(); }

private:
    static std::optional<T> usable(const UserDefaults::Value& stored) {
        if constexpr (SettingEnumeration<T>) {
            const auto* text = std::get_if<std::string>(&stored);
            return text ? caseFromRawValue<T>(*text) : std::nullopt;
        } else {
            const T* value = std::get_if<T>(&stored);
            return value ? std::optional<T>(*value) : std::nullopt;
        }
    }

    UserDefaults* defaults_;
    SettingKey<T> key_;
};

}  // namespace tarvix
