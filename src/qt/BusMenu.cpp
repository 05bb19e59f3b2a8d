#include "qt/BusMenu.h"

#include <QTimer>
#include <utility>

#include "qt/BusMenuTypes.h"

namespace tarvix {

namespace {

constexpr auto kInterface = "com.canonical.dbusmenu";
constexpr uint kVersion = 3;
constexpr int kWholeMenu = 0;

constexpr auto kDescription = R"xml(  <interface name="com.canonical.dbusmenu">
    <property name="Version" type="u" access="read"/>
    <property name="TextDirection" type="s" access="read"/>
    <property name="Status" type="s" access="read"/>
    <property name="IconThemePath" type="as" access="read"/>
    <method name="GetLayout">
      <arg type="i" name="parentId" direction="in"/>
      <arg type="i" name="recursionDepth" direction="in"/>
      <arg type="as" name="propertyNames" direction="in"/>
      <arg type="u" name="revision" direction="out"/>
      <arg type="(ia{sv}av)" name="layout" direction="out"/>
    </method>
    <method name="GetGroupProperties">
      <arg type="ai" name="ids" direction="in"/>
      <arg type="as" name="propertyNames" direction="in"/>
      <arg type="a(ia{sv})" name="properties" direction="out"/>
    </method>
    <method name="GetProperty">
      <arg type="i" name="id" direction="in"/>
      <arg type="s" name="name" direction="in"/>
      <arg type="v" name="value" direction="out"/>
    </method>
    <method name="Event">
      <arg type="i" name="id" direction="in"/>
      <arg type="s" name="eventId" direction="in"/>
      <arg type="v" name="data" direction="in"/>
      <arg type="u" name="timestamp" direction="in"/>
    </method>
    <method name="EventGroup">
      <arg type="a(isvu)" name="events" direction="in"/>
      <arg type="ai" name="idErrors" direction="out"/>
    </method>
    <method name="AboutToShow">
      <arg type="i" name="id" direction="in"/>
      <arg type="b" name="needUpdate" direction="out"/>
    </method>
    <method name="AboutToShowGroup">
      <arg type="ai" name="ids" direction="in"/>
      <arg type="ai" name="updatesNeeded" direction="out"/>
      <arg type="ai" name="idErrors" direction="out"/>
    </method>
    <signal name="ItemsPropertiesUpdated">
      <arg type="a(ia{sv})" name="updatedProps"/>
      <arg type="a(ias)" name="removedProps"/>
    </signal>
    <signal name="LayoutUpdated">
      <arg type="u" name="revision"/>
      <arg type="i" name="parent"/>
    </signal>
  </interface>
)xml";

// Those of certain names, and all when none is named.
QVariantMap selected(const QVariantMap& properties, const QStringList& names) {
    if (names.isEmpty()) return properties;
    QVariantMap some;
    for (const QString& name : names)
        if (properties.contains(name)) some[name] = properties[name];
    return some;
}

// `depth` levels below the entry; all of them when it is negative.
BusMenuLayout layoutOf(const BusMenuEntries& entries, int id, int depth, const QStringList& names) {
    const BusMenuEntry& entry = entries[static_cast<std::size_t>(id)];
    BusMenuLayout layout{id, selected(entry.properties, names), {}};
    if (depth == 0) return layout;
    for (const int child : entry.children)
        layout.children << QDBusVariant(QVariant::fromValue(layoutOf(entries, child, depth - 1, names)));
    return layout;
}

}  // namespace

BusMenu::BusMenu(QDBusConnection bus, QString path, StatusMenu& menu)
    : BusObject(std::move(bus), std::move(path), kInterface, kDescription),
      menu_(menu),
      entries_(busMenuEntries(menu.refreshed())) {
    registerBusMenuTypes();
    const auto by = [this](auto operation) {
        return [this, operation](const QVariantList& arguments) { return (this->*operation)(arguments); };
    };
    setMethods({{"GetLayout", {"iias", by(&BusMenu::layout)}},
                {"GetGroupProperties", {"aias", by(&BusMenu::groupProperties)}},
                {"GetProperty", {"is", by(&BusMenu::property)}},
                {"AboutToShow", {"i", by(&BusMenu::aboutToShow)}},
                {"AboutToShowGroup", {"ai", by(&BusMenu::aboutToShowGroup)}},
                {"Event", {"isvu", by(&BusMenu::event)}},
                {"EventGroup", {"a(isvu)", by(&BusMenu::eventGroup)}}});
}

