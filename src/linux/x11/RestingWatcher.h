// Watching a descriptor that may have something to read far more often than anybody wants to know.
#pragma once

#include <chrono>
#include <functional>

#include "base/Subscription.h"
#include "platform/RunLoop.h"

namespace tarvix {

// What has long had nothing to read is read at once; after each reading the descriptor rests. So a flood costs one
// reading for each rest, and what came meanwhile is read in one go. Main thread.
class RestingWatcher final : public ReadWatcher {
public:
    // `read` is called after each reading. The loop outlives the watcher.
    RestingWatcher(ReadWatcher& loop, std::chrono::milliseconds rest, std::function<void()> read)
        : loop_(loop), rest_(rest), read_(std::move(read)) {}

    Subscription onReadable(int fileDescriptor, std::function<void()> ready) override;

private:
    ReadWatcher& loop_;
    std::chrono::milliseconds rest_;
    std::function<void()> read_;
};

}  // namespace tarvix
