#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <map>
#include <vector>

#include "linux/atspi/Waker.h"

namespace tarvix::atspi {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

constexpr auto kLimit = 10s;

// What a waker does, process by process; each is awake after a number of tries.
class Tried {
public:
    explicit Tried(std::map<std::int32_t, int> triesNeeded, std::size_t expected)
        : triesNeeded_(std::move(triesNeeded)), expected_(expected) {}

    bool operator()(std::int32_t pid) {
        const std::lock_guard lock(mutex_);
        tries_.push_back(pid);
        if (tries_.size() == expected_) all_.set_value();
        return std::ranges::count(tries_, pid) >= triesNeeded_[pid];
    }
    bool wait() { return all_.get_future().wait_for(kLimit) == std::future_status::ready; }
    std::vector<std::int32_t> tries() {
        const std::lock_guard lock(mutex_);
        return tries_;
    }

private:
    std::mutex mutex_;
    std::map<std::int32_t, int> triesNeeded_;
    std::size_t expected_;
    std::vector<std::int32_t> tries_;
    std::promise<void> all_;
};

TEST(Waker, TriesUntilTheApplicationIsAwake) {
    Tried tried({{7, 3}}, 3);
    {
        Waker waker(std::ref(tried), {.tries = 10, .between = 1ms});
        waker.wake(7);
        ASSERT_TRUE(tried.wait());
    }
    EXPECT_THAT(tried.tries(), ElementsAre(7, 7, 7));
}

TEST(Waker, TwoApplicationsInQuickSuccessionAreBothWoken) {
    Tried tried({{1, 3}, {2, 3}, {3, 1}}, 7);
    {
        Waker waker(std::ref(tried), {.tries = 10, .between = 1ms});
        for (const std::int32_t pid : {1, 2, 3}) waker.wake(pid);
        ASSERT_TRUE(tried.wait());
    }
    auto tries = tried.tries();
    std::ranges::sort(tries);
    EXPECT_THAT(tries, ElementsAre(1, 1, 1, 2, 2, 2, 3));
}

TEST(Waker, OneThatIsNeverAwakeIsGivenUpAndDoesNotKeepOthersWaiting) {
    Tried tried({{1, 1000}, {2, 1}}, 5);
    {
        Waker waker(std::ref(tried), {.tries = 4, .between = 1ms});
        waker.wake(1);
        waker.wake(2);
        ASSERT_TRUE(tried.wait());
    }
    EXPECT_EQ(std::ranges::count(tried.tries(), 1), 4);
    EXPECT_EQ(std::ranges::count(tried.tries(), 2), 1);
}

TEST(Waker, OneThatIsAskedForAnewIsTriedAnew) {
    Tried tried({{1, 1}}, 2);
    Waker waker(std::ref(tried), {.tries = 1, .between = 1ms});
    waker.wake(1);
    // Asked for while it is tried, or after: never lost, unless it is awake by then.
    for (int i = 0; i < 1000 && tried.tries().size() < 2; ++i) {
        waker.wake(1);
        std::this_thread::sleep_for(1ms);
    }
    EXPECT_GE(tried.tries().size(), 2u);
}

TEST(Waker, ItsEndDoesNotWaitForApplicationsThatSleepOn) {
    Tried tried({{1, 1000}}, 1);
    Waker waker(std::ref(tried), {.tries = 1000, .between = 1h});
    waker.wake(1);
    ASSERT_TRUE(tried.wait());
}

}  // namespace
}  // namespace tarvix::atspi
