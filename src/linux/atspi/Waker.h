// Has applications that make their trees on demand make them before the first search.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace tarvix::atspi {

// One thread of its own, since a wake may wait for seconds for an application that has just started, and must not stand
// in the way of a search meanwhile. All processes asked for are worked on, by turns.
class Waker {
public:
    using Wake = std::function<bool(std::int32_t pid)>;
    // How often a process is tried, and how long after the end of one try the next one begins at the earliest.
    struct Patience {
        int tries = 40;
        std::chrono::milliseconds between{250};
    };

    // `wake` is called on that thread, for each process until it answers true or the patience is at its end.
    explicit Waker(Wake wake) : Waker(std::move(wake), Patience{}) {}
    Waker(Wake wake, Patience patience);
    ~Waker();
    Waker(const Waker&) = delete;
    Waker& operator=(const Waker&) = delete;

    // Returns at once. A process that is being tried already is tried as often anew. Any thread.
    void wake(std::int32_t pid);

private:
    using Clock = std::chrono::steady_clock;
    struct Asked {
        std::int32_t pid;
        int tries;
        Clock::time_point next;
    };

    void work();
    void noteTry(std::int32_t pid, bool done);

    Wake wake_;
    Patience patience_;
    std::mutex mutex_;  // guards all below
    std::condition_variable changed_;
    std::vector<Asked> asked_;  // each process once
    bool ends_ = false;
    std::thread thread_;  // last, so that all above is there when it starts
};

}  // namespace tarvix::atspi
