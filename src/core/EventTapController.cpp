#include "core/EventTapController.h"

#include <utility>

#include "base/Fatal.h"

namespace tarvix {

namespace {

std::unique_ptr<EventTap> require(std::unique_ptr<EventTap> tap) {
    if (!tap) fatal("can't create event tap");
    return tap;
}

}  // namespace

EventTapController::EventTapController(EventTaps& eventTaps, RunLoop& runLoop, UserDefaults& userDefaults,
                                       const TarvixEngineProtocol& engine, TheInputProtocol& theInput,
                                       InspectorProtocol& inspector)
    : runLoop_(runLoop),
      engine_(engine),
      theInput_(theInput),
      inspector_(inspector),
      preventScrollingWhenTarvixing_(userDefaults, {"preventScrollingWhenTarvixing", false}),
      tap_(require(eventTaps.createEventTap([this](TapEventType type) { return seen(type); }))) {
    tap_->setInterest(interest());
    visibility_ = theInput.onVisibilityChanged([this] { tap_->setInterest(interest()); });
    settings_ = userDefaults.onChange([this](std::string_view) { tap_->setInterest(interest()); });
}

void EventTapController::enable(bool isEnabled) {
    isEnabled_ = isEnabled;
    tap_->enable(isEnabled);
}

TapInterest EventTapController::interest() const {
    if (!theInput_.isVisible()) return {};
    return {.moves = true, .wheel = preventScrollingWhenTarvixing_.value() ? WheelFate::swallowed : WheelFate::seen};
}

Verdict EventTapController::seen(TapEventType type) {
    switch (type) {
        case TapEventType::scrollWheel:
            return wheelSeen();
        case TapEventType::mouseMoved:
            mouseMoved();
            return Verdict::pass;
        case TapEventType::disabledByTimeout:
            tap_->enable(true);
            return Verdict::consume;
    }
    return Verdict::consume;
}

// The reading of the candidates isn't cancelled: only the shortcut and the action keys do that.
Verdict EventTapController::wheelSeen() {
    if (!theInput_.isVisible()) return Verdict::pass;
    if (preventScrollingWhenTarvixing_.value()) return Verdict::consume;
    theInput_.close();
    return Verdict::pass;
}

// The inspector's work waits for the loop's next pass, so that a burst of moves costs one update. Over nothing, an
// update that already waits stays.
void EventTapController::mouseMoved() {
    if (!theInput_.isVisible()) return;
    auto element = engine_.elementUnderMouse();
    if (!element) return;
    hoverTimer_ = runLoop_.timer(std::chrono::milliseconds(0), RunLoop::Repeat::once,
                                 [this, under = std::move(*element)] { inspector_.showInspector(under); });
}

}  // namespace tarvix
