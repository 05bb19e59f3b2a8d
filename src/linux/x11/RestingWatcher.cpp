#include "linux/x11/RestingWatcher.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <cstdint>
#include <memory>
#include <utility>

namespace tarvix {

namespace {

class Resting : public std::enable_shared_from_this<Resting> {
public:
    Resting(ReadWatcher& loop, int fileDescriptor, std::chrono::milliseconds rest, std::function<void()> ready)
        : loop_(loop),
          fileDescriptor_(fileDescriptor),
          rest_{{}, {rest.count() / 1000, rest.count() % 1000 * 1'000'000}},
          ready_(std::move(ready)),
          timer_(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {}
    ~Resting() {
        reading_.reset();
        waking_.reset();
        close(timer_);
    }

    void start() {
        waking_ = loop_.onReadable(timer_, [this] { wake(); });
        wake();
    }

private:
    void wake() {
        std::uint64_t times = 0;
        [[maybe_unused]] const auto size = read(timer_, &times, sizeof times);
        reading_ = loop_.onReadable(fileDescriptor_, [this] { readAll(); });
    }
    void readAll() {
        const auto self = shared_from_this();  // what is read may end the watching
        reading_.reset();
        timerfd_settime(timer_, 0, &rest_, nullptr);
        ready_();
    }

    ReadWatcher& loop_;
    int fileDescriptor_;
    itimerspec rest_;
    std::function<void()> ready_;
    int timer_;
    Subscription reading_, waking_;
};

}  // namespace

Subscription RestingWatcher::onReadable(int fileDescriptor, std::function<void()> ready) {
    auto resting = std::make_shared<Resting>(loop_, fileDescriptor, rest_, [ready = std::move(ready), read = read_] {
        ready();
        read();
    });
    resting->start();
    return Subscription([resting]() mutable { resting.reset(); });
}

}  // namespace tarvix
