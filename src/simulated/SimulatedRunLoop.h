// The main queue, background bodies and timers, each moved on only when told to.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

#include "platform/RunLoop.h"

namespace tarvix {

// Everything runs on the thread that calls the verbs below, so that a test says what happens before what. Blocks and
// bodies that were never run are dropped with the loop.
class SimulatedRunLoop : public RunLoop {
public:
    void onMain(std::function<void()> block) override;
    void inBackground(std::function<void()> body) override;
    void concurrently(std::vector<std::function<void()>> bodies) override;
    [[nodiscard]] Subscription timer(std::chrono::milliseconds interval, Repeat repeat,
                                     std::function<void()> fired) override;

    // Runs the oldest waiting block; false when none waits.
    bool runMainBlock();
    // Runs the waiting blocks and those that they add, until none waits.
    void runMain();
    // Runs the oldest waiting background body; false when none waits.
    bool runBackgroundBody();
    // Both in turn until nothing waits.
    void settle();
    // Moves the clock on; timers fire at their times, the main queue runs after each.
    void turnClock(std::chrono::milliseconds by);

    // Of bodies that run at the same time the last one starts first.
    bool startsLastBodyFirst = false;
    // How many there were in the latest call for several at the same time; 0 without one.
    std::size_t concurrentBodies() const { return concurrentBodies_; }

    std::chrono::milliseconds now() const { return now_; }
    std::size_t waitingBlocks() const;
    std::size_t waitingBodies() const { return bodies_.size(); }
    std::size_t timers() const { return timers_->size(); }

private:
    struct Timer {
        std::chrono::milliseconds due;
        std::chrono::milliseconds interval;
        Repeat repeat;
        std::shared_ptr<std::function<void()>> fired;
    };
    using Timers = std::map<std::uint64_t, Timer>;  // by age

    Timers::iterator nextDue(std::chrono::milliseconds until);
    void fire(Timers::iterator timer);

    mutable std::mutex mutex_;  // guards blocks_, which any thread may fill
    std::deque<std::function<void()>> blocks_;
    std::deque<std::function<void()>> bodies_;
    std::shared_ptr<Timers> timers_ = std::make_shared<Timers>();
    std::uint64_t lastTimer_ = 0;
    std::chrono::milliseconds now_{0};
    std::atomic<std::size_t> concurrentBodies_ = 0;
};

}  // namespace tarvix
