#include "qt/BusMenuEntries.h"

#include <QList>
#include <QStringList>
#include <algorithm>
#include <cstddef>

#include "qt/MenuKeys.h"

namespace tarvix {

namespace {

// An underscore stands before the letter that a menu underlines.
QString labelOf(const MenuItem& item) { return QString::fromStdString(item.title).replace("_", "__"); }

QVariantMap propertiesOf(const MenuItem& item) {
    if (item.title.empty()) return {{"type", "separator"}};
    QVariantMap properties{{"label", labelOf(item)}};
    if (!item.action && item.submenu.empty()) properties["enabled"] = false;
    if (!item.submenu.empty()) properties["children-display"] = "submenu";
    if (const QStringList keys = keyNamesOf(item); !keys.isEmpty())
        properties["shortcut"] = QVariant::fromValue(QList<QStringList>{keys});
    return properties;
}

void add(BusMenuEntries& entries, std::size_t parent, const Menu& menu) {
    for (const MenuItem& item : menu) {
        const std::size_t id = entries.size();
        entries.push_back({propertiesOf(item), {}, item.action});
        entries[parent].children.push_back(static_cast<int>(id));
        add(entries, id, item.submenu);
    }
}

}  // namespace

BusMenuEntries busMenuEntries(const Menu& menu) {
    BusMenuEntries entries;
    entries.push_back({{{"children-display", "submenu"}}});
    add(entries, 0, menu);
    return entries;
}

std::vector<int> changedEntries(const BusMenuEntries& before, const BusMenuEntries& after) {
    std::vector<int> changed;
    for (std::size_t id = 0; id < after.size(); ++id)
        if (before[id].properties != after[id].properties) changed.push_back(static_cast<int>(id));
    return changed;
}

bool haveSameStructure(const BusMenuEntries& a, const BusMenuEntries& b) {
    return std::ranges::equal(a, b, {}, &BusMenuEntry::children, &BusMenuEntry::children);
}

}  // namespace tarvix
