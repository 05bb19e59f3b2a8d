// A menu as it is told on the session bus (com.canonical.dbusmenu).
#pragma once

#include <QMetaType>
#include <QVariantMap>
#include <functional>
#include <vector>

#include "platform/Menu.h"

namespace tarvix {

// One entry. The menu itself is the entry 0, and the others are numbered as they stand, an entry before its submenu.
struct BusMenuEntry {
    QVariantMap properties;  // without those that have their usual value
    std::vector<int> children = {};
    std::function<void()> action = nullptr;
};

using BusMenuEntries = std::vector<BusMenuEntry>;

BusMenuEntries busMenuEntries(const Menu& menu);

// The entries that say something else than before. Only of two menus with the same structure.
std::vector<int> changedEntries(const BusMenuEntries& before, const BusMenuEntries& after);
bool haveSameStructure(const BusMenuEntries& a, const BusMenuEntries& b);

}  // namespace tarvix
