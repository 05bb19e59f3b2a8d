// A timer that fires once.
#pragma once

#include <chrono>
#include <functional>
#include <utility>

#include "base/Subscription.h"
#include "platform/RunLoop.h"

namespace tarvix {

// Valid from its scheduling until it fires or is invalidated; one that was never scheduled isn't. It must stay where it
// is while it is valid. Main thread.
class OneShotTimer {
public:
    bool isValid() const { return bool(token_); }
    void invalidate() { token_.reset(); }
    // In the place of what was scheduled before.
    void schedule(RunLoop& runLoop, std::chrono::milliseconds interval, std::function<void()> fired) {
        token_ = runLoop.timer(interval, RunLoop::Repeat::once, [this, fired = std::move(fired)] {
            invalidate();
            fired();
        });
    }

private:
    Subscription token_;
};

}  // namespace tarvix
