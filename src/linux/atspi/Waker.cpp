#include "linux/atspi/Waker.h"

#include <algorithm>
#include <utility>

namespace tarvix::atspi {

Waker::Waker(Wake wake, Patience patience) : wake_(std::move(wake)), patience_(patience), thread_([this] { work(); }) {}

Waker::~Waker() {
    {
        const std::lock_guard lock(mutex_);
        ends_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void Waker::wake(std::int32_t pid) {
    {
        const std::lock_guard lock(mutex_);
        const auto known = std::ranges::find(asked_, pid, &Asked::pid);
        if (known == asked_.end()) {
            asked_.push_back({pid, patience_.tries, Clock::now()});
        } else {
            known->tries = patience_.tries;
        }
    }
    changed_.notify_all();
}

void Waker::work() {
    std::unique_lock lock(mutex_);
    while (!ends_) {
        if (asked_.empty()) {
            changed_.wait(lock);
            continue;
        }
        const Asked first = *std::ranges::min_element(asked_, {}, &Asked::next);
        if (first.next > Clock::now()) {
            changed_.wait_until(lock, first.next);
            continue;
        }
        lock.unlock();
        const bool done = wake_(first.pid);
        lock.lock();
        noteTry(first.pid, done);
    }
}

void Waker::noteTry(std::int32_t pid, bool done) {
    const auto tried = std::ranges::find(asked_, pid, &Asked::pid);
    tried->next = Clock::now() + patience_.between;
    if (done || --tried->tries <= 0) asked_.erase(tried);
}

}  // namespace tarvix::atspi
