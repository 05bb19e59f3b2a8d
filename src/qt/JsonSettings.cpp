#include "qt/JsonSettings.h"

#include <utility>
#include <vector>

namespace tarvix {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kDeepest = 64;  // what is read by a loop is written by recursion

// The object's own members as they stand between its commas and line ends, the latter because a comma may be what is
// missing. Brackets within a text count for nothing, and no text goes beyond its line.
std::vector<std::string> pieces(std::string_view text) {
    std::vector<std::string> all;
    std::string piece;
    int depth = 0;
    bool inText = false, escaped = false;
    const auto end = [&] { all.push_back(std::exchange(piece, {})); };
    for (const char c : text) {
        const bool wasEscaped = std::exchange(escaped, inText && c == '\\' && !escaped);
        if (c == '\n') inText = false;
        if (c == '"' && !wasEscaped) inText = !inText;
        if (inText) {
            piece += c;
            continue;
        }
        const bool isOwn = depth <= 1;
        if (c == '{' || c == '[') ++depth;
        if ((c == '}' || c == ']') && depth > 0) --depth;
        if (depth == 1 && isOwn && c == '{') {
            piece.clear();
        } else if (isOwn && (c == ',' || c == '\n' || c == '}')) {
            end();
        } else {
            piece += c;
        }
    }
    end();
    return all;
}

}  // namespace

std::optional<JsonSettings> JsonSettings::parse(std::string_view text) {
    bool tooDeep = false;
    Json read = Json::parse(
        text,
        [&](int depth, Json::parse_event_t, Json&) {
            if (depth > kDeepest) tooDeep = true;
            return !tooDeep;
        },
        false);
    if (tooDeep || !read.is_object()) return std::nullopt;
    JsonSettings settings;
    settings.members_ = std::move(read);
    return settings;
}

JsonSettings JsonSettings::salvage(std::string_view text) {
    JsonSettings settings;
    for (const std::string& piece : pieces(text))
        if (const auto read = parse("{" + piece + "}"))
            for (const auto& [key, value] : read->members_.items()) settings.members_[key] = value;
    return settings;
}

std::string JsonSettings::text() const {
    const auto dump = [](const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); };
    std::string text;
    for (const auto& [key, value] : members_.items())
        text += (text.empty() ? "    " : ",\n    ") + dump(key) + ": " + dump(value);
    return text.empty() ? "{}\n" : "{\n" + text + "\n}\n";
}

JsonSettings::Values JsonSettings::values() const {
    Values values;
    for (const auto& [key, value] : members_.items()) {
        if (value.is_boolean()) values.emplace(key, value.get<bool>());
        if (value.is_number()) values.emplace(key, value.get<double>());
        if (value.is_string()) values.emplace(key, value.get<std::string>());
    }
    return values;
}

void JsonSettings::set(std::string_view key, const UserDefaults::Value& value) {
    std::visit([&](const auto& plain) { members_[std::string(key)] = plain; }, value);
}

void JsonSettings::remove(std::string_view key) { members_.erase(std::string(key)); }

}  // namespace tarvix
