// What every settings store keeps to.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/UserDefaults.h"
#include "tests/contract/Subject.h"

namespace tarvix {

class UserDefaultsContract : public testing::TestWithParam<ContractFactory<UserDefaults>> {
protected:
    using Value = UserDefaults::Value;

    bool waitUntil(const std::function<bool()>& condition) { return subject_.waitUntil(condition); }

    ContractSubject<UserDefaults> subject_ = GetParam()();
    UserDefaults& defaults = subject_.service;
};

TEST_P(UserDefaultsContract, AKeyIsAbsentUntilSomebodySetsIt) {
    EXPECT_EQ(defaults.get("inputTextSize"), std::nullopt);
    defaults.set("inputTextSize", 16.0);
    EXPECT_EQ(defaults.get("inputTextSize"), Value(16.0));
}

TEST_P(UserDefaultsContract, EachValueKeepsItsType) {
    defaults.set("flag", false);
    defaults.set("number", 1.0);
    defaults.set("text", std::string("true"));
    EXPECT_EQ(defaults.get("flag"), Value(false));
    EXPECT_EQ(defaults.get("number"), Value(1.0));
    EXPECT_EQ(defaults.get("text"), Value(std::string("true")));
}

TEST_P(UserDefaultsContract, ALaterValueOfAnotherTypeReplacesTheEarlierOne) {
    defaults.set("key", true);
    defaults.set("key", std::string("text"));
    EXPECT_EQ(defaults.get("key"), Value(std::string("text")));
}

TEST_P(UserDefaultsContract, ARemovedKeyIsAbsent) {
    defaults.set("searchCase", std::string("ignore"));
    defaults.remove("searchCase");
    EXPECT_EQ(defaults.get("searchCase"), std::nullopt);
    defaults.remove("never set");
    EXPECT_EQ(defaults.get("never set"), std::nullopt);
}

TEST_P(UserDefaultsContract, TextsAndNumbersComeBackAsTheyWere) {
    const std::string text = "{\"carbonKeyCode\":49}\n\\ \"quoted\" ünïcode \xF0\x9F\x94\x8D";
    defaults.set("text", text);
    defaults.set("number", 0.43);
    EXPECT_EQ(defaults.get("text"), Value(text));
    EXPECT_EQ(defaults.get("number"), Value(0.43));
}

TEST_P(UserDefaultsContract, ObserversLearnOfSettingAndRemoving) {
    int changes = 0;
    std::vector<std::string> keys;
    const Subscription observing = defaults.onChange([&](std::string_view key) {
        ++changes;
        keys.emplace_back(key);
    });
    defaults.set("key", true);
    ASSERT_TRUE(waitUntil([&] { return changes >= 1; }));
    const int afterSetting = changes;
    defaults.remove("key");
    ASSERT_TRUE(waitUntil([&] { return changes > afterSetting; }));
    for (const std::string& key : keys) EXPECT_TRUE(key == "key" || key.empty()) << key;
}

TEST_P(UserDefaultsContract, AnObserverSeesTheNewValue) {
    std::optional<Value> seen;
    const Subscription observing = defaults.onChange([&](std::string_view) { seen = defaults.get("key"); });
    defaults.set("key", 0.5);
    EXPECT_TRUE(waitUntil([&] { return seen == Value(0.5); }));
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(UserDefaultsContract);

}  // namespace tarvix
