// Reading other applications' user-interface elements.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "ax/AccessibilityElement.h"
#include "base/Geometry.h"
#include "base/OrderedSet.h"
#include "platform/Accessibility.h"

namespace tarvix {

class Workspace;

// A value without state: every read goes to the application anew. Any thread; each read blocks until its application
// has answered or the service has given up on it. What can't be read makes a result absent or smaller and is not
// reported.
class AXEngine2 {
public:
    AXEngine2(AccessibilityService& service, Workspace& workspace) : service_(&service), workspace_(&workspace) {}

    // One element. Absent only when the read fails as a whole; a missing attribute leaves its field absent or zero. A
    // text area in a scroll area is where the scroll area is, since its own frame is that of the whole text.
    static std::optional<AccessibilityElement> readElement(AccessibilityReads& reads, const UIElement& element);

    // Absent when the role can't be read; `someOtherShit` when it was read and is of no interest.
    static std::optional<AccessibilityElementRole> readRole(AccessibilityReads& reads,
                                                            const std::optional<UIElement>& element);

    // Absent when the read fails as a whole; what isn't a point or a size reads as zeros.
    static std::optional<AxRect> readFrame(AccessibilityReads& reads, const std::optional<UIElement>& element);

    // The process that has the accessibility focus.
    std::optional<std::int32_t> focusedApplicationProcessIdentifier() const;

    // What can be searched in the focused window of a process, depth first, parents before children. Empty when
    // anything about the window can't be read.
    OrderedSet<AccessibilityElement> frontmostWindowElements(std::int32_t processIdentifier) const;

    // The same below an element; what lies outside `frame` is left out with all that is in it.
    static OrderedSet<AccessibilityElement> collectElements(AccessibilityReads& reads, const UIElement& element,
                                                            AxRect frame);

    // What counts as the children of an element in a walk: the rows that show of a table or outline, else the children
    // that show.
    static std::vector<UIElement> readChildren(AccessibilityReads& reads, const AccessibilityElement& record,
                                               const UIElement& element);

private:
    std::optional<UIElement> windowToWalk(std::int32_t processIdentifier) const;

    AccessibilityService* service_;
    Workspace* workspace_;
};

}  // namespace tarvix
