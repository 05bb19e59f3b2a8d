// The notifications of real daemons: shown, found by an action's name with the running program, clicked, and invoked
// then, as the daemon says on the session bus.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <fstream>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "ax/AXEngine2.h"
#include "tests/desktop/RealServices.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using namespace atspi;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kName = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";

// A program that notifies, and hears what becomes of that.
class Notifier {
public:
    struct Invoked {
        std::uint32_t id = 0;
        std::string action;
        friend bool operator==(const Invoked&, const Invoked&) = default;
        friend void PrintTo(const Invoked& invoked, std::ostream* out) {
            *out << invoked.action << " of " << invoked.id;
        }
    };

    Notifier() : bus_(connectToSession()) {
        const auto invoked = [](sd_bus_message* signal, void* self, sd_bus_error*) {
            Invoked seen;
            const char* action = "";
            if (sd_bus_message_read(signal, "us", &seen.id, &action) > 0) {
                seen.action = action;
                static_cast<Notifier*>(self)->invoked_.push_back(std::move(seen));
            }
            return 0;
        };
        constexpr std::uint64_t twentySeconds = 20'000'000;  // the first notification has a daemon load its pictures
        sd_bus_set_method_call_timeout(bus_.get(), twentySeconds);
        EXPECT_GE(sd_bus_match_signal(bus_.get(), nullptr, nullptr, kPath, kName, "ActionInvoked", invoked, this), 0);
    }

    bool isServed() const {
        int owned = 0;
        const Message reply = callBlocking(bus_.get(), "org.freedesktop.DBus", "/", "org.freedesktop.DBus",
                                           "NameHasOwner", Milliseconds(1000), kName);
        return reply && sd_bus_message_read(reply.get(), "b", &owned) > 0 && owned != 0;
    }

    // Shows a notification with one action until it is closed; 0 when it isn't taken.
    std::uint32_t show(const std::string& summary, const std::string& action, const std::string& label) {
        sd_bus_message* reply = nullptr;
        std::uint32_t id = 0;
        const int sent =
            sd_bus_call_method(bus_.get(), kName, kPath, kName, "Notify", nullptr, &reply, "susssasa{sv}i", "fixture",
                               0, "", summary.c_str(), "In bloom", 2, action.c_str(), label.c_str(), 0, 0);
        const Message taken(reply);
        if (sent < 0 || sd_bus_message_read(reply, "u", &id) <= 0) return 0;
        return id;
    }

    // Of one that is closed already, the daemon has nothing to close.
    void close(std::uint32_t id) {
        sd_bus_call_method(bus_.get(), kName, kPath, kName, "CloseNotification", nullptr, nullptr, "u", id);
    }

    const std::vector<Invoked>& invoked() {
        while (sd_bus_process(bus_.get(), nullptr) > 0) {
        }
        return invoked_;
    }

private:
    Bus bus_;
    std::vector<Invoked> invoked_;
};

// How a daemon is started by the session bus, by the name of its description.
std::vector<std::string> commandOf(const std::string& service) {
    std::ifstream file("/usr/share/dbus-1/services/" + service + ".service");
    std::vector<std::string> words;
    constexpr std::string_view key = "Exec=";
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with(key)) continue;
        std::istringstream fields(line.substr(key.size()));
        for (std::string word; fields >> word;) words.push_back(word);
    }
    return words;
}

struct Daemon {
    const char* name;
    std::vector<std::string> command;
    friend void PrintTo(const Daemon& daemon, std::ostream* out) { *out << daemon.name; }
};

const Daemon kXfce = {"Xfce", commandOf("org.xfce.xfce4-notifyd.Notifications")};
const Daemon kMate = {"Mate", commandOf("org.freedesktop.mate.Notifications")};
const Daemon kLxqt = {"Lxqt", {"lxqt-notificationd"}};
const Daemon kDunst = {"Dunst", {"dunst"}};

class NotificationTest : public ::testing::TestWithParam<Daemon> {
protected:
    void SetUp() override {
        ASSERT_THAT(GetParam().command, Not(IsEmpty()));
        daemon_.emplace(GetParam().command);
        ASSERT_TRUE(await(20s, [this] { return notifier_.isServed(); })) << "the daemon doesn't come up";
    }

    std::vector<AccessibilityElement> elements() const {
        const OrderedSet<AccessibilityElement> found = engine_.notificationElements();
        return {found.begin(), found.end()};
    }
    static bool hold(const std::vector<AccessibilityElement>& elements, const std::string& text) {
        return std::ranges::any_of(
            elements, [&](const AccessibilityElement& each) { return each.title == text || each.value == text; });
    }

