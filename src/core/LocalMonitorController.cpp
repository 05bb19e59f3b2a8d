#include "core/LocalMonitorController.h"

#include "keys/KeyCombinationAdaptor.h"

namespace tarvix {

LocalMonitorController::LocalMonitorController(Events& events, const Sauce& sauce, const TheInputProtocol& theInput,
                                               KeyRouting& keyRouting)
    : events_(events), sauce_(sauce), theInput_(theInput), keyRouting_(keyRouting) {}

void LocalMonitorController::installLocalMonitor() {
    removeLocalMonitor();
    monitor_ = events_.monitorKeyDown([this](const KeyEvent& event) { return seen(event); });
}

Verdict LocalMonitorController::seen(const KeyEvent& event) {
    const auto keyCombination = KeyCombinationAdaptor::fromCGEvent(event, sauce_);
    if (!keyCombination || !theInput_.isVisible()) return Verdict::pass;
    return keyRouting_.handleKey(*keyCombination) ? Verdict::consume : Verdict::pass;
}

}  // namespace tarvix
