// What every service of hot keys keeps to.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/HotKeys.h"

namespace tarvix {

struct HotKeysSubject {
    std::shared_ptr<void> world;  // owns the service
    HotKeys& hotKeys;
    // Somebody presses a key with carbon modifiers and releases it; all that has been told when this returns.
    std::function<void(std::uint32_t keyCode, std::uint32_t modifiers)> press;
    // Another program takes a key for itself, and lets go of it.
    std::function<void(std::uint32_t keyCode, std::uint32_t modifiers)> takeByOther;
    std::function<void()> letGo;
};

class HotKeysContract : public testing::TestWithParam<std::function<HotKeysSubject()>> {
protected:
    using Lines = std::vector<std::string>;

    static constexpr std::uint32_t space = 49, a = 0;
    static constexpr std::uint32_t shiftCommand = 0x300, controlShift = 0x1200;

    static std::string word(HotKeyEvent event) { return event == HotKeyEvent::pressed ? "pressed " : "released "; }
    Lines takeTold() { return std::exchange(told, {}); }
    std::function<Verdict(const RawKeyEvent&)> tells(const std::string& name) {
        return [this, name](const RawKeyEvent& key) {
            told.push_back(name + " " + word(key.event) + std::to_string(key.keyCode) + " with " +
                           std::to_string(key.modifiers));
            return Verdict::pass;
        };
    }

    HotKeysSubject subject = GetParam()();
    HotKeys& hotKeys = subject.hotKeys;
    Lines told;

private:
    Subscription listening_ = hotKeys.onHotKey(
        [this](HotKeyEvent event, std::uint32_t id) { told.push_back(word(event) + std::to_string(id)); });
    Subscription menus_ = hotKeys.onMenuTracking(
        [this](MenuTracking now) { told.push_back(now == MenuTracking::began ? "menu began" : "menu ended"); });
};

TEST_P(HotKeysContract, APressAndItsReleaseAreToldWithTheId) {
    ASSERT_TRUE(hotKeys.registerHotKey(7, space, shiftCommand));
    ASSERT_TRUE(hotKeys.registerHotKey(8, a, controlShift));
    subject.press(space, shiftCommand);
    subject.press(a, controlShift);
    EXPECT_EQ(takeTold(), (Lines{"pressed 7", "released 7", "pressed 8", "released 8"}));
}

TEST_P(HotKeysContract, OtherModifiersAndOtherKeysAreNotIt) {
    ASSERT_TRUE(hotKeys.registerHotKey(7, space, shiftCommand));
    for (const std::uint32_t modifiers : {0x0u, 0x100u, 0x200u, 0x1300u, 0xb00u}) subject.press(space, modifiers);
    subject.press(a, shiftCommand);
    EXPECT_EQ(takeTold(), Lines{});
}

TEST_P(HotKeysContract, AnUnregisteredOneIsSilentAndComesBackUnderItsId) {
    ASSERT_TRUE(hotKeys.registerHotKey(7, space, shiftCommand));
    hotKeys.unregisterHotKey(7);
    hotKeys.unregisterHotKey(7);
    hotKeys.unregisterHotKey(99);
    subject.press(space, shiftCommand);
    EXPECT_EQ(takeTold(), Lines{});
    ASSERT_TRUE(hotKeys.registerHotKey(7, space, shiftCommand));
    subject.press(space, shiftCommand);
    EXPECT_EQ(takeTold(), (Lines{"pressed 7", "released 7"}));
}

TEST_P(HotKeysContract, WhatAnotherProgramHoldsIsRefusedUntilItLetsGo) {
    subject.takeByOther(space, shiftCommand);
    EXPECT_FALSE(hotKeys.registerHotKey(7, space, shiftCommand));
    EXPECT_TRUE(hotKeys.registerHotKey(8, a, controlShift));
    subject.press(space, shiftCommand);
    EXPECT_EQ(takeTold(), Lines{});
    subject.letGo();
    EXPECT_TRUE(hotKeys.registerHotKey(7, space, shiftCommand));
    subject.press(space, shiftCommand);
    EXPECT_EQ(takeTold(), (Lines{"pressed 7", "released 7"}));
}

TEST_P(HotKeysContract, RawKeysAreToldWhoeverGetsThem) {
    const Subscription raw = hotKeys.onRawKey(tells("raw"));
    subject.takeByOther(space, shiftCommand);
    subject.press(space, shiftCommand);
    subject.press(a, 0);
    EXPECT_EQ(takeTold(), (Lines{"raw pressed 49 with 768", "raw released 49 with 768", "raw pressed 0 with 0",
                                 "raw released 0 with 0"}));
}

TEST_P(HotKeysContract, ANewListenerForRawKeysTakesTheOldOnesPlace) {
    Subscription first = hotKeys.onRawKey(tells("first"));
    Subscription second = hotKeys.onRawKey(tells("second"));
    first.reset();
    subject.press(a, 0);
    EXPECT_EQ(takeTold(), (Lines{"second pressed 0 with 0", "second released 0 with 0"}));
    second.reset();
    subject.press(a, 0);
    EXPECT_EQ(takeTold(), Lines{});
}

TEST_P(HotKeysContract, APressThatBringsItsHotKeyAboutIsNotYetOneOfIt) {
    Subscription raw;
    raw = hotKeys.onRawKey([&](const RawKeyEvent&) {
        raw.reset();
        EXPECT_TRUE(hotKeys.registerHotKey(7, space, shiftCommand));
        return Verdict::pass;
    });
    subject.press(space, shiftCommand);
    EXPECT_EQ(takeTold(), Lines{});
    subject.press(space, shiftCommand);
    EXPECT_EQ(takeTold(), (Lines{"pressed 7", "released 7"}));
}

TEST_P(HotKeysContract, AHandlerMayUnregisterItsHotKey) {
    ASSERT_TRUE(hotKeys.registerHotKey(7, space, shiftCommand));
    const Subscription once = hotKeys.onHotKey([&](HotKeyEvent, std::uint32_t id) { hotKeys.unregisterHotKey(id); });
    subject.press(space, shiftCommand);
    subject.press(space, shiftCommand);
    EXPECT_EQ(told.front(), "pressed 7");
    EXPECT_EQ(std::count(told.begin(), told.end(), "pressed 7"), 1);
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(HotKeysContract);

}  // namespace tarvix
