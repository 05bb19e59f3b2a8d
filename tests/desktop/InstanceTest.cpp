// One Tarvix in a session: what a second start does, and how others reach the one that runs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <deque>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "linux/instance/RunningInstance.h"
#include "linux/x11/X11Windows.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr auto kLimit = 20s;
constexpr auto kName = "org.tarvix.Tarvix";

std::string contentOf(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
}

bool isNameTaken() {
    const auto said =
        outputOf({"dbus-send", "--session", "--print-reply=literal", "--dest=org.freedesktop.DBus",
                  "/org/freedesktop/DBus", "org.freedesktop.DBus.NameHasOwner", std::string("string:") + kName});
    return said && said->find("true") != said->npos;
}

// A call of the interface that every desktop knows, its arguments with their types; whether it was answered without an
// error.
bool call(const std::string& method, const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"gdbus",
                                     "call",
                                     "--session",
                                     "--timeout",
                                     "15",
                                     "--dest",
                                     kName,
                                     "--object-path",
                                     "/org/tarvix/Tarvix",
                                     "--method",
                                     "org.freedesktop.Application." + method};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return outputOf(command).has_value();
}

// One message and nothing before it, which starts the program where none runs.
bool opens(const char* address) {
    const atspi::Bus bus = atspi::connectToSession();
    sd_bus_set_method_call_timeout(bus.get(), 15'000'000);
    return sd_bus_call_method(bus.get(), kName, "/org/tarvix/Tarvix", "org.freedesktop.Application", "Open", nullptr,
                              nullptr, "asa{sv}", 1, address, 0) >= 0;
}

