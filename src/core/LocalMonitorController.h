// The monitor that offers each key to the key routing before the text field sees it.
#pragma once

#include "core/KeyRouting.h"
#include "keys/Sauce.h"
#include "platform/Events.h"

namespace tarvix {

// Main thread; what is given outlives it. It passes everything while The Input isn't visible.
class LocalMonitorController {
public:
    LocalMonitorController(Events& events, const Sauce& sauce, const TheInputProtocol& theInput,
                           KeyRouting& keyRouting);

    // Never leaves two monitors.
    void installLocalMonitor();
    void removeLocalMonitor() { monitor_.reset(); }
    bool isInstalled() const { return static_cast<bool>(monitor_); }

private:
    Verdict seen(const KeyEvent& event);

    Events& events_;
    const Sauce& sauce_;
    const TheInputProtocol& theInput_;
    KeyRouting& keyRouting_;
    Subscription monitor_;
};

}  // namespace tarvix
