// The status item as it tells of itself on the session bus (org.kde.StatusNotifierItem).
#pragma once

#include <QPoint>
#include <functional>

#include "platform/StatusBar.h"
#include "qt/BusMenu.h"
#include "qt/BusObject.h"
#include "qt/NotifierWatcher.h"

namespace tarvix {

// What a click on the item asks for, where the panel doesn't deal with it itself.
struct StatusItemClicks {
    std::function<void(QPoint where)> opensMenu;
    std::function<void()> removes;
};

// Main thread. Registered for as long as it lives.
class NotifierItem : public BusObject {
public:
    // The menu and the watcher must outlive it. `isOnDark`: the panel is likely to be dark. `refused` is called when
    // the watcher won't have it.
    NotifierItem(NotifierWatcher& watcher, StatusMenu& menu, const StatusButton& button, bool isOnDark,
                 StatusItemClicks clicks, std::function<void()> refused);
    ~NotifierItem() override;

    void setIsOnDark(bool isOnDark);
    // The menu says something else than before.
    void menuIsChanged() { busMenu_.refresh(); }

private:
    QVariantMap properties() const override;
    void requestName(std::function<void()> refused);
    Answer opensMenu(const QVariantList& arguments);

    NotifierWatcher& watcher_;
    StatusItemClicks clicks_;
    QString busName_;
    BusMenu busMenu_;
    StatusButton button_;
    bool isOnDark_;
    QVariant pixmaps_;  // drawn beforehand: searches ask for properties too
};

}  // namespace tarvix
