#include "qt/MarkerChanges.h"

#include <functional>
#include <unordered_map>

namespace tarvix {

namespace {

std::size_t hashOf(const MarkerDrawing& marker) {
    std::size_t hash = 0;
    const PanelRect& frame = marker.frame;
    for (const double number : {frame.origin.x, frame.origin.y, frame.size.width, frame.size.height, marker.alpha})
        hash = hash * 1000003 + std::hash<double>{}(number);
    return hash;
}

}  // namespace

MarkerChanges markerChanges(const std::vector<MarkerDrawing>& shown, const std::vector<MarkerDrawing>& next) {
    std::unordered_multimap<std::size_t, std::size_t> places;
    for (std::size_t i = 0; i < shown.size(); ++i) places.emplace(hashOf(shown[i]), i);

    // A marker stays where it is found again behind the last one that stayed: so those that stay keep their order.
    MarkerChanges changes;
    std::vector<bool> stays(shown.size(), false);
    std::size_t from = 0;
    for (std::size_t i = 0; i < next.size(); ++i) {
        std::size_t found = shown.size();
        const auto [first, last] = places.equal_range(hashOf(next[i]));
        for (auto place = first; place != last; ++place)
            if (place->second >= from && place->second < found && shown[place->second] == next[i])
                found = place->second;
        if (found == shown.size()) {
            changes.come.push_back(i);
        } else {
            stays[found] = true;
            from = found + 1;
        }
    }
    for (std::size_t i = 0; i < shown.size(); ++i)
        if (!stays[i]) changes.gone.push_back(i);
    return changes;
}

}  // namespace tarvix
