// The search session, as the key routing and the event tap drive it.
#pragma once

#include <optional>

#include "core/Target.h"
#include "display/QuerySession.h"

namespace tarvix {

enum class MouseButton { left, right };

// Main thread. Without a Primary Target what acts on it does nothing.
class TarvixEngineProtocol : public QuerySession {
public:
    // Next after the last one is the first, and previous before the first one the last, if the user wants it so.
    virtual void nextTarget() = 0;
    virtual void previousTarget() = 0;
    virtual void firstTarget() = 0;
    virtual void lastTarget() = 0;
    // To the middle of the Targets, or from there on to their end.
    virtual void halfwayDownTarget() = 0;
    virtual void halfwayUpTarget() = 0;

    // The modifiers that the user holds stay on a click, and not on a double click.
    virtual void clickPrimaryTarget(MouseButton button) = 0;
    virtual void doubleClickPrimaryTarget(MouseButton button) = 0;
    // The pointer goes there and stays.
    virtual void moveMouseToPrimaryTarget() = 0;
    // Where the pointer stands, whatever the Targets.
    virtual void clickAtMouse(MouseButton button) = 0;
    virtual void doubleClickAtMouse() = 0;
    // All that is known of each Target, for a developer; the empty text when there is none.
    virtual void copyTargetsDescription() = 0;

    virtual const std::optional<Target>& primaryTarget() const = 0;
    // The smallest of the session's candidates under the pointer, a Target or not.
    virtual std::optional<AccessibilityElement> elementUnderMouse() const = 0;
};

}  // namespace tarvix