// A call with a hundred thousand of them, the first of which isn't one of ours.
atspi::Message manyAddresses(sd_bus* bus) {
    sd_bus_message* raw = nullptr;
    sd_bus_message_new_method_call(bus, &raw, kName, "/org/tarvix/Tarvix", "org.freedesktop.Application", "Open");
    atspi::Message call(raw);
    sd_bus_message_open_container(raw, 'a', "s");
    sd_bus_message_append_basic(raw, 's', "file:///");
    for (int i = 0; i < 100'000; ++i) sd_bus_message_append_basic(raw, 's', "tarvix://openTheInput");
    sd_bus_message_close_container(raw);
    sd_bus_message_append(raw, "a{sv}", 0);
    return call;
}

class InstanceTest : public ::testing::Test {
protected:
    void TearDown() override {
        program_.reset();
        EXPECT_TRUE(await(kLimit, [] { return !isNameTaken(); })) << "something of it runs on";
    }

    void startProgram() {
        program_.emplace(TARVIX_PROGRAM);
        ASSERT_TRUE(program_->isReady());
    }

    struct Ended {
        std::optional<int> status;
        std::string errors;
    };
    // Another start of the program, to its end.
    Ended start(const std::vector<std::string>& arguments, const Process::Environment& changes = {}) const {
        std::vector<std::string> command{"sh", "-c", "exec \"$@\" 2>\"$0\"", folder_.file("errors"), TARVIX_PROGRAM};
        command.insert(command.end(), arguments.begin(), arguments.end());
        Process process(command, changes);
        const auto status = process.waitForEnd(kLimit);
        return {status, contentOf(folder_.file("errors"))};
    }
    // A window of the program that a window manager looks after.
    bool hasWindow(const std::string& title) {
        const std::int32_t pid = program_->process().pid();
        for (const X11Window& window : windows_->clients())
            if (window.title.starts_with(title) && window.pid == pid) return true;
        return false;
    }
    bool opensSettings() {
        return await(kLimit, [this] { return hasWindow("Settings"); });
    }

    const std::unique_ptr<X11Windows> windows_ = std::move(X11Windows::open().value());
    ScratchFolder folder_;
    Keyboard keyboard_;
    std::optional<Program> program_;
};

TEST_F(InstanceTest, ASecondStartOpensTheSettingsAndEnds) {
    startProgram();
    EXPECT_FALSE(hasWindow("Settings"));
    const Ended second = start({}, {{"DISPLAY", std::nullopt}});
    EXPECT_EQ(second.status, 0) << second.errors;
    EXPECT_THAT(second.errors, IsEmpty());
    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(await(kLimit, [this] {
        const auto active = windows_->active();
        return active && active->title.starts_with("Settings");
    }));
}

TEST_F(InstanceTest, OfSixStartsAtOnceExactlyOneStays) {
    constexpr std::size_t starts = 6;
    std::deque<Process> processes;
    for (std::size_t i = 0; i < starts; ++i) processes.emplace_back(std::vector<std::string>{TARVIX_PROGRAM});
    const auto running = [&] {
        return std::ranges::count_if(processes, [](Process& each) { return each.isRunning(); });
    };
    ASSERT_TRUE(await(kLimit, [&] { return running() == 1; })) << running();
    std::vector<int> ends;
    for (Process& each : processes)
        if (!each.isRunning()) ends.push_back(*each.waitForEnd(0s));
    EXPECT_THAT(ends, ElementsAre(0, 0, 0, 0, 0));
    EXPECT_TRUE(isNameTaken());
    EXPECT_EQ(start({"--quit"}).status, 0);
    EXPECT_TRUE(await(kLimit, [&] { return running() == 0; })) << "it has given its name back already";
}

TEST_F(InstanceTest, AnAddressIsHandedOverAndSearchedFor) {
    Fixture fixture("gtk3.py");
    ASSERT_TRUE(fixture.isReady());
    startProgram();
    const std::int64_t before = monotonicMicroseconds();
    const Ended second = start({"tarvix://openTheInput?with=eld%65r", "tarvix://closeTheInput"});
    EXPECT_EQ(second.status, 0) << second.errors;
    ASSERT_TRUE(program_->reached(milestone::inputShown, before));
    EXPECT_TRUE(await(kLimit, [&] {
        const auto moments = program_->log().all();
        return std::ranges::any_of(
            moments, [](const Moment& each) { return each.name == milestone::markersDrawn && each.count == 1; });
    })) << "no typing, and yet there is a Target";
    ASSERT_TRUE(program_->press(keyboard_, keysym::returnKey, milestone::inputHidden));
    EXPECT_TRUE(await(5s, [&] { return fixture.clicks().size() == 1; }));
    EXPECT_THAT(fixture.clicks(), ElementsAre(FixtureClick{"Elder", 1, 1, ""}));
}

TEST_F(InstanceTest, WhatIsNotMeantForItIsRefusedAndReachesNobody) {
    startProgram();
    EXPECT_EQ(start({"https://example.org/"}).status, 2);
    EXPECT_EQ(start({"tarvix:\xc0\xaf"}).status, 2);
    EXPECT_EQ(start({"tarvix://" + std::string(100000, '%') + "\x01\x7f\n"}).status, 0) << "and has no effect";
    EXPECT_FALSE(call("ActivateAction", {"'unknown'", "@av []", "@a{sv} {}"}));
    EXPECT_TRUE(program_->pressHotKey(keyboard_)) << "it goes on";
}

// More than a command line holds, and than anybody means.
TEST_F(InstanceTest, ThousandsOfAddressesAndHugeOnesChangeNothing) {
    startProgram();
    const atspi::Bus bus = atspi::connectToSession();
    const auto ask = [&bus](const char* method, const char* types, auto... arguments) {
        sd_bus_set_method_call_timeout(bus.get(), 15'000'000);
        return sd_bus_call_method(bus.get(), kName, "/org/tarvix/Tarvix", "org.freedesktop.Application", method,
                                  nullptr, nullptr, types, arguments...);
    };
    const std::string huge = "tarvix://openTheInput?with=" + std::string(8U << 20U, 'a');
    EXPECT_GE(ask("Open", "asa{sv}", 2, huge.c_str(), "tarvix://openTheInput", 0), 0);
    EXPECT_GE(ask("Open", "asa{sv}", 0, 0), 0) << "none at all";
    EXPECT_EQ(ask("Open", "s", "tarvix://openTheInput"), -EINVAL);
    EXPECT_EQ(ask("ActivateAction", "sava{sv}", huge.c_str(), 0, 0), -EINVAL);
    atspi::Message many = manyAddresses(bus.get());
    EXPECT_GE(sd_bus_call(bus.get(), many.get(), 15'000'000, nullptr, nullptr), 0);
    EXPECT_FALSE(program_->reached(milestone::inputShown, 0, 0s));
    EXPECT_TRUE(program_->pressHotKey(keyboard_)) << "it goes on";
}

TEST_F(InstanceTest, ItsActionsOpenTheSettingsAndEndIt) {
    startProgram();
    EXPECT_TRUE(call("ActivateAction", {"'settings'", "@av []", "@a{sv} {}"}));
    EXPECT_TRUE(opensSettings());
    EXPECT_TRUE(call("ActivateAction", {"'quit'", "@av []", "@a{sv} {}"}));
    EXPECT_EQ(program_->process().waitForEnd(kLimit), 0);
}

TEST_F(InstanceTest, QuitWaitsForTheEndAndIsContentWithoutAnybody) {
    startProgram();
    EXPECT_EQ(start({"--quit"}, {{"DISPLAY", std::nullopt}}).status, 0);
    EXPECT_FALSE(isNameTaken());
    EXPECT_EQ(program_->process().waitForEnd(kLimit), 0);
    EXPECT_EQ(start({"--quit"}).status, 0) << "none runs";
    EXPECT_FALSE(isNameTaken()) << "it has been started";
}

TEST_F(InstanceTest, OneThatHangsIsNotWaitedForLong) {
    startProgram();
    program_->process().send(SIGSTOP);
    const Ended second = start({});
    program_->process().send(SIGCONT);
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.errors, "tarvix: Tarvix runs already, but doesn't answer\n");
    EXPECT_TRUE(opensSettings()) << "it is asked nonetheless";
}

