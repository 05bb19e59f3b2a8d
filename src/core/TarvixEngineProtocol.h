// The search session, as the key routing drives it.
#pragma once

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

    virtual void clickPrimaryTarget(MouseButton button) = 0;
    // A click where the pointer stands, whatever the Targets.
    virtual void clickAtMouse(MouseButton button) = 0;
};

}  // namespace tarvix
