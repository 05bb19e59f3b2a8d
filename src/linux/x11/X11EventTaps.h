// The tap of the pointer and the wheel on X11.
#pragma once

#include <functional>
#include <memory>

#include "base/Outcome.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Events.h"
#include "platform/Events.h"
#include "platform/RunLoop.h"

namespace tarvix {

// Moves and wheel steps are seen as raw events, which change nothing for the applications, and the wheel is swallowed
// by a shield (X11WheelShield). Nothing is selected beyond the interest: with none the server sends nothing, however
// much the pointer moves. Tellings are not one for each event: what came in the last few milliseconds is one move and
// one wheel step. The server never disables a tap, so that isn't told.
//
// A server without XInput 2.2 sends no raw events. There the tap exists, tells nothing and swallows nothing: a search
// is driven by keys, and is worth having without what follows the pointer and the wheel. Main thread.
class X11EventTaps final : public EventTaps {
public:
    // Connection, events and loop outlive the taps, and these outlive each tap.
    static Outcome<std::unique_ptr<X11EventTaps>> open(X11Connection& connection, X11Events& events, ReadWatcher& loop);

    [[nodiscard]] std::unique_ptr<EventTap> createEventTap(std::function<Verdict(TapEventType)> seen) override;

private:
    X11EventTaps(X11Connection& connection, X11Events& events, ReadWatcher& loop, bool hasXInput)
        : x_(connection), events_(events), loop_(loop), hasXInput_(hasXInput) {}

    X11Connection& x_;
    X11Events& events_;
    ReadWatcher& loop_;
    bool hasXInput_;
};

}  // namespace tarvix
