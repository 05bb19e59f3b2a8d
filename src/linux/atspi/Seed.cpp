#include "linux/atspi/Seed.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string_view>

#include "linux/atspi/Replies.h"

namespace tarvix::atspi {

namespace {

// One entry of GetItems; false at the end of the array or when it isn't what it should be.
bool readItem(sd_bus_message* m, Seed& seed) {
    const Inside item(m, 'r', "(so)(so)(so)iiassusau");
    if (!item) return false;
    const char *bus = nullptr, *path = nullptr, *ignored = nullptr, *parent = nullptr, *name = nullptr,
               *description = nullptr;
    std::int32_t index = 0, count = 0;
    std::uint32_t role = 0;
    if (sd_bus_message_read(m, "(so)(so)(so)ii", &bus, &path, &ignored, &ignored, &ignored, &parent, &index, &count) <=
        0)
        return false;
    const std::uint32_t interfaces = readInterfaces(m);
    if (sd_bus_message_read(m, "sus", &name, &role, &description) <= 0) return false;
    const std::optional<std::uint64_t> states = readStates(m);
    SeedItem& entry = seed[path];
    entry.role = static_cast<Role>(role);
    entry.states = states.value_or(0);
    entry.interfaces = interfaces;
    entry.childCount = count;
    entry.name = bounded(name, kLongestName);
    entry.description = bounded(description, kLongestName);
    SeedItem& above = seed[parent];
    above.children.push_back({bus, path});
    above.places.push_back(index);
    return true;
}

// False when it wasn't read.
bool readTreeProperty(sd_bus_message* m, std::string_view name, SeedItem& item) {
    if (name == "AccessibleId") {
        const std::optional<std::string> text = readVariantText(m);
        item.identifier = text.value_or("");
        return text.has_value();
    }
    if (name == "Attributes") {
        const Inside variant(m, 'v', "a{ss}");
        if (variant) item.attributes = readAttributes(m);
        return static_cast<bool>(variant);
    }
    if (name != "Component.ScreenExtents") return false;
    // Declared as unsigned; what lies left of or above the screen is negative all the same.
    const Inside variant(m, 'v', "(uuuu)");
    std::uint32_t x = 0, y = 0, width = 0, height = 0;
    if (variant && sd_bus_message_read(m, "(uuuu)", &x, &y, &width, &height) > 0)
        item.box = RawBox{static_cast<std::int32_t>(x), static_cast<std::int32_t>(y), static_cast<std::int32_t>(width),
                          static_cast<std::int32_t>(height)};
    return static_cast<bool>(variant);
}

bool readTreeEntry(sd_bus_message* m, Seed& seed) {
    const Inside entry(m, 'r', "(so)a{sv}");
    const char *bus = nullptr, *path = nullptr;
    if (!entry || sd_bus_message_read(m, "(so)", &bus, &path) <= 0) return false;
    const auto known = seed.find(path);
    SeedItem unknown;
    SeedItem& item = known == seed.end() ? unknown : known->second;
    item.hasBox = true;
    const Inside properties(m, 'a', "{sv}");
    while (properties) {
        const Inside pair(m, 'e', "sv");
        const char* name = nullptr;
        if (!pair || sd_bus_message_read(m, "s", &name) <= 0) break;
        // One that isn't what it should be is passed over, so that the others can be read.
        if (!readTreeProperty(m, name, item) && sd_bus_message_skip(m, "v") < 0) break;
    }
    return true;
}

// The reply has no order of its own; the index has, but for some children (menu items of GTK 3) it is -1. Those stay as
// they came.
void sortChildren(SeedItem& item) {
    if (std::any_of(item.places.begin(), item.places.end(), [](std::int32_t place) { return place < 0; })) return;
    std::vector<std::size_t> order(item.children.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return item.places[a] < item.places[b]; });
    std::vector<Reference> sorted;
    for (const std::size_t at : order) sorted.push_back(std::move(item.children[at]));
    item.children = std::move(sorted);
}

}  // namespace

Seed readItems(sd_bus_message* reply) {
    Seed seed;
    if (!reply) return seed;
    const Inside array(reply, 'a', "((so)(so)(so)iiassusau)");
    while (array && readItem(reply, seed)) {
    }
    for (auto& entry : seed) sortChildren(entry.second);
    return seed;
}

void addTree(sd_bus_message* reply, Seed& seed) {
    if (!reply) return;
    const Inside array(reply, 'a', "((so)a{sv})");
    while (array && readTreeEntry(reply, seed)) {
    }
}

}  // namespace tarvix::atspi
