#include "linux/desktops/XfceShortcuts.h"

#include <algorithm>
#include <array>
#include <map>
#include <pugixml.hpp>
#include <string>

#include "linux/desktops/KeyNames.h"

namespace tarvix {

namespace {

constexpr auto kWhileMoving =
    std::to_array<std::string_view>({"cancel_key", "left_key", "right_key", "up_key", "down_key"});

// What is set below commands/default and the like: the names of keys and what they do.
using Properties = std::map<std::string, std::string, std::less<>>;

// A property of type "empty" has no value of its own; the other file's stands.
void readProperties(const pugi::xml_node& group, Properties& into) {
    for (const pugi::xml_node& property : group.children("property"))
        if (std::string_view(property.attribute("type").value()) != "empty")
            into.insert_or_assign(property.attribute("name").value(), property.attribute("value").value());
}

pugi::xml_node propertyNamed(const pugi::xml_node& in, const char* name) {
    return in.find_child_by_attribute("property", "name", name);
}

DesktopShortcuts shortcutsOf(const Properties& properties) {
    DesktopShortcuts shortcuts;
    for (const auto& [name, action] : properties) {
        if (action.empty() || std::ranges::count(kWhileMoving, action) > 0) continue;
        if (const auto shortcut = gtkAccelerator(name)) shortcuts.push_back(*shortcut);
    }
    return shortcuts;
}

}  // namespace

DesktopShortcuts xfceShortcuts(std::string_view userXml, std::string_view systemXml) {
    std::array<pugi::xml_document, 2> files;
    files[0].load_buffer(systemXml.data(), systemXml.size());
    files[1].load_buffer(userXml.data(), userXml.size());
    DesktopShortcuts shortcuts;
    for (const char* owner : {"commands", "xfwm4"}) {
        Properties byDefault, custom;
        for (const auto& file : files) {
            const pugi::xml_node group = propertyNamed(file.child("channel"), owner);
            readProperties(propertyNamed(group, "default"), byDefault);
            readProperties(propertyNamed(group, "custom"), custom);
        }
        // The user's own list, once there is one, takes the place of the whole default.
        const auto override = custom.find("override");
        const bool isCustom = override != custom.end() && override->second == "true";
        if (override != custom.end()) custom.erase(override);
        const DesktopShortcuts found = shortcutsOf(isCustom ? custom : byDefault);
        shortcuts.insert(shortcuts.end(), found.begin(), found.end());
    }
    return shortcuts;
}

}  // namespace tarvix
