// What The Input needs of the search session that its text drives.
#pragma once

#include <string_view>

#include "ax/AccessibilityElement.h"
#include "base/OrderedSet.h"

namespace tarvix {

// Main thread.
class QuerySession {
public:
    virtual ~QuerySession() = default;

    // Those of the session's candidates that match, in their order.
    virtual OrderedSet<AccessibilityElement> filteredElements(std::string_view query) = 0;
    // Always as a pair: the markers of the last query go, those of these elements come.
    virtual void removeTargets() = 0;
    virtual void showTargets(const OrderedSet<AccessibilityElement>& elements) = 0;
    virtual void endSession() = 0;
};

}  // namespace tarvix
