// The status item's menu on the session bus, where the panel that shows the item reads it (com.canonical.dbusmenu).
#pragma once

#include "qt/BusMenuEntries.h"
#include "qt/BusObject.h"
#include "qt/StatusMenu.h"

namespace tarvix {

// Main thread. It brings the menu up to date each time that somebody is about to show it. Actions run in a later pass
// of the loop.
class BusMenu : public BusObject {
public:
    // The menu must outlive it.
    BusMenu(QDBusConnection bus, QString path, StatusMenu& menu);

    // Tells of what has changed in the menu; whether anything has.
    bool refresh();

private:
    QVariantMap properties() const override;
    Answer layout(const QVariantList& arguments);
    Answer groupProperties(const QVariantList& arguments) const;
    Answer property(const QVariantList& arguments) const;
    Answer aboutToShow(const QVariantList& arguments);
    Answer aboutToShowGroup(const QVariantList& arguments);
    Answer event(const QVariantList& arguments);
    Answer eventGroup(const QVariantList& arguments);
    void tellChanges(const BusMenuEntries& before, const std::vector<int>& changed);
    void happened(int id, const QString& what);
    bool has(int id) const { return id >= 0 && static_cast<std::size_t>(id) < entries_.size(); }
    const BusMenuEntry& at(int id) const { return entries_[static_cast<std::size_t>(id)]; }

    StatusMenu& menu_;
    BusMenuEntries entries_;
    uint revision_ = 1;
};

}  // namespace tarvix
