#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "base/Listeners.h"

namespace tarvix {
namespace {

TEST(Subscription, CancelsOnceWhenItIsDropped) {
    int cancelled = 0;
    {
        Subscription token([&] { ++cancelled; });
        EXPECT_TRUE(token);
        EXPECT_EQ(cancelled, 0);
    }
    EXPECT_EQ(cancelled, 1);
}

TEST(Subscription, MovingHandsTheDutyOn) {
    int cancelled = 0;
    Subscription first([&] { ++cancelled; });
    Subscription second(std::move(first));
    EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move)
    Subscription third;
    third = std::move(second);
    EXPECT_EQ(cancelled, 0);
    third.reset();
    third.reset();
    EXPECT_EQ(cancelled, 1);
    EXPECT_FALSE(third);
}

TEST(Subscription, AssigningDropsWhatWasHeld) {
    std::string dropped;
    Subscription token([&] { dropped += "a"; });
    token = Subscription([&] { dropped += "b"; });
    EXPECT_EQ(dropped, "a");
    Subscription& same = token;
    token = std::move(same);
    EXPECT_EQ(dropped, "a");
    EXPECT_TRUE(token);
}

TEST(Subscription, MayBeDroppedByItsOwnCancelling) {
    Subscription token;
    int cancelled = 0;
    token = Subscription([&] {
        ++cancelled;
        token.reset();
    });
    token.reset();
    EXPECT_EQ(cancelled, 1);
}

TEST(Listeners, AreCalledInTheOrderOfAdding) {
    Listeners<int> listeners;
    std::string heard;
    const Subscription a = listeners.add([&](int n) { heard += "a" + std::to_string(n); });
    const Subscription b = listeners.add([&](int n) { heard += "b" + std::to_string(n); });
    listeners(1);
    listeners(2);
    EXPECT_EQ(heard, "a1b1a2b2");
}

TEST(Listeners, AreNotCalledAfterTheirTokenIsDropped) {
    Listeners<> listeners;
    int heard = 0;
    Subscription token = listeners.add([&] { ++heard; });
    EXPECT_FALSE(listeners.empty());
    token.reset();
    EXPECT_TRUE(listeners.empty());
    listeners();
    EXPECT_EQ(heard, 0);
}

TEST(Listeners, MayDropTheirOwnTokenWhileBeingCalled) {
    Listeners<> listeners;
    int heard = 0;
    Subscription token;
    const auto owned = std::make_shared<int>(7);  // dies with the listener, and is used after the drop
    token = listeners.add([&, owned] {
        token.reset();
        heard += *owned;
    });
    listeners();
    listeners();
    EXPECT_EQ(heard, 7);
}

TEST(Listeners, OneDroppedMeanwhileIsNotCalled) {
    Listeners<> listeners;
    std::string heard;
    Subscription second;
    const Subscription first = listeners.add([&] {
        heard += "1";
        second.reset();
    });
    second = listeners.add([&] { heard += "2"; });
    listeners();
    EXPECT_EQ(heard, "1");
}

TEST(Listeners, OneAddedMeanwhileIsCalledFromTheNextTimeOn) {
    Listeners<> listeners;
    std::string heard;
    Subscription added;
    const Subscription first = listeners.add([&] {
        heard += "1";
        if (!added) added = listeners.add([&] { heard += "2"; });
    });
    listeners();
    EXPECT_EQ(heard, "1");
    listeners();
    EXPECT_EQ(heard, "112");
}

TEST(Listeners, MayCallTheListAgain) {
    Listeners<int> listeners;
    std::string heard;
    const Subscription token = listeners.add([&](int depth) {
        heard += std::to_string(depth);
        if (depth < 3) listeners(depth + 1);
    });
    listeners(1);
    EXPECT_EQ(heard, "123");
}

TEST(Listeners, ATokenMayOutliveTheList) {
    auto listeners = std::make_unique<Listeners<>>();
    const Subscription token = listeners->add([] {});
    listeners.reset();
    EXPECT_TRUE(token);
}

TEST(Listeners, AListenerMayDestroyTheList) {
    auto listeners = std::make_unique<Listeners<>>();
    std::string heard;
    const Subscription first = listeners->add([&] {
        heard += "1";
        listeners.reset();
    });
    const Subscription second = listeners->add([&] { heard += "2"; });
    (*listeners)();
    EXPECT_EQ(heard, "12");
}

}  // namespace
}  // namespace tarvix
