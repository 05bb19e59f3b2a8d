#include "simulated/SimulatedEventTaps.h"

#include <stdexcept>

namespace tarvix {

class SimulatedEventTaps::Handle : public EventTap {
public:
    Handle(SimulatedEventTaps& taps, std::shared_ptr<Tap> tap) : taps_(taps), tap_(std::move(tap)) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() override {
        if (taps_.tap_ == tap_) taps_.tap_ = nullptr;
    }

    void enable(bool isEnabled) override { tap_->isEnabled = isEnabled; }
    void setInterest(TapInterest interest) override { tap_->interest = interest; }

private:
    SimulatedEventTaps& taps_;
    std::shared_ptr<Tap> tap_;
};

std::unique_ptr<EventTap> SimulatedEventTaps::createEventTap(std::function<Verdict(TapEventType)> seen) {
    if (faults_.strike("createEventTap")) return nullptr;
    tap_ = std::make_shared<Tap>(Tap{.seen = std::move(seen), .isEnabled = true, .interest = {}});
    return std::make_unique<Handle>(*this, tap_);
}

void SimulatedEventTaps::move() {
    if (looks() && tap_->interest.moves) tap_->seen(TapEventType::mouseMoved);
}

bool SimulatedEventTaps::scroll() {
    const WheelFate fate = looks() ? tap_->interest.wheel : WheelFate::passes;
    if (fate == WheelFate::passes) return true;
    const bool goesOn = fate == WheelFate::seen;
    if ((tap_->seen(TapEventType::scrollWheel) == Verdict::pass) != goesOn)
        throw std::logic_error("the tap's answer to the wheel isn't the fate that it has asked for");
    return goesOn;
}

Verdict SimulatedEventTaps::timeOut() {
    if (!looks()) return Verdict::pass;
    tap_->isEnabled = false;
    return tap_->seen(TapEventType::disabledByTimeout);
}

}  // namespace tarvix
