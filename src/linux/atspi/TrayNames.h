// Which of a panel's nameless buttons stands for which item of the tray.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tarvix::atspi {

// An item as its application tells of itself (org.kde.StatusNotifierItem).
struct NotifierItem {
    std::string bus, path;
    std::string id, title, toolTip;
    bool isPassive = false;  // it has nothing to tell at present, and most panels hide it

    // What a person would call it.
    const std::string& name() const { return title.empty() ? id : title; }
};

// The order in which a panel keeps its items, by their ids, and those that it doesn't show.
struct TrayOrder {
    std::vector<std::string> known, hidden;
};

// For each button, in the panel's order, the items that it may stand for, as indices: one where that is certain, all
// that are left where it isn't, so that a search never names another item's button alone. None for a button that
// doesn't show. Items that go by one id aren't told apart.
std::vector<std::vector<std::size_t>> itemsOfButtons(const std::vector<bool>& buttonShows,
                                                     const std::vector<NotifierItem>& items,
                                                     const std::optional<TrayOrder>& order);

}  // namespace tarvix::atspi