// As a desktop does that finds the name in a desktop file.
TEST_F(InstanceTest, TheSessionBusStartsItAndAddressesOfBeforeAreDropped) {
    const std::filesystem::path services = std::filesystem::path(std::getenv("TARVIX_VIRTUAL_DESKTOP")) / "services";
    const std::filesystem::path service = services / (std::string(kName) + ".service");
    const MilestoneLog log(folder_.file("milestones"));
    std::ofstream(service) << "[D-BUS Service]\nName=" << kName
                           << "\nExec=/usr/bin/env TARVIX_MILESTONES=" << folder_.file("milestones") << " "
                           << TARVIX_PROGRAM << " --dbus-service\n";
    const auto reload = [] {
        return outputOf({"dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus",
                         "/org/freedesktop/DBus", "org.freedesktop.DBus.ReloadConfig"})
            .has_value();
    };
    ASSERT_TRUE(reload());
    EXPECT_TRUE(opens("tarvix://openTheInput"));
    ASSERT_TRUE(log.next(milestone::ready, 0, kLimit));
    EXPECT_TRUE(isNameTaken());
    const std::int64_t before = monotonicMicroseconds();
    EXPECT_TRUE(opens("tarvix://openTheInput"));
    const auto shown = log.next(milestone::inputShown, 0, kLimit);
    ASSERT_TRUE(shown);
    EXPECT_GE(shown->microseconds, before) << "the first address came before the start";
    std::filesystem::remove(service);
    EXPECT_TRUE(reload());
    EXPECT_EQ(start({"--quit"}).status, 0);
}

TEST_F(InstanceTest, TheDesktopsOpenerReachesIt) {
    const std::filesystem::path applications = folder_.file("data/applications");
    std::filesystem::create_directories(applications);
    std::ofstream(applications / "org.tarvix.Tarvix.desktop")
        << "[Desktop Entry]\nType=Application\nName=Tarvix\nExec=" << TARVIX_PROGRAM
        << " %u\nMimeType=x-scheme-handler/tarvix;\n";
    std::ofstream(applications / "mimeapps.list")
        << "[Default Applications]\nx-scheme-handler/tarvix=org.tarvix.Tarvix.desktop\n";
    startProgram();
    const std::int64_t before = monotonicMicroseconds();
    Process opener({"xdg-open", "tarvix://openTheInput?with=save"}, {{"XDG_DATA_HOME", folder_.file("data")}});
    EXPECT_EQ(opener.waitForEnd(kLimit), 0);
    EXPECT_TRUE(program_->reached(milestone::inputShown, before));
}

// Claims and requests, without the program.
class PollOnce : public ReadWatcher {
public:
    Subscription onReadable(int, std::function<void()> ready) override {
        ready_ = std::move(ready);
        return Subscription([this] { ready_ = nullptr; });
    }
    void look() const {
        if (ready_) ready_();
    }

private:
    std::function<void()> ready_;
};

TEST(RunningInstanceTest, OneHasTheNameUntilItGoes) {
    auto first = RunningInstance::claim();
    ASSERT_TRUE(first);
    EXPECT_FALSE(RunningInstance::claim());
    first.reset();
    EXPECT_TRUE(RunningInstance::claim());
    EXPECT_EQ(askToActivate(), Asked::nobodyRuns);
    EXPECT_EQ(askToQuit(), Asked::nobodyRuns);
}

TEST(RunningInstanceTest, WhatIsAskedBeforeItServesWaits) {
    const auto instance = RunningInstance::claim();
    ASSERT_TRUE(instance);
    std::deque<Process> askers;
    askers.emplace_back(std::vector<std::string>{TARVIX_PROGRAM, "tarvix://one", "tarvix://two"});
    askers.emplace_back(std::vector<std::string>{TARVIX_PROGRAM});
    askers.emplace_back(std::vector<std::string>{TARVIX_PROGRAM, "--quit"});
    EXPECT_FALSE(askers.front().waitForEnd(300ms));
    std::vector<std::string> asked;
    PollOnce loop;
    const Subscription served =
        instance->serve(loop, {.activate = [&] { asked.push_back("activate"); },
                               .open = [&](const auto& addresses) { asked.push_back(addresses.back()); },
                               .showSettings = [&] { asked.push_back("settings"); },
                               .quit = [&] { asked.push_back("quit"); }});
    EXPECT_TRUE(await(kLimit, [&] {
        loop.look();
        return asked.size() == 3;
    }));
    EXPECT_THAT(asked, UnorderedElementsAre("tarvix://two", "activate", "quit"));
    EXPECT_EQ(askers[0].waitForEnd(kLimit), 0);
    EXPECT_EQ(askers[1].waitForEnd(kLimit), 0);
}

TEST(RunningInstanceTest, WithoutASessionBusEachIsOne) {
    const std::string address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    const auto first = RunningInstance::claim(), second = RunningInstance::claim();
    EXPECT_TRUE(first && second);
    PollOnce loop;
    const Subscription served = first->serve(loop, {});
    EXPECT_EQ(askToActivate(), Asked::nobodyRuns);
    setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
}

}  // namespace
}  // namespace tarvix
