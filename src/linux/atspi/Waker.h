// Has applications that make their trees on demand make them before the first search.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace tarvix::atspi {

// One thread of its own, since a wake may wait for seconds for an application that has just started, and must not stand
// in the way of a search meanwhile. Only the latest process asked for is worked on.
class Waker {
public:
    // `wake` is called on that thread, again after a short while until it answers true or a few seconds are over.
    explicit Waker(std::function<bool(std::int32_t pid)> wake);
    ~Waker();
    Waker(const Waker&) = delete;
    Waker& operator=(const Waker&) = delete;

    // Returns at once. Any thread.
    void wake(std::int32_t pid);

private:
    void work();

    std::function<bool(std::int32_t)> wake_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::optional<std::int32_t> asked_;
    bool ends_ = false;
    std::thread thread_;  // last, so that all above is there when it starts
};

}  // namespace tarvix::atspi
