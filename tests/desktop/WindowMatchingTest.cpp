// Which accessible tree is which window, where titles, sizes and process ids don't tell.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "ax/AXEngine2.h"
#include "tests/desktop/RealServices.h"
#include "tests/desktop/play/Activation.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using namespace atspi;
using ::testing::Contains;
using ::testing::Not;

using Names = std::vector<std::string>;

class WindowMatchingTest : public ::testing::Test {
protected:
    // What the search of a window finds, by name.
    Names namesIn(std::uint32_t window) const {
        const std::optional<X11Window> seen = services_.windows->window(window);
        if (!seen) return {};
        const UIElement application = services_.accessibility->application(seen->pid);
        const AxResult<AxValue> read =
            services_.accessibility->readAhead(application)->attribute(application, ax::windows);
        for (const UIElement& each : std::get<std::vector<UIElement>>(read.value)) {
            if (services_.accessibility->windowNumber(each) != window) continue;
            const auto reads = services_.accessibility->readAhead(each);
            Names names;
            for (const AccessibilityElement& found : AXEngine2::collectElements(*reads, each, seen->visible()))
                names.push_back(found.title.value_or(found.value.value_or("")));
            return names;
        }
        return {};
    }
    // The name on the accessibility bus that the tree comes from.
    std::string busOf(std::uint32_t window) const {
        const std::optional<X11Window> seen = services_.windows->window(window);
        Applications applications;
        FetchOptions options;
        options.screen = services_.windows.get();
        const auto tree = seen ? fetchWindow(applications, *seen, options) : std::nullopt;
        return tree ? tree->application.bus : "";
    }
    bool isActive(std::uint32_t window) const {
        const auto active = services_.windows->active();
        return active && active->number == window;
    }
    // As a pager does it.
    void activate(std::uint32_t window) const {
        X11Connection& x = *services_.connection;
        askForActivation(x, window);
        x.sync();
        EXPECT_TRUE(await(5s, [&] { return isActive(window); }));
    }

    RealServices services_;
};

struct Twins {
    const char* name;
    const char* script;
    std::vector<std::string> more;
    friend void PrintTo(const Twins& twins, std::ostream* out) { *out << twins.name; }
};

class TwinsTest : public WindowMatchingTest, public ::testing::WithParamInterface<Twins> {};

// The accessible states come a moment after the window manager's word.
TEST_P(TwinsTest, EachOfTwoWindowsWithTheSameTitleAndSizeIsItself) {
    Fixture fixture(GetParam().script, GetParam().more);
    ASSERT_TRUE(fixture.isReady());
    const std::vector<KnownControl> windows = fixture.controls();
    ASSERT_EQ(windows.size(), 2u);
    ASSERT_EQ(windows[0].frame.size, windows[1].frame.size);
    const auto number = [&](std::size_t i) { return static_cast<std::uint32_t>(std::stoul(windows[i].name)); };
    const std::vector<std::size_t> activated =
        GetParam().more.empty() ? std::vector<std::size_t>{1, 0, 1} : std::vector<std::size_t>{1};
    for (const std::size_t active : activated) {
        if (!isActive(number(active))) activate(number(active));
        const Names own[] = {{"First"}, {"Second"}};
        for (const std::size_t asked : {active, 1 - active}) {
            Names found;
            EXPECT_TRUE(await(5s, [&] {
                found = namesIn(number(asked));
                return std::ranges::count(found, own[asked].front()) > 0;
            })) << ::testing::PrintToString(found);
            EXPECT_THAT(found, Contains(own[asked].front()));
            EXPECT_THAT(found, Not(Contains(own[1 - asked].front())));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Matching, TwinsTest,
                         ::testing::Values(Twins{"Gtk3", "gtk3-twins.py", {}}, Twins{"Gtk4", "gtk4-twins.py", {}},
                                           Twins{"Qt6", "qt6-twins.py", {}},
                                           Twins{"Gtk3Dialog", "gtk3-twins.py", {"dialog"}},
                                           Twins{"Gtk4Dialog", "gtk4-twins.py", {"dialog"}},
                                           Twins{"Qt6Dialog", "qt6-twins.py", {"dialog"}}),
                         [](const ::testing::TestParamInfo<Twins>& row) { return std::string(row.param.name); });

// A program whose word on the accessibility bus doesn't come from the process that has the window.
class SandboxTest : public WindowMatchingTest {
protected:
    // Starts a command before a fixture of GTK 3, which makes the fixture's only window the active one.
    void play(std::vector<std::string> command, const Process::Environment& changes = {}) {
        command.insert(command.end(), {TARVIX_FIXTURES "/gtk3-menus.py", folder_.file("report"), folder_.file("log")});
        program_.emplace(command, changes);
        ASSERT_TRUE(await(30s, [this] { return std::filesystem::exists(folder_.file("report")); }));
        const auto active = services_.windows->active();
        ASSERT_TRUE(active);
        ASSERT_EQ(active->title, "Heath");
        window_ = *active;
    }
    // unshare leaves the end to the program that it waits for, which doesn't get it.
    void TearDown() override {
        if (program_) program_->send(SIGKILL);
    }

    void expectItsTree() {
        // A busy machine may let a program miss its time, and then it isn't asked again for a while.
        Names found;
        EXPECT_TRUE(await(20s, [&] {
            found = namesIn(window_.number);
            return std::ranges::count(found, "Acorn") > 0;
        })) << ::testing::PrintToString(found);
    }
    // The applications that the accessibility bus knows by the window's process.
    std::size_t applicationsOfProcess() const {
        Applications applications;
        return applications.ofProcess(window_.pid, Clock::now() + 1s).size();
    }

    ScratchFolder folder_;
    std::optional<Process> helper_;
    std::optional<Process> program_;
    X11Window window_;
};

TEST_F(SandboxTest, AProgramInAPidNamespaceIsFoundByItsProcess) {
    if (!outputOf({"unshare", "--pid", "--fork", "true"}))
        GTEST_SKIP() << "a process id namespace takes a privilege here";
    play({"unshare", "--pid", "--fork", "--kill-child"});
    if (HasFatalFailure()) return;
    EXPECT_EQ(applicationsOfProcess(), 1u);
    expectItsTree();
}

TEST_F(SandboxTest, AProgramBehindAProxyIsFoundByWhatItsFrameIs) {
    const Bus session = connectToSession();
    const auto bus = session ? accessibilityBusAddress(session.get()) : std::nullopt;
    ASSERT_TRUE(bus);
    const std::string door = folder_.file("door");
    helper_.emplace(std::vector<std::string>{"xdg-dbus-proxy", *bus, door});
    ASSERT_TRUE(await(10s, [&] { return std::filesystem::exists(door); }));
    play({"env"}, {{"AT_SPI_BUS_ADDRESS", "unix:path=" + door}});
    if (HasFatalFailure()) return;
    EXPECT_EQ(applicationsOfProcess(), 0u) << "its word doesn't come through the proxy";
    expectItsTree();
    // Another program with the same title and size beside it, of which the bus knows the process.
    Fixture other("gtk3-menus.py");
    ASSERT_TRUE(other.isReady());
    expectItsTree();
    EXPECT_THAT(namesIn(other.window()), Contains("Acorn"));
    EXPECT_NE(busOf(window_.number), busOf(other.window()));
    EXPECT_NE(busOf(window_.number), "");
}

}  // namespace
}  // namespace tarvix
