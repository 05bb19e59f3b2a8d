#include "KeyboardShortcuts/Shortcut.h"

#include <limits>
#include <nlohmann/json.hpp>

namespace tarvix {

namespace {

constexpr const char* keyCodeMember = "carbonKeyCode";
constexpr const char* modifiersMember = "carbonModifiers";

std::optional<std::uint32_t> integerMember(const nlohmann::json& object, const char* name) {
    const auto member = object.find(name);
    if (member == object.end() || !member->is_number_unsigned()) return std::nullopt;
    const auto value = member->get<std::uint64_t>();
    if (value > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
    return static_cast<std::uint32_t>(value);
}

}  // namespace

std::string encoded(const Shortcut& shortcut) {
    return nlohmann::json{{keyCodeMember, shortcut.carbonKeyCode}, {modifiersMember, shortcut.carbonModifiers}}.dump();
}

std::optional<Shortcut> decodedShortcut(std::string_view text) {
    const auto json = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (!json.is_object()) return std::nullopt;
    const auto keyCode = integerMember(json, keyCodeMember);
    const auto modifiers = integerMember(json, modifiersMember);
    if (!keyCode || !modifiers) return std::nullopt;
    return Shortcut{*keyCode, *modifiers};
}

}  // namespace tarvix
