// The text of the settings file: a flat JSON object.
#pragma once

#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "platform/UserDefaults.h"

namespace tarvix {

// Members keep their order, and those of kinds that settings don't have (lists, objects, null) stay as they are.
class JsonSettings {
public:
    using Values = std::map<std::string, UserDefaults::Value, std::less<>>;

    // Absent for everything but one JSON object, and for one that is nested too deeply to be the settings.
    static std::optional<JsonSettings> parse(std::string_view text);
    // The members of a damaged text that can be read by themselves.
    static JsonSettings salvage(std::string_view text);

    // One member a line, so that a line that is damaged takes no other with it.
    std::string text() const;
    // Bools, numbers and texts.
    Values values() const;
    std::size_t size() const { return members_.size(); }

    void set(std::string_view key, const UserDefaults::Value& value);
    void remove(std::string_view key);

    friend bool operator==(const JsonSettings&, const JsonSettings&) = default;

private:
    nlohmann::ordered_json members_ = nlohmann::ordered_json::object();
};

}  // namespace tarvix
