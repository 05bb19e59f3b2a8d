#include "search/SearchEngine.h"

#include <algorithm>
#include <array>
#include <vector>

#include "platform/Accessibility.h"
#include "platform/UserDefaults.h"
#include "platform/WindowServer.h"
#include "platform/Workspace.h"

namespace tarvix {

namespace {

constexpr auto trafficLightSubroles =
    std::to_array<std::string_view>({"AXCloseButton", "AXMinimizeButton", "AXFullScreenButton", "AXZoomButton"});

// A browser's tabs and address controls.
constexpr auto browserChromeIdentifiers =
    std::to_array<std::string_view>({"WEB_BROWSER_ADDRESS_AND_SEARCH_FIELD", "UnifiedTabBarItemView?isSelected=false",
                                     "UnifiedTabBarItemView?isSelected=true", "UnifedTabBarButton._titleTextField",
                                     "TabBarTab?isPinned=false", "TabBarTab?isPinned=true", "CloseTabBarItemButton"});

template <std::size_t N>
bool isOneOf(const std::array<std::string_view, N>& names, const std::optional<std::string>& text) {
    return std::find(names.begin(), names.end(), text.value_or("")) != names.end();
}

OrderedSet<AccessibilityElement> alone(const AccessibilityElement& element) { return {element}; }

}  // namespace

SearchEngine::SearchEngine(const Platform& platform)
    : searchIncludesTrafficLightButtons_(platform.userDefaults, {"searchIncludesTrafficLightButtons", false}),
      fuzzyMatchingFlavor_(platform.userDefaults, {"fuzzyMatchingFlavor", FuzzyMatchingFlavor::tarvixClassic}),
      ignoreSafariTabsAndURLs_(platform.userDefaults, {"ignoreSafariTabsAndURLs", false}),
      axEngine_(platform.accessibility, platform.workspace),
      windowServer_(platform.windowServer) {}

OrderedSet<AccessibilityElement> SearchEngine::candidates(std::int32_t pid) const {
    if (!windowServer_.onScreenWindows()) return {};
    return windowElements(pid);
}

OrderedSet<AccessibilityElement> SearchEngine::windowElements(std::int32_t pid) const {
    OrderedSet<AccessibilityElement> all = axEngine_.frontmostWindowElements(pid);
    const bool dropsTrafficLights = !searchIncludesTrafficLightButtons_.value();
    const bool dropsBrowserChrome = ignoreSafariTabsAndURLs_.value();
    if (!dropsTrafficLights && !dropsBrowserChrome) return all;
    std::vector<std::uint32_t> kept;
    for (std::uint32_t place = 0; place < all.size(); ++place) {
        const AccessibilityElement& element = all[place];
        if (dropsTrafficLights && isOneOf(trafficLightSubroles, element.subrole)) continue;
        if (dropsBrowserChrome && isOneOf(browserChromeIdentifiers, element.identifier)) continue;
        kept.push_back(place);
    }
    return all.subset(kept);
}

void SearchEngine::prepare(const OrderedSet<AccessibilityElement>& candidates) const { indexOf(candidates); }

std::shared_ptr<const MatchIndex> SearchEngine::indexOf(const OrderedSet<AccessibilityElement>& candidates) const {
    {
        const std::lock_guard lock(latest_->mutex);
        if (latest_->index && latest_->stamp == candidates.stamp()) return latest_->index;
    }
    auto index = std::make_shared<const MatchIndex>(candidates);
    const std::lock_guard lock(latest_->mutex);
    latest_->stamp = candidates.stamp();
    latest_->index = index;
    return index;
}

OrderedSet<AccessibilityElement> SearchEngine::filteredElements(const OrderedSet<AccessibilityElement>& candidates,
                                                                std::string_view query) const {
    if (query.empty() || candidates.empty()) return {};
    if (query == "*") return candidates;
    const std::shared_ptr<const MatchIndex> index = indexOf(candidates);
    const bool isClassic = fuzzyMatchingFlavor_.value() == FuzzyMatchingFlavor::tarvixClassic;
    return candidates.subset(isClassic ? index->classic(query) : index->extended(query));
}

bool matchesClassic(const AccessibilityElement& element, std::string_view query) {
    return !MatchIndex(alone(element)).classic(query).empty();
}

bool matchesExtended(const AccessibilityElement& element, std::string_view query) {
    return !MatchIndex(alone(element)).extended(query).empty();
}

}  // namespace tarvix
