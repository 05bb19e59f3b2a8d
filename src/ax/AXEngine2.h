// Reading other applications' user-interface elements.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "ax/AccessibilityElement.h"
#include "base/Geometry.h"
#include "base/OrderedSet.h"
#include "platform/Accessibility.h"
#include "platform/Platform.h"
#include "platform/WindowServer.h"

namespace tarvix {

// A value without state: every read goes to the application anew. Any thread; each read blocks until its application
// has answered or the service has given up on it. What can't be read makes a result absent or smaller and is not
// reported.
class AXEngine2 {
public:
    explicit AXEngine2(const Platform& platform)
        : service_(&platform.accessibility),
          workspace_(&platform.workspace),
          screens_(&platform.screens),
          runLoop_(&platform.runLoop) {}

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

    // What can be searched on the desktop besides that window. Each is a read of its own and may run beside the others.

    // The menus in the menu bar of the application that owns it: the bar's own items, whether or not they have a text.
    OrderedSet<AccessibilityElement> appMenuElements() const;

    // The status items, from left to right, each with its application's name in front of its role description. What
    // stands at the main screen's left edge or left of it is none. `windowList` says who has status items.
    OrderedSet<AccessibilityElement> statusItemElements(std::span<const WindowInfo> windowList) const;

    // What is in the notifications on the screen. Empty as soon as one of them can't say where it is.
    OrderedSet<AccessibilityElement> notificationElements() const;

    // The dock's items.
    OrderedSet<AccessibilityElement> dockElements() const;

    // The same as for the focused window below any element; what lies outside `frame` is left out with all that is in
    // it.
    static OrderedSet<AccessibilityElement> collectElements(AccessibilityReads& reads, const UIElement& element,
                                                            AxRect frame);

    // What counts as the children of an element in a walk: the rows that show of a table or outline, else the children
    // that show.
    static std::vector<UIElement> readChildren(AccessibilityReads& reads, const AccessibilityElement& record,
                                               const UIElement& element);

    // The switches that make an application show its tree. Each tries at once and then, on the main run loop, again and
    // again, until the application shows that it has understood or has been asked often enough; nothing takes back what
    // was written, and several may be at work on one application. Each step is a line on the standard output. Main
    // thread; the service outlives the run loop's timers.
    //
    // Every 0.28 seconds, at most 12 times, until the attribute reads as true: then it isn't written at all.
    void keepEnhancedUserInterfaceSet(std::int32_t processIdentifier) const;
    // Every 0.44 seconds, at most 16 times, until the application says which of its windows has the focus.
    void keepManualAccessibilitySet(std::int32_t processIdentifier) const;
    // Both attributes, every 0.88 seconds, at most 6 times, until the application says what in it has the focus.
    void keepBothAttributesSet(std::int32_t processIdentifier) const;

private:
    std::optional<UIElement> windowToWalk(std::int32_t processIdentifier) const;

    AccessibilityService* service_;
    Workspace* workspace_;
    Screens* screens_;
    RunLoop* runLoop_;
};

}  // namespace tarvix