QVariantMap BusMenu::properties() const {
    return {{"Version", kVersion}, {"TextDirection", "ltr"}, {"Status", "normal"}, {"IconThemePath", QStringList()}};
}

bool BusMenu::refresh() {
    const BusMenuEntries before = std::exchange(entries_, busMenuEntries(menu_.refreshed()));
    if (!haveSameStructure(before, entries_)) {
        tell("LayoutUpdated", {++revision_, kWholeMenu});
        return true;
    }
    const std::vector<int> changed = changedEntries(before, entries_);
    if (!changed.empty()) tellChanges(before, changed);
    return !changed.empty();
}

void BusMenu::tellChanges(const BusMenuEntries& before, const std::vector<int>& changed) {
    QList<BusMenuProperties> updated;
    QList<BusMenuNames> removed;
    for (const int id : changed) {
        updated << BusMenuProperties{id, at(id).properties};
        QStringList gone;
        for (const QString& name : before[static_cast<std::size_t>(id)].properties.keys())
            if (!at(id).properties.contains(name)) gone << name;
        if (!gone.isEmpty()) removed << BusMenuNames{id, gone};
    }
    ++revision_;
    tell("ItemsPropertiesUpdated", {QVariant::fromValue(updated), QVariant::fromValue(removed)});
}

// Some panels read the whole menu once and show that at once when it is opened.
BusMenu::Answer BusMenu::layout(const QVariantList& arguments) {
    const int id = arguments[0].toInt();
    if (id == kWholeMenu) refresh();
    if (!has(id)) return std::nullopt;
    const auto names = arguments[2].toStringList();
    return QVariantList{revision_, QVariant::fromValue(layoutOf(entries_, id, arguments[1].toInt(), names))};
}

BusMenu::Answer BusMenu::groupProperties(const QVariantList& arguments) const {
    QList<BusMenuProperties> found;
    const auto names = arguments[1].toStringList();
    for (const int id : qdbus_cast<QList<int>>(arguments[0]))
        if (has(id)) found << BusMenuProperties{id, selected(at(id).properties, names)};
    return QVariantList{QVariant::fromValue(found)};
}

BusMenu::Answer BusMenu::property(const QVariantList& arguments) const {
    const int id = arguments[0].toInt();
    const QString name = arguments[1].toString();
    if (!has(id) || !at(id).properties.contains(name)) return std::nullopt;
    return QVariantList{QVariant::fromValue(QDBusVariant(at(id).properties[name]))};
}

BusMenu::Answer BusMenu::aboutToShow(const QVariantList& arguments) {
    if (!has(arguments[0].toInt())) return std::nullopt;
    return QVariantList{arguments[0].toInt() == kWholeMenu && refresh()};
}

BusMenu::Answer BusMenu::aboutToShowGroup(const QVariantList& arguments) {
    QList<int> needed, unknown;
    for (const int id : qdbus_cast<QList<int>>(arguments[0])) {
        if (!has(id)) unknown << id;
        if (id == kWholeMenu && refresh()) needed << id;
    }
    return QVariantList{QVariant::fromValue(needed), QVariant::fromValue(unknown)};
}

BusMenu::Answer BusMenu::event(const QVariantList& arguments) {
    const int id = arguments[0].toInt();
    if (!has(id)) return std::nullopt;
    happened(id, arguments[1].toString());
    return QVariantList{};
}

BusMenu::Answer BusMenu::eventGroup(const QVariantList& arguments) {
    QList<int> unknown;
    for (const BusMenuEvent& each : qdbus_cast<QList<BusMenuEvent>>(arguments[0])) {
        if (has(each.id))
            happened(each.id, each.what);
        else
            unknown << each.id;
    }
    return QVariantList{QVariant::fromValue(unknown)};
}

// Panels that never ask whether the menu needs an update tell at least of its opening.
void BusMenu::happened(int id, const QString& what) {
    if (what == "opened" && id == kWholeMenu) refresh();
    if (what == "clicked" && at(id).action) QTimer::singleShot(0, this, at(id).action);
}

}  // namespace tarvix
