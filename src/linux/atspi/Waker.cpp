#include "linux/atspi/Waker.h"

#include <chrono>
#include <utility>

namespace tarvix::atspi {

namespace {

// An application joins the accessibility bus some time after its window has become active.
constexpr int kTries = 12;
constexpr std::chrono::milliseconds kBetweenTries{250};

}  // namespace

Waker::Waker(std::function<bool(std::int32_t)> wake) : wake_(std::move(wake)), thread_([this] { work(); }) {}

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
        asked_ = pid;
    }
    changed_.notify_all();
}

void Waker::work() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return ends_ || asked_; });
        if (ends_) return;
        const std::int32_t pid = *std::exchange(asked_, std::nullopt);
        for (int tries = 0; tries < kTries && !ends_ && !asked_; ++tries) {
            lock.unlock();
            const bool done = wake_(pid);
            lock.lock();
            if (done || changed_.wait_for(lock, kBetweenTries, [this] { return ends_ || asked_; })) break;
        }
    }
}

}  // namespace tarvix::atspi
