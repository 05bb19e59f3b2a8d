// The main queue, timers and background tasks.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "base/Subscription.h"

namespace tarvix {

// The handle of one background task. Cancelling only sets a flag, which the task's body or its creator may look at.
class Task {
public:
    void cancel() { cancelled_ = true; }
    bool isCancelled() const { return cancelled_; }

private:
    std::atomic<bool> cancelled_ = false;
};

class RunLoop {
public:
    virtual ~RunLoop() = default;

    // Runs `block` on the main thread in a later pass of its loop; blocks run in the order of these calls. Any thread.
    virtual void onMain(std::function<void()> block) = 0;

    // Runs `body` on a thread of the shared pool. Main thread. Destroying the loop waits for bodies that still run.
    virtual void inBackground(std::function<void()> body) = 0;

    // Runs all bodies at the same time, on threads of the shared pool and this one, and returns when the last has
    // ended. Any thread but the main one; bodies may call it too.
    virtual void concurrently(std::vector<std::function<void()>> bodies) = 0;

    // Calls `fired` on the main thread after `interval`, once or for ever; dropping the token ends it. Main thread.
    enum class Repeat { once, forever };
    [[nodiscard]] virtual Subscription timer(std::chrono::milliseconds interval, Repeat repeat,
                                             std::function<void()> fired) = 0;
};

// Calls `ready` on the main thread whenever a file descriptor can be read. The seam between the loop's implementation
// and the services that bring a connection of their own. Main thread.
class ReadWatcher {
public:
    virtual ~ReadWatcher() = default;
    [[nodiscard]] virtual Subscription onReadable(int fileDescriptor, std::function<void()> ready) = 0;
};

}  // namespace tarvix
