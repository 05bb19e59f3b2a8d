#include "linux/desktops/OpenboxShortcuts.h"

#include <array>
#include <pugixml.hpp>

#include "linux/desktops/KeyNames.h"
#include "platform/Modifiers.h"

namespace tarvix {

namespace {

constexpr auto kModifiers = std::to_array<ModifierName>({
    {"C", carbonModifier::control},
    {"Control", carbonModifier::control},
    {"S", carbonModifier::shift},
    {"Shift", carbonModifier::shift},
    {"A", carbonModifier::option},
    {"Mod1", carbonModifier::option},
    {"M", carbonModifier::option},
    {"W", carbonModifier::command},
    {"Mod4", carbonModifier::command},
    {"H", carbonModifier::command},
});

}  // namespace

DesktopShortcuts openboxShortcuts(std::string_view xml) {
    pugi::xml_document document;
    document.load_buffer(xml.data(), xml.size());
    DesktopShortcuts shortcuts;
    for (const pugi::xml_node& keybind : document.child("openbox_config").child("keyboard").children("keybind"))
        for (const std::string_view key : wordsOf(keybind.attribute("key").value()))
            if (const auto shortcut = shortcutOfParts(key, '-', kModifiers)) shortcuts.push_back(*shortcut);
    return shortcuts;
}

}  // namespace tarvix
