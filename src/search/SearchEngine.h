// What a search goes through, and what matches a query.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>

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

    // Everything that may become a Target in the focused window of a process, in the order of its tree; -1 stands for
    // no process. Empty where the window server can't say what is on the screen. Blocks until the application has
    // answered; for a background thread.
    OrderedSet<AccessibilityElement> candidates(std::int32_t pid) const;

    // Brings a list of candidates into the form that filteredElements() works on, so that the first query doesn't wait
    // for it. Without this the first query does it.
    void prepare(const OrderedSet<AccessibilityElement>& candidates) const;

    // The candidates that match, in their order. An empty query matches nothing, "*" everything.
    OrderedSet<AccessibilityElement> filteredElements(const OrderedSet<AccessibilityElement>& candidates,
                                                      std::string_view query) const;

private:
    std::shared_ptr<const MatchIndex> indexOf(const OrderedSet<AccessibilityElement>& candidates) const;
    OrderedSet<AccessibilityElement> windowElements(std::int32_t pid) const;

    // Of the latest list; a search has one.
    struct Latest {
        std::mutex mutex;
        std::uint64_t stamp = 0;
        std::shared_ptr<const MatchIndex> index;
    };

    Setting<bool> searchIncludesTrafficLightButtons_;
    Setting<FuzzyMatchingFlavor> fuzzyMatchingFlavor_;
    Setting<bool> ignoreSafariTabsAndURLs_;
    AXEngine2 axEngine_;
    WindowServer& windowServer_;
    std::unique_ptr<Latest> latest_ = std::make_unique<Latest>();
};

// The two predicates for one element; what filteredElements() applies to all of them.
bool matchesClassic(const AccessibilityElement& element, std::string_view query);
bool matchesExtended(const AccessibilityElement& element, std::string_view query);

}  // namespace tarvix
