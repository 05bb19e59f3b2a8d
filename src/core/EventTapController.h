// The tap of the pointer and the wheel: what follows the pointer, and what a search does with the wheel.
#pragma once

#include <memory>

#include "core/TarvixEngineProtocol.h"
#include "display/InspectorProtocol.h"
#include "display/TheInputProtocol.h"
#include "platform/Events.h"
#include "platform/RunLoop.h"
#include "shell/Setting.h"

namespace tarvix {

// While The Input is visible the wheel either ends the search or is frozen, as the settings say; it never goes on under
// an open panel. While it isn't, the tap looks at nothing. Main thread; what is given outlives it.
class EventTapController {
public:
    // Makes the tap; a desktop that can't have one ends the process.
    EventTapController(EventTaps& eventTaps, RunLoop& runLoop, UserDefaults& userDefaults,
                       const TarvixEngineProtocol& engine, TheInputProtocol& theInput, InspectorProtocol& inspector);
    EventTapController(const EventTapController&) = delete;
    EventTapController& operator=(const EventTapController&) = delete;

    void enable(bool isEnabled);
    bool isEnabled() const { return isEnabled_; }

private:
    TapInterest interest() const;
    Verdict seen(TapEventType type);
    Verdict wheelSeen();
    void mouseMoved();

    RunLoop& runLoop_;
    const TarvixEngineProtocol& engine_;
    TheInputProtocol& theInput_;
    InspectorProtocol& inspector_;
    Setting<bool> preventScrollingWhenTarvixing_;
    Subscription hoverTimer_;
    std::unique_ptr<EventTap> tap_;
    bool isEnabled_ = true;
    Subscription visibility_, settings_;
};

}  // namespace tarvix
