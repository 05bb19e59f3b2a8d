// Posted mouse and key events, and the monitor that sees keys before our panels.
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Events.h"
#include "simulated/Faults.h"
#include "simulated/Journal.h"
#include "simulated/SimulatedScreens.h"

namespace tarvix {

// A posted mouse event moves the pointer, a posted key goes the way of a pressed one in a later pass of the loop. Can
// fail: postMouse, postKey.
class SimulatedEvents : public Events {
public:
    using Deliver = std::function<void(const KeyEvent&)>;

    // `deliver` takes a posted key event for delivery.
    SimulatedEvents(Journal& journal, Faults& faults, SimulatedScreens& screens, Deliver deliver)
        : journal_(journal), faults_(faults), screens_(screens), deliver_(std::move(deliver)) {}

    bool post(const MouseEvent& event) override;
    bool post(const KeyEvent& event) override;
    [[nodiscard]] Subscription monitorKeyDown(std::function<Verdict(const KeyEvent&)> seen) override;

    // What the monitor says to a key; `pass` when there is none.
    Verdict offer(const KeyEvent& event);
    bool isMonitored() const { return monitor_ && *monitor_; }

    std::vector<MouseEvent> mouseEvents;  // all that were posted
    std::vector<KeyEvent> keyEvents;

private:
    using Monitor = std::function<Verdict(const KeyEvent&)>;

    Journal& journal_;
    Faults& faults_;
    SimulatedScreens& screens_;
    Deliver deliver_;
    std::shared_ptr<Monitor> monitor_;
};

}  // namespace tarvix
