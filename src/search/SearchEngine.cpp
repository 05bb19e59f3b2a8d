#include "search/SearchEngine.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "platform/RunLoop.h"
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

// What tells that the menu bar and the dock are on the screen.
constexpr int kStatusItemLayer = 25;
constexpr std::string_view kDockOwner = "Dock";

template <std::size_t N>
bool isOneOf(const std::array<std::string_view, N>& names, const std::optional<std::string>& text) {
    return std::find(names.begin(), names.end(), text.value_or("")) != names.end();
}

OrderedSet<AccessibilityElement> alone(const AccessibilityElement& element) { return {element}; }

}  // namespace

SearchEngine::SearchEngine(const Platform& platform)
    : searchIncludesAppMenus_(platform.userDefaults, {"searchIncludesAppMenus", true}),
      searchIncludesStatusItems_(platform.userDefaults, {"searchIncludesStatusItems", true}),
      searchIncludesNotifications_(platform.userDefaults, {"searchIncludesNotifications", true}),
      searchIncludesDock_(platform.userDefaults, {"searchIncludesDock", false}),
      searchIncludesTrafficLightButtons_(platform.userDefaults, {"searchIncludesTrafficLightButtons", false}),
      fuzzyMatchingFlavor_(platform.userDefaults, {"fuzzyMatchingFlavor", FuzzyMatchingFlavor::tarvixClassic}),
      ignoreSafariTabsAndURLs_(platform.userDefaults, {"ignoreSafariTabsAndURLs", false}),
      axEngine_(platform),
      windowServer_(platform.windowServer),
      runLoop_(platform.runLoop) {}

// The sources are joined in their order, whichever of them is the first to end.
OrderedSet<AccessibilityElement> SearchEngine::candidates(std::int32_t pid) const {
    const std::optional<std::vector<WindowInfo>> windowList = windowServer_.onScreenWindows();
    if (!windowList) return {};
    const std::vector<Source> all = sources(*windowList, pid);
    std::vector<OrderedSet<AccessibilityElement>> found(all.size());
    std::vector<std::function<void()>> bodies;
    for (std::size_t i = 0; i < all.size(); ++i) bodies.emplace_back([&, i] { found[i] = all[i](); });
    runLoop_.concurrently(std::move(bodies));
    OrderedSet<AccessibilityElement> candidates;
    for (OrderedSet<AccessibilityElement>& each : found) candidates.unite(std::move(each));
    return candidates;
}

// Only those that are asked: what is off, or not on the screen, doesn't cost a thread.
std::vector<SearchEngine::Source> SearchEngine::sources(std::span<const WindowInfo> windowList,
                                                        std::int32_t pid) const {
    const bool menuBarOnScreen =
        std::ranges::any_of(windowList, [](const WindowInfo& window) { return window.layer == kStatusItemLayer; });
    const bool dockOnScreen =
        std::ranges::any_of(windowList, [](const WindowInfo& window) { return window.ownerName == kDockOwner; });
    std::vector<Source> asked;
    if (searchIncludesAppMenus_.value() && menuBarOnScreen)
        asked.emplace_back([this] { return axEngine_.appMenuElements(); });
    if (searchIncludesStatusItems_.value() && menuBarOnScreen)
        asked.emplace_back([this, windowList] { return axEngine_.statusItemElements(windowList); });
    if (searchIncludesNotifications_.value()) asked.emplace_back([this] { return axEngine_.notificationElements(); });
    if (searchIncludesDock_.value() && dockOnScreen) asked.emplace_back([this] { return axEngine_.dockElements(); });
    asked.emplace_back([this, pid] { return windowElements(pid); });
    return asked;
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
