// What a search goes through, and what matches a query.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string_view>
#include <vector>

#include "ax/AXEngine2.h"
#include "ax/AccessibilityElement.h"
#include "base/OrderedSet.h"
#include "platform/Platform.h"
#include "search/MatchIndex.h"
#include "shell/Setting.h"

namespace tarvix {

// The settings are read at each use. Any thread.
class SearchEngine {
public:
    explicit SearchEngine(const Platform& platform);

    // Everything that may become a Target: application menus, status items, notifications and dock items, as far as the
    // settings say so and they are on the screen, and last the focused window of a process, in the order of its tree;
    // -1 stands for no process. Of equal elements the first stays. Empty where the window server can't say what is on
    // the screen. Blocks until the slowest of the applications has answered; for a background thread.
    OrderedSet<AccessibilityElement> candidates(std::int32_t pid) const;

    // Brings a list of candidates into the form that filteredElements() works on, so that the first query doesn't wait
    // for it. Without this the first query does it.
    void prepare(const OrderedSet<AccessibilityElement>& candidates) const;

    // The candidates that match, in their order. An empty query matches nothing, "*" everything.
    OrderedSet<AccessibilityElement> filteredElements(const OrderedSet<AccessibilityElement>& candidates,
                                                      std::string_view query) const;

private:
    using Source = std::function<OrderedSet<AccessibilityElement>()>;

    std::shared_ptr<const MatchIndex> indexOf(const OrderedSet<AccessibilityElement>& candidates) const;
    OrderedSet<AccessibilityElement> windowElements(std::int32_t pid) const;
    std::vector<Source> sources(std::span<const WindowInfo> windowList, std::int32_t pid) const;

    // Of the latest list; a search has one.
    struct Latest {
        std::mutex mutex;
        std::uint64_t stamp = 0;
        std::shared_ptr<const MatchIndex> index;
    };

    Setting<bool> searchIncludesAppMenus_;
    Setting<bool> searchIncludesStatusItems_;
    Setting<bool> searchIncludesNotifications_;
    Setting<bool> searchIncludesDock_;
    Setting<bool> searchIncludesTrafficLightButtons_;
    Setting<FuzzyMatchingFlavor> fuzzyMatchingFlavor_;
    Setting<bool> ignoreSafariTabsAndURLs_;
    AXEngine2 axEngine_;
    WindowServer& windowServer_;
    RunLoop& runLoop_;
    std::unique_ptr<Latest> latest_ = std::make_unique<Latest>();
};

// The two predicates for one element; what filteredElements() applies to all of them.
bool matchesClassic(const AccessibilityElement& element, std::string_view query);
bool matchesExtended(const AccessibilityElement& element, std::string_view query);

}  // namespace tarvix
