#include "core/LocalMonitorController.h"

#include "keys/KeyCombinationAdaptor.h"

namespace tarvix {

LocalMonitorController::LocalMonitorController(Events& events, const Sauce& sauce, TarvixEngineProtocol& engine,
                                               TheInputProtocol& theInput, Preloading& preloading)
    : events_(events), sauce_(sauce), engine_(engine), theInput_(theInput), preloading_(preloading) {}

void LocalMonitorController::installLocalMonitor() {
    removeLocalMonitor();
    monitor_ = events_.monitorKeyDown([this](const KeyEvent& event) { return seen(event); });
}

Verdict LocalMonitorController::seen(const KeyEvent& event) {
    const auto keyCombination = KeyCombinationAdaptor::fromCGEvent(event, sauce_);
    if (!keyCombination || !theInput_.isVisible()) return Verdict::pass;
    return handleKey(*keyCombination, engine_, theInput_, preloading_) ? Verdict::consume : Verdict::pass;
}

}  // namespace tarvix