    // The windows of the daemon that are on the screen.
    std::size_t windows() const {
        const auto windows = services_.windows->onScreen();
        return static_cast<std::size_t>(std::ranges::count(windows, daemon_->pid(), &X11Window::pid));
    }

    // Whether all texts are found, at places that don't change any more.
    bool comeToRest(const std::vector<std::string>& texts) const {
        std::vector<AccessibilityElement> last;
        int same = 0;
        return await(15s, [&] {
            std::vector<AccessibilityElement> now = elements();
            const bool isWhole = std::ranges::all_of(texts, [&](const std::string& each) { return hold(now, each); });
            same = isWhole && now == last ? same + 1 : 0;
            last = std::move(now);
            if (same < kSteady) std::this_thread::sleep_for(30ms);
            return same >= kSteady;
        });
    }

    // Searches for an action and clicks it.
    void choose(Program& program, const std::string& query) {
        const Program::Step opened = program.pressHotKey(keyboard_);
        ASSERT_TRUE(opened);
        ASSERT_TRUE(program.reached(milestone::candidatesRead, opened.pressed));
        const Program::Step typed = program.type(keyboard_, query);
        ASSERT_TRUE(typed);
        ASSERT_EQ(typed.answered->count, 1u);
        ASSERT_TRUE(program.press(keyboard_, keysym::returnKey, milestone::inputHidden));
    }

    static constexpr int kSteady = 4;
    RealServices services_;
    const AXEngine2 engine_{[this] {
        AtspiService& service = *services_.accessibility;
        services_.workspace->setRole("com.apple.notificationcenterui", [&] { return service.notificationProcesses(); });
        return services_.platform();
    }()};
    Keyboard keyboard_;
    Notifier notifier_;
    std::optional<Process> daemon_;
};

// Of two that show at once, each is at its own place.
TEST_P(NotificationTest, AnActionIsFoundByItsNameAndReturnInvokesIt) {
    EXPECT_THAT(elements(), IsEmpty());
    const std::uint32_t first = notifier_.show("Heather", "oak", "Oakleaf");
    const std::uint32_t second = notifier_.show("Bracken", "elm", "Elmseed");
    ASSERT_NE(first, 0u);
    ASSERT_NE(second, 0u);
    ASSERT_TRUE(comeToRest({"Heather", "Bracken", "Oakleaf", "Elmseed", "In bloom"}));

    Program program(TARVIX_PROGRAM);
    ASSERT_TRUE(program.isReady());
    keyboard_.movePointer({200, 500});  // a pointer over a notification keeps it, or makes it fade
    choose(program, "elmseed");
    if (HasFatalFailure()) return;
    EXPECT_TRUE(await(10s, [&] { return !notifier_.invoked().empty(); }));
    EXPECT_THAT(notifier_.invoked(), ElementsAre(Notifier::Invoked{second, "elm"}));
    // One daemon leaves it there when it has been answered. The other one moves up then, or stays.
    notifier_.close(second);
    EXPECT_TRUE(await(15s, [&] { return !hold(elements(), "Bracken"); }));
    ASSERT_TRUE(comeToRest({"Heather", "Oakleaf"}));
    choose(program, "oakleaf");
    if (HasFatalFailure()) return;
    EXPECT_TRUE(await(10s, [&] { return notifier_.invoked().size() == 2; }));
    EXPECT_EQ(notifier_.invoked().back(), (Notifier::Invoked{first, "oak"}));
    notifier_.close(first);
    EXPECT_TRUE(await(15s, [&] { return elements().empty(); }));
}

std::string nameOf(const ::testing::TestParamInfo<Daemon>& row) { return row.param.name; }

INSTANTIATE_TEST_SUITE_P(Daemons, NotificationTest, ::testing::Values(kXfce, kMate, kLxqt), nameOf);

using TreelessNotificationTest = NotificationTest;

TEST_P(TreelessNotificationTest, ThereIsNothingToFind) {
    ASSERT_NE(notifier_.show("Heather", "oak", "Oakleaf"), 0u);
    ASSERT_TRUE(await(10s, [this] { return windows() > 0; }));
    EXPECT_THAT(elements(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Daemons, TreelessNotificationTest, ::testing::Values(kDunst), nameOf);

TEST(NoNotificationTest, WithoutADaemonThereIsNoneAndNoneIsStarted) {
    RealServices services;
    EXPECT_THAT(services.accessibility->notificationProcesses(), IsEmpty());
    EXPECT_FALSE(Notifier().isServed());
}

}  // namespace
}  // namespace tarvix
