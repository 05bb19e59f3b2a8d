// What an application tells of all its objects in one call.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "linux/atspi/Node.h"
#include "linux/atspi/SdBus.h"

namespace tarvix::atspi {

// One object of Cache.GetItems, and of Collection.GetTree where that was asked too.
struct SeedItem {
    Role role = Role::invalid;
    std::uint64_t states = 0;
    std::uint32_t interfaces = 0;
    std::int32_t childCount = 0;
    std::string name, description;
    std::vector<Reference> children;   // those that the reply holds, in the application's order
    std::vector<std::int32_t> places;  // their indices in their parent, as the reply came

    std::string identifier;
    std::vector<std::pair<std::string, std::string>> attributes;
    bool hasBox = false;  // the box has been asked for; absent then, there is none
    std::optional<RawBox> box;
};

// By object path, for the objects of the application itself.
using Seed = std::unordered_map<std::string, SeedItem>;

// Reads the reply of Cache.GetItems: a((so)(so)(so)iiassusau). Objects of a table that manages its own cells are never
// in it. The index in it is -1 for some children (menu items of GTK 3), so that the reply's order is the children's.
Seed readItems(sd_bus_message* reply);

// Adds what Collection.GetTree tells: a((so)a{sv}) with AccessibleId, Attributes and Component.ScreenExtents.
void addTree(sd_bus_message* reply, Seed& seed);

}  // namespace tarvix::atspi
