#include "linux/atspi/TrayNames.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace tarvix::atspi {

namespace {

using Indices = std::vector<std::size_t>;

// Where an item stands in the panel's order.
std::optional<std::size_t> rankOf(const NotifierItem& item, const std::vector<std::string>& known) {
    for (const std::string* name : {&item.id, &item.title})
        if (const auto found = std::ranges::find(known, *name); !name->empty() && found != known.end())
            return static_cast<std::size_t>(found - known.begin());
    return std::nullopt;
}

// The items in the panel's order; absent when it doesn't know one of them.
std::optional<Indices> sorted(Indices which, const std::vector<NotifierItem>& items,
                              const std::vector<std::string>& known) {
    const auto rank = [&](std::size_t i) { return rankOf(items[i], known); };
    if (!std::ranges::all_of(which, [&](std::size_t i) { return rank(i).has_value(); })) return std::nullopt;
    std::ranges::stable_sort(which, {}, [&](std::size_t i) { return *rank(i); });
    return which;
}

bool isHidden(const NotifierItem& item, const TrayOrder& order) {
    return std::ranges::count(order.hidden, item.id) > 0 || std::ranges::count(order.hidden, item.title) > 0;
}

}  // namespace

std::vector<std::vector<std::size_t>> itemsOfButtons(const std::vector<bool>& buttonShows,
                                                     const std::vector<NotifierItem>& items,
                                                     const std::optional<TrayOrder>& order) {
    Indices all(items.size()), buttons(buttonShows.size()), shown;
    std::iota(all.begin(), all.end(), 0);
    std::iota(buttons.begin(), buttons.end(), 0);
    std::ranges::copy_if(buttons, std::back_inserter(shown), [&](std::size_t b) { return buttonShows[b]; });

    std::vector<Indices> result(buttonShows.size());
    const auto pair = [&](const Indices& toButtons, const Indices& these) {
        for (std::size_t i = 0; i < these.size(); ++i)
            for (const std::size_t other : these)
                if (buttonShows[toButtons[i]] && items[other].id == items[these[i]].id)
                    result[toButtons[i]].push_back(other);
    };
    const auto left = [&](auto isLeftOut) {
        Indices rest;
        std::ranges::copy_if(all, std::back_inserter(rest), [&](std::size_t i) { return !isLeftOut(items[i]); });
        return rest;
    };

    const TrayOrder known = order.value_or(TrayOrder{});
    const auto hides = [&](const NotifierItem& item) { return isHidden(item, known); };
    const auto isPassive = [](const NotifierItem& item) { return item.isPassive; };
    // A panel may keep the buttons of hidden items, and of passive ones, or not have any for them.
    for (const Indices& these : {all, left(hides), left(isPassive),
                                 left([&](const NotifierItem& item) { return hides(item) || item.isPassive; })}) {
        std::optional<Indices> inOrder = order ? sorted(these, items, order->known) : std::nullopt;
        if (!inOrder && these.size() == 1) inOrder = these;
        if (!inOrder) continue;
        for (const Indices* each : {&buttons, &shown}) {
            if (each->size() != inOrder->size()) continue;
            pair(*each, *inOrder);
            return result;
        }
    }
    for (const std::size_t button : shown) result[button] = all;
    return result;
}

}  // namespace tarvix::atspi
