// What every run loop keeps to.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "platform/RunLoop.h"
#include "tests/contract/Subject.h"

namespace tarvix {

class RunLoopContract : public testing::TestWithParam<ContractFactory<RunLoop>> {
protected:
    using Repeat = RunLoop::Repeat;

    bool waitUntil(const std::function<bool()>& condition) { return subject_.waitUntil(condition); }

    ContractSubject<RunLoop> subject_ = GetParam()();
    RunLoop& loop = subject_.service;
};

TEST_P(RunLoopContract, ABlockRunsLaterAndNotWithinTheCall) {
    bool ran = false;
    loop.onMain([&] { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_TRUE(waitUntil([&] { return ran; }));
}

TEST_P(RunLoopContract, BlocksRunInTheOrderOfTheCalls) {
    std::vector<int> order;
    for (int i = 0; i < 5; ++i) loop.onMain([&order, i] { order.push_back(i); });
    ASSERT_TRUE(waitUntil([&] { return order.size() == 5; }));
    EXPECT_EQ(order, (std::vector{0, 1, 2, 3, 4}));
}

TEST_P(RunLoopContract, ABlockAddedByABlockRunsAfterThoseThatWaited) {
    std::vector<int> order;
    loop.onMain([&] { loop.onMain([&] { order.push_back(2); }); });
    loop.onMain([&] { order.push_back(1); });
    ASSERT_TRUE(waitUntil([&] { return order.size() == 2; }));
    EXPECT_EQ(order, (std::vector{1, 2}));
}

TEST_P(RunLoopContract, ABackgroundBodyHandsItsResultToTheMainQueue) {
    std::atomic<int> computed = 0;
    int received = 0;
    loop.inBackground([&] {
        computed = 42;
        loop.onMain([&] { received = computed; });
    });
    EXPECT_TRUE(waitUntil([&] { return received == 42; }));
}

TEST_P(RunLoopContract, ATimerForOnceFiresOnce) {
    int fired = 0, ticks = 0;
    const Subscription once = loop.timer(std::chrono::milliseconds(1), Repeat::once, [&] { ++fired; });
    const Subscription clock = loop.timer(std::chrono::milliseconds(5), Repeat::forever, [&] { ++ticks; });
    ASSERT_TRUE(waitUntil([&] { return ticks >= 3; }));
    EXPECT_EQ(fired, 1);
}

TEST_P(RunLoopContract, ADroppedTimerNeverFires) {
    bool fired = false;
    int ticks = 0;
    Subscription dropped = loop.timer(std::chrono::milliseconds(1), Repeat::once, [&] { fired = true; });
    const Subscription clock = loop.timer(std::chrono::milliseconds(5), Repeat::forever, [&] { ++ticks; });
    dropped.reset();
    ASSERT_TRUE(waitUntil([&] { return ticks >= 3; }));
    EXPECT_FALSE(fired);
}

TEST_P(RunLoopContract, ATimerMayDropItselfWhileItFires) {
    int fired = 0, ticks = 0;
    Subscription own;
    own = loop.timer(std::chrono::milliseconds(1), Repeat::forever, [&] {
        ++fired;
        own.reset();
    });
    const Subscription clock = loop.timer(std::chrono::milliseconds(5), Repeat::forever, [&] { ++ticks; });
    ASSERT_TRUE(waitUntil([&] { return ticks >= 3; }));
    EXPECT_EQ(fired, 1);
}

TEST_P(RunLoopContract, ATaskThatIsCancelledBeforeItRunsStillRuns) {
    const auto task = std::make_shared<Task>();
    task->cancel();
    bool sawFlag = false;
    loop.inBackground([&, task] { loop.onMain([&, cancelled = task->isCancelled()] { sawFlag = cancelled; }); });
    EXPECT_TRUE(waitUntil([&] { return sawFlag; }));
}

// --- Bodies at the same time. Called from the background, as a search does.

TEST_P(RunLoopContract, AllBodiesHaveRunWhenTheCallReturns) {
    std::vector<int> results(7);
    std::atomic<bool> allHadRun = false, returned = false;
    loop.inBackground([&] {
        std::vector<std::function<void()>> bodies;
        for (std::size_t i = 0; i < results.size(); ++i) bodies.emplace_back([&, i] { results[i] = 1; });
        loop.concurrently(std::move(bodies));
        allHadRun = results == std::vector(results.size(), 1);
        returned = true;
    });
    ASSERT_TRUE(waitUntil([&] { return returned.load(); }));
    EXPECT_TRUE(allHadRun);
}

TEST_P(RunLoopContract, EachBodyRunsOnce) {
    std::array<std::atomic<int>, 20> runs{};
    std::atomic<bool> returned = false;
    loop.inBackground([&] {
        std::vector<std::function<void()>> bodies;
        for (std::atomic<int>& each : runs) bodies.emplace_back([&each] { ++each; });
        loop.concurrently(std::move(bodies));
        returned = true;
    });
    ASSERT_TRUE(waitUntil([&] { return returned.load(); }));
    for (const std::atomic<int>& each : runs) EXPECT_EQ(each, 1);
}

TEST_P(RunLoopContract, NoBodiesAndOneBodyReturnToo) {
    std::atomic<bool> ran = false, returned = false;
    loop.inBackground([&] {
        loop.concurrently({});
        loop.concurrently({[&] { ran = true; }});
        returned = true;
    });
    ASSERT_TRUE(waitUntil([&] { return returned.load(); }));
    EXPECT_TRUE(ran);
}

TEST_P(RunLoopContract, BodiesMayRunBodiesThemselves) {
    std::atomic<int> innermost = 0;
    std::atomic<bool> returned = false;
    loop.inBackground([&] {
        const auto inner = [&] { ++innermost; };
        const auto outer = [&] { loop.concurrently({inner, inner, inner}); };
        loop.concurrently({outer, outer, outer, outer});
        returned = true;
    });
    ASSERT_TRUE(waitUntil([&] { return returned.load(); }));
    EXPECT_EQ(innermost, 12);
}

TEST_P(RunLoopContract, ManyCallersAtOnceAllComeToAnEnd) {
    constexpr int callers = 40;  // more than there are threads
    std::atomic<int> bodies = 0, returned = 0;
    for (int i = 0; i < callers; ++i)
        loop.inBackground([&] {
            const auto body = [&] { ++bodies; };
            loop.concurrently({body, body, body, body, body});
            ++returned;
        });
    ASSERT_TRUE(waitUntil([&] { return returned == callers; }));
    EXPECT_EQ(bodies, 5 * callers);
}

TEST_P(RunLoopContract, ABodyHandsItsResultToTheMainQueueToo) {
    int received = 0;
    loop.inBackground([&] {
        loop.concurrently({[&] { loop.onMain([&] { ++received; }); }, [&] { loop.onMain([&] { ++received; }); }});
    });
    EXPECT_TRUE(waitUntil([&] { return received == 2; }));
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RunLoopContract);

}  // namespace tarvix
