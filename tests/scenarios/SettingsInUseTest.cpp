// Which settings the program reads, against what the table of settings says of them.
#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <mutex>
#include <set>

#include "shell/SettingsTable.h"
#include "tests/scenarios/SearchScenario.h"

namespace tarvix {
namespace {

using testing::ContainerEq;

constexpr std::string_view kUpdater = "UpdateMemory";  // a part of the platform's updater, which is simulated here

// Hands on to a store and notes which keys were asked for, on any thread.
class NotingDefaults : public UserDefaults {
public:
    explicit NotingDefaults(UserDefaults& store) : store_(store) {}

    std::optional<Value> get(std::string_view key) const override {
        {
            const std::lock_guard lock(mutex_);
            read_.emplace(key);
        }
        return store_.get(key);
    }
    void set(std::string_view key, Value value) override { store_.set(key, std::move(value)); }
    void remove(std::string_view key) override { store_.remove(key); }
    [[nodiscard]] Subscription onChange(std::function<void(std::string_view key)> changed) override {
        return store_.onChange(std::move(changed));
    }
    const std::set<std::string>& read() const { return read_; }

private:
    UserDefaults& store_;
    mutable std::mutex mutex_;
    mutable std::set<std::string> read_;
};

// What a user could do with the keys, so that everything that reads a setting has had its turn.
void useEverything(SimulatedDesktop& desk) {
    const auto press = [&](Key key, std::uint64_t flags = 0) { desk.press(qwertyKeyCode(key), flags); };
    const auto search = [&] {
        press(Key::space, eventFlag::shift | eventFlag::command);
        desk.settle();
        desk.type("arch");
        desk.panels.canvas().markers();
    };
    search();
    press(Key::downArrow);
    press(Key::upArrow);
    press(Key::c, eventFlag::command);
    press(Key::return_);
    search();
    desk.scroll();
}

TEST(SettingsInUse, AreThoseThatTheTableNamesAReaderOf) {
    SimulatedDesktop desk;
    NotingDefaults defaults(desk.userDefaults);
    desk.window("Mail").button("Archive", {{20, 20}, {80, 30}});
    const Platform on = desk.platform();
    AppCore program({on.accessibility, on.application, on.workspace, on.windowServer, on.screens, on.events,
                     on.eventTaps, on.hotKeys, on.inputSources, on.panels, on.runLoop, defaults, on.pasteboard,
                     on.notificationCenter, on.milestones, on.statusBar, on.loginItems, on.updater});
    program.start();
    desk.userDefaults.set("targetsColor", "custom");
    useEverything(desk);

    std::set<std::string> expected{"searchCase", "inputWidth", "KeyboardShortcuts_toggleWith"};  // looked up, and none
    for (const SettingRow& row : settingRows)
        if (!row.readBy.empty() && row.readBy != kUpdater) expected.emplace(row.key);
    EXPECT_THAT(defaults.read(), ContainerEq(expected));
}

}  // namespace
}  // namespace tarvix
