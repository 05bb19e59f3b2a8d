// A request to end, sent to the process as a signal.
#pragma once

#include <functional>

#include "base/Subscription.h"
#include "platform/RunLoop.h"

namespace tarvix {

// Calls `requested` on the main thread after SIGTERM, SIGINT or SIGHUP, which until then end nothing. One at a time;
// dropping the token gives the signals their ordinary effect back.
[[nodiscard]] Subscription onTerminationSignal(ReadWatcher& watcher, std::function<void()> requested);

}  // namespace tarvix
