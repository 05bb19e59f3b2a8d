// Start at login, on a simulated desktop.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "shell/LaunchAtLogin.h"
#include "simulated/Journal.h"
#include "simulated/SimulatedLoginItems.h"
#include "simulated/SimulatedUserDefaults.h"

namespace tarvix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Value = UserDefaults::Value;

const std::string kHelper = "org.example.Own-LaunchAtLoginHelper";

class LaunchAtLoginTest : public testing::Test {
protected:
    std::vector<std::string> entries() const { return journal.entries({Topic::loginItem}); }

    static std::string errorOutputOf(const std::function<void()>& body) {
        testing::internal::CaptureStderr();
        body();
        return testing::internal::GetCapturedStderr();
    }

    Journal journal;
    SimulatedUserDefaults defaults;
    SimulatedLoginItems loginItems{journal};
    LaunchAtLogin launchAtLogin{defaults, loginItems, "org.example.Own"};
};

TEST_F(LaunchAtLoginTest, TheStateIsTheDesktopsAtEachQuestion) {
    EXPECT_FALSE(launchAtLogin.isEnabled());
    loginItems.enabled = true;
    EXPECT_TRUE(launchAtLogin.isEnabled());
    loginItems.enabled = false;
    EXPECT_FALSE(launchAtLogin.isEnabled());
    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(LaunchAtLoginTest, SettingItChangesTheDesktop) {
    launchAtLogin.setEnabled(true);
    EXPECT_TRUE(launchAtLogin.isEnabled());
    launchAtLogin.setEnabled(false);
    EXPECT_FALSE(launchAtLogin.isEnabled());
    EXPECT_THAT(entries(), ElementsAre("enabled login item", "disabled login item"));
}

TEST_F(LaunchAtLoginTest, SettingItWhileItIsSetMakesTheEntryAnew) {
    loginItems.enabled = true;
    launchAtLogin.setEnabled(true);
    EXPECT_THAT(entries(), ElementsAre("disabled login item", "enabled login item"));
    EXPECT_TRUE(launchAtLogin.isEnabled());
}

TEST_F(LaunchAtLoginTest, AFailureIsOneLineOnTheErrorOutputAndTheStateStaysTheDesktops) {
    loginItems.failure = "the folder is read-only";
    EXPECT_EQ(errorOutputOf([&] { launchAtLogin.setEnabled(true); }),
              "Failed to enable launch at login: the folder is read-only\n");
    EXPECT_FALSE(launchAtLogin.isEnabled());
    loginItems.enabled = true;
    EXPECT_EQ(errorOutputOf([&] { launchAtLogin.setEnabled(false); }),
              "Failed to disable launch at login: the folder is read-only\n");
    EXPECT_TRUE(launchAtLogin.isEnabled());
}

TEST_F(LaunchAtLoginTest, AFailureToRemoveTheEntryThatIsMadeAnewIsOneLineToo) {
    loginItems.enabled = true;
    loginItems.failure = "no";
    EXPECT_EQ(errorOutputOf([&] { launchAtLogin.setEnabled(true); }), "Failed to enable launch at login: no\n");
}

TEST_F(LaunchAtLoginTest, ListenersAreToldBeforeAndAfterInTheirOrder) {
    std::vector<std::string> told;
    const auto note = [&](const std::string& what) { told.push_back(what + (loginItems.enabled ? " on" : " off")); };
    const Subscription value = launchAtLogin.onValue([&](bool is) { note(is ? "true" : "false"); });
    const Subscription changed = launchAtLogin.onChange([&] { note("changed"); });
    const Subscription willChange = launchAtLogin.onWillChange([&] { note("will change"); });
    const Subscription announced = launchAtLogin.onAnnounced([&] { note("announced"); });
    EXPECT_THAT(told, ElementsAre("false off"));
    told.clear();
    launchAtLogin.setEnabled(true);
    EXPECT_THAT(told, ElementsAre("announced off", "will change off", "changed on", "true on"));
}

TEST_F(LaunchAtLoginTest, ADroppedTokenEndsTheCalls) {
    int calls = 0;
    Subscription changed = launchAtLogin.onChange([&] { ++calls; });
    launchAtLogin.setEnabled(true);
    changed.reset();
    launchAtLogin.setEnabled(false);
    EXPECT_EQ(calls, 1);
}

TEST_F(LaunchAtLoginTest, TheValueThatAListenerBeginsWithIsTheOneThatWasSetLast) {
    std::vector<bool> values;
    const auto receive = [&](bool is) { values.push_back(is); };
    loginItems.enabled = true;
    const Subscription first = launchAtLogin.onValue(receive);
    loginItems.enabled = false;
    const Subscription second = launchAtLogin.onValue(receive);
    EXPECT_THAT(values, ElementsAre(true, true));
    values.clear();
    launchAtLogin.setEnabled(false);
    EXPECT_THAT(values, ElementsAre(false, false));
    values.clear();
    const Subscription third = launchAtLogin.onValue(receive);
    EXPECT_THAT(values, ElementsAre(false));
}

TEST_F(LaunchAtLoginTest, AValueThatTheDesktopRefusesIsSentAllTheSame) {
    std::vector<bool> values;
    const Subscription value = launchAtLogin.onValue([&](bool is) { values.push_back(is); });
    loginItems.failure = "no";
    errorOutputOf([&] { launchAtLogin.setEnabled(true); });
    EXPECT_THAT(values, ElementsAre(false, true));
    EXPECT_FALSE(launchAtLogin.isEnabled());
}

TEST_F(LaunchAtLoginTest, AUserOfTheHelperKeepsTheLoginItem) {
    loginItems.helpers = {kHelper};
    launchAtLogin.migrateIfNeeded();
    EXPECT_TRUE(launchAtLogin.isEnabled());
    EXPECT_THAT(entries(), ElementsAre("enabled login item", "removed helper " + kHelper));
    EXPECT_EQ(defaults.get("LaunchAtLogin__hasMigrated"), Value(true));
}

TEST_F(LaunchAtLoginTest, WithoutTheHelperTheMigrationLeavesTheStateAsItIs) {
    loginItems.helpers = {"org.example.Other-LaunchAtLoginHelper"};
    launchAtLogin.migrateIfNeeded();
    EXPECT_FALSE(launchAtLogin.isEnabled());
    EXPECT_THAT(entries(), ElementsAre("removed helper " + kHelper));
    EXPECT_EQ(defaults.get("LaunchAtLogin__hasMigrated"), Value(true));
}

TEST_F(LaunchAtLoginTest, TheMigrationRunsOnce) {
    launchAtLogin.migrateIfNeeded();
    loginItems.helpers = {kHelper};
    launchAtLogin.migrateIfNeeded();
    LaunchAtLogin(defaults, loginItems, "org.example.Own").migrateIfNeeded();
    EXPECT_FALSE(launchAtLogin.isEnabled());
    EXPECT_THAT(entries(), ElementsAre("removed helper " + kHelper));
}

TEST_F(LaunchAtLoginTest, WhatIsntTrueUnderTheKeyCountsAsNotMigrated) {
    for (const Value& stored : {Value(false), Value(std::string("true")), Value(1.0)}) {
        defaults.set(LaunchAtLogin::kHasMigrated, stored);
        launchAtLogin.migrateIfNeeded();
    }
    EXPECT_EQ(entries().size(), 3u);
}

TEST_F(LaunchAtLoginTest, AFailedMigrationIsLoggedAndNotTriedAgain) {
    loginItems.helpers = {kHelper};
    loginItems.failure = "no";
    EXPECT_EQ(errorOutputOf([&] { launchAtLogin.migrateIfNeeded(); }), "Failed to enable launch at login: no\n");
    EXPECT_THAT(loginItems.helpers, IsEmpty());
    loginItems.failure.reset();
    launchAtLogin.migrateIfNeeded();
    EXPECT_FALSE(launchAtLogin.isEnabled());
}

// Work that ends the program must not be met again at each start.
TEST_F(LaunchAtLoginTest, TheMigrationCountsAsDoneBeforeItsWork) {
    class Asking : public SimulatedLoginItems {
    public:
        Asking(Journal& itsJournal, UserDefaults& store) : SimulatedLoginItems(itsJournal), store_(store) {}
        bool isHelperEnabled(std::string_view identifier) override {
            wasStored = store_.get(LaunchAtLogin::kHasMigrated).has_value();
            return SimulatedLoginItems::isHelperEnabled(identifier);
        }
        bool wasStored = false;

    private:
        UserDefaults& store_;
    };
    Asking asking(journal, defaults);
    LaunchAtLogin(defaults, asking, "org.example.Own").migrateIfNeeded();
    EXPECT_TRUE(asking.wasStored);
}

TEST_F(LaunchAtLoginTest, TheMigrationTellsNoListener) {
    int calls = 0;
    const Subscription changed = launchAtLogin.onChange([&] { ++calls; });
    loginItems.helpers = {kHelper};
    launchAtLogin.migrateIfNeeded();
    EXPECT_EQ(calls, 0);
}

}  // namespace
}  // namespace tarvix
