// The items of the tray that tell of themselves on the session bus (org.kde.StatusNotifierItem).
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "linux/atspi/SdBus.h"
#include "linux/atspi/TrayNames.h"

namespace tarvix::atspi {

// Any thread.
class StatusNotifiers {
public:
    // Those that are registered with the desktop's watcher. One that doesn't answer goes by what it has told before;
    // the first time that costs a seventh of a second, later on next to nothing.
    std::vector<NotifierItem> items();
    // The order in which Xfce's panel keeps its items; as it was before where its settings can't be read just now, and
    // absent where they never could.
    std::optional<TrayOrder> xfceOrder();

private:
    using Key = std::pair<std::string, std::string>;  // bus name and path

    std::mutex mutex_;
    std::vector<Key> registered_;
    std::map<Key, NotifierItem> known_;
    std::set<Key> silent_;
    std::optional<TrayOrder> order_;
};

// What the settings of Xfce's panel say of its tray: a{sv}, the reply of GetAllProperties below "/plugins".
std::optional<TrayOrder> readXfceOrder(sd_bus_message* reply);
// The name of the bus and the path of an item as it was registered, "name/path" or the name alone.
std::pair<std::string, std::string> splitRegistered(const std::string& registered);

}  // namespace tarvix::atspi
