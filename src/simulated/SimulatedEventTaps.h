// The tap of the pointer and the wheel, moved and scrolled by the test.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "platform/Events.h"
#include "simulated/Faults.h"

namespace tarvix {

// One tap at a time. Can fail: createEventTap.
class SimulatedEventTaps : public EventTaps {
public:
    explicit SimulatedEventTaps(Faults& faults) : faults_(faults) {}

    [[nodiscard]] std::unique_ptr<EventTap> createEventTap(std::function<Verdict(TapEventType)> seen) override;

    // The pointer has moved; told to a tap that wants to know.
    void move();
    // One step of the wheel; true when it goes on to the application. Throws when the tap's answer disagrees with the
    // fate that it has asked for.
    bool scroll();
    // The desktop turns the tap off, as one that is too slow, and tells it so; the answer is the tap's.
    Verdict timeOut();

    bool isTapped() const { return tap_ != nullptr; }
    // While there is a tap.
    bool isEnabled() const { return tap_->isEnabled; }
    TapInterest interest() const { return tap_->interest; }

private:
    struct Tap {
        std::function<Verdict(TapEventType)> seen;
        bool isEnabled = true;
        TapInterest interest;
    };
    class Handle;

    bool looks() const { return tap_ && tap_->isEnabled; }

    Faults& faults_;
    std::shared_ptr<Tap> tap_;
};

}  // namespace tarvix
