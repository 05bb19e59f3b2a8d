#include "simulated/SimulatedRunLoop.h"

#include <algorithm>
#include <utility>

namespace tarvix {

void SimulatedRunLoop::onMain(std::function<void()> block) {
    const std::lock_guard lock(mutex_);
    blocks_.push_back(std::move(block));
}

void SimulatedRunLoop::inBackground(std::function<void()> body) { bodies_.push_back(std::move(body)); }

void SimulatedRunLoop::concurrently(std::vector<std::function<void()>> bodies) {
    concurrentBodies_ = bodies.size();
    if (startsLastBodyFirst) std::reverse(bodies.begin(), bodies.end());
    for (const auto& body : bodies) body();
}

Subscription SimulatedRunLoop::timer(std::chrono::milliseconds interval, Repeat repeat, std::function<void()> fired) {
    const std::uint64_t id = ++lastTimer_;
    timers_->emplace(
        id, Timer{now_ + interval, interval, repeat, std::make_shared<std::function<void()>>(std::move(fired))});
    return Subscription([timers = std::weak_ptr(timers_), id] {
        if (const auto alive = timers.lock()) alive->erase(id);
    });
}

bool SimulatedRunLoop::runMainBlock() {
    std::function<void()> block;
    {
        const std::lock_guard lock(mutex_);
        if (blocks_.empty()) return false;
        block = std::move(blocks_.front());
        blocks_.pop_front();
    }
    block();
    return true;
}

void SimulatedRunLoop::runMain() {
    while (runMainBlock()) continue;
}

bool SimulatedRunLoop::runBackgroundBody() {
    if (bodies_.empty()) return false;
    const std::function<void()> body = std::move(bodies_.front());
    bodies_.pop_front();
    body();
    return true;
}

void SimulatedRunLoop::settle() {
    do runMain();
    while (runBackgroundBody());
}

std::size_t SimulatedRunLoop::waitingBlocks() const {
    const std::lock_guard lock(mutex_);
    return blocks_.size();
}

void SimulatedRunLoop::turnClock(std::chrono::milliseconds by) {
    const std::chrono::milliseconds until = now_ + by;
    for (auto timer = nextDue(until); timer != timers_->end(); timer = nextDue(until)) {
        now_ = timer->second.due;
        fire(timer);
        runMain();
    }
    now_ = until;
}

SimulatedRunLoop::Timers::iterator SimulatedRunLoop::nextDue(std::chrono::milliseconds until) {
    auto next = timers_->end();
    for (auto timer = timers_->begin(); timer != timers_->end(); ++timer) {
        if (timer->second.due > until) continue;
        if (next == timers_->end() || timer->second.due < next->second.due) next = timer;
    }
    return next;
}

void SimulatedRunLoop::fire(Timers::iterator timer) {
    const auto fired = timer->second.fired;  // its token may be dropped while it runs
    timer->second.due += timer->second.interval;
    if (timer->second.repeat == Repeat::once) timers_->erase(timer);
    (*fired)();
}

}  // namespace tarvix
