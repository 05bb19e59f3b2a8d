#include <unistd.h>

#include <QEventLoop>
#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "qt/QtRunLoop.h"
#include "tests/desktop/QtTest.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using Repeat = RunLoop::Repeat;

class QtRunLoopTest : public QtTest {};

TEST_F(QtRunLoopTest, ABlockRunsInALaterPassAndNotWithinTheCall) {
    QtRunLoop loop;
    bool ran = false;
    loop.onMain([&] { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_TRUE(runUntil([&] { return ran; }));
}

TEST_F(QtRunLoopTest, BlocksRunInTheOrderOfTheCalls) {
    QtRunLoop loop;
    std::vector<int> order;
    std::thread first([&] {
        for (int i = 0; i < 500; ++i) loop.onMain([&, i] { order.push_back(i); });
    });
    first.join();
    std::vector<int> expected;
    for (int i = 0; i < 500; ++i) expected.push_back(i);
    loop.onMain([&] { order.push_back(500); });
    expected.push_back(500);
    ASSERT_TRUE(runUntil([&] { return order.size() == expected.size(); }));
    EXPECT_EQ(order, expected);
}

TEST_F(QtRunLoopTest, BlocksOfOtherThreadsRunOnTheMainOne) {
    QtRunLoop loop;
    std::thread::id where;
    loop.inBackground([&] { loop.onMain([&] { where = std::this_thread::get_id(); }); });
    ASSERT_TRUE(runUntil([&] { return where != std::thread::id(); }));
    EXPECT_EQ(where, std::this_thread::get_id());
}

TEST_F(QtRunLoopTest, ABlockThatPostsItselfAgainLeavesRoomForTimers) {
    QtRunLoop loop;
    bool fired = false;
    const Subscription timer = loop.timer(1ms, Repeat::once, [&] { fired = true; });
    std::function<void()> again = [&] {
        if (!fired) loop.onMain(again);
    };
    loop.onMain(again);
    EXPECT_TRUE(runUntil([&] { return fired; }));
}

TEST_F(QtRunLoopTest, ALoopNestedInABlockGoesOnWithTheNextBlock) {
    QtRunLoop loop;
    std::vector<int> order;
    loop.onMain([&] {
        order.push_back(1);
        QEventLoop nested;
        loop.onMain([&] {
            order.push_back(3);
            nested.quit();
        });
        nested.exec();
        order.push_back(4);
    });
    loop.onMain([&] { order.push_back(2); });
    ASSERT_TRUE(runUntil([&] { return order.size() == 4; }));
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3, 4}));
}

TEST_F(QtRunLoopTest, BodiesRunAtTheSameTimeAndNotOnTheMainThread) {
    QtRunLoop loop;
    constexpr int count = 5;
    std::atomic<int> there = 0, met = 0;
    std::atomic<bool> returned = false, wasMain = false;
    const std::thread::id main = std::this_thread::get_id();
    const auto meetTheOthers = [&] {
        wasMain = wasMain || std::this_thread::get_id() == main;
        ++there;
        const auto end = std::chrono::steady_clock::now() + 10s;
        while (there < count && std::chrono::steady_clock::now() < end) std::this_thread::sleep_for(1ms);
        if (there == count) ++met;
    };
    loop.inBackground([&] {
        loop.concurrently(std::vector<std::function<void()>>(count, meetTheOthers));
        returned = true;
    });
    ASSERT_TRUE(runUntil([&] { return returned.load(); }));
    EXPECT_EQ(met, count);
    EXPECT_FALSE(wasMain);
}

TEST_F(QtRunLoopTest, TheSlowestBodyIsWaitedForWhoeverTakesIt) {
    QtRunLoop loop;
    for (int slowest = 0; slowest < 3; ++slowest) {
        std::atomic<int> ended = 0, endedAtReturn = 0;
        std::atomic<bool> returned = false;
        loop.inBackground([&] {
            std::vector<std::function<void()>> bodies;
            for (int i = 0; i < 3; ++i)
                bodies.emplace_back([&, i] {
                    const auto end = std::chrono::steady_clock::now() + 10s;
                    while (i == slowest && ended < 2 && std::chrono::steady_clock::now() < end)
                        std::this_thread::sleep_for(1ms);
                    ++ended;
                });
            loop.concurrently(std::move(bodies));
            endedAtReturn = ended.load();
            returned = true;
        });
        ASSERT_TRUE(runUntil([&] { return returned.load(); }));
        EXPECT_EQ(endedAtReturn, 3) << slowest;
    }
}

TEST_F(QtRunLoopTest, ATimerForOnceFiresOnce) {
    QtRunLoop loop;
    int fired = 0, later = 0;
    const Subscription once = loop.timer(1ms, Repeat::once, [&] { ++fired; });
    const Subscription forever = loop.timer(1ms, Repeat::forever, [&] { ++later; });
    ASSERT_TRUE(runUntil([&] { return fired == 1 && later >= 5; }));
    EXPECT_EQ(fired, 1);
}

TEST_F(QtRunLoopTest, ATimerEndsWithItsTokenEvenDroppedFromWithin) {
    QtRunLoop loop;
    int fired = 0, others = 0;
    Subscription timer;
    timer = loop.timer(1ms, Repeat::forever, [&] {
        ++fired;
        timer.reset();
    });
    const Subscription other = loop.timer(1ms, Repeat::forever, [&] { ++others; });
    ASSERT_TRUE(runUntil([&] { return others >= 10; }));
    EXPECT_EQ(fired, 1);
}

TEST_F(QtRunLoopTest, ATokenMayOutliveTheLoop) {
    auto loop = std::make_unique<QtRunLoop>();
    bool fired = false;
    Subscription timer = loop->timer(0ms, Repeat::once, [&] { fired = true; });
    loop.reset();
    timer.reset();
    drain();
    EXPECT_FALSE(fired);
}

TEST_F(QtRunLoopTest, SeveralBodiesRunAtTheSameTime) {
    QtRunLoop loop;
    std::atomic<int> inside = 0;
    std::atomic<bool> together = false;
    for (int i = 0; i < 6; ++i)
        loop.inBackground([&] {
            ++inside;
            while (!together) std::this_thread::yield();
        });
    EXPECT_TRUE(runUntil([&] { return inside == 6; }));
    together = true;
}

TEST_F(QtRunLoopTest, DestructionWaitsForBodies) {
    std::atomic<bool> started = false, ended = false;
    {
        QtRunLoop loop;
        loop.inBackground([&] {
            started = true;
            std::this_thread::sleep_for(20ms);
            ended = true;
        });
        ASSERT_TRUE(runUntil([&] { return started.load(); }));
    }
    EXPECT_TRUE(ended);
}

TEST_F(QtRunLoopTest, AReadableDescriptorIsReportedUntilTheTokenGoes) {
    QtRunLoop loop;
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    std::string read;
    Subscription watching = loop.onReadable(ends[0], [&] {
        char byte = 0;
        if (::read(ends[0], &byte, 1) == 1) read.push_back(byte);
    });
    drain();
    EXPECT_EQ(read, "");
    ASSERT_EQ(write(ends[1], "ab", 2), 2);
    ASSERT_TRUE(runUntil([&] { return read == "ab"; }));
    watching.reset();
    ASSERT_EQ(write(ends[1], "c", 1), 1);
    int passes = 0;
    const Subscription timer = loop.timer(1ms, Repeat::forever, [&] { ++passes; });
    ASSERT_TRUE(runUntil([&] { return passes >= 3; }));
    EXPECT_EQ(read, "ab");
    close(ends[0]);
    close(ends[1]);
}

}  // namespace
}  // namespace tarvix
