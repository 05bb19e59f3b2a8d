// Applications that show their trees to nobody until they are asked, and what Tarvix makes of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "linux/atspi/Replies.h"
#include "linux/atspi/SdBus.h"
#include "linux/x11/ProcessFiles.h"
#include "linux/x11/X11Windows.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Process.h"
#include "tests/desktop/play/Program.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using namespace atspi;
using ::testing::HasSubstr;

constexpr auto kLimit = 30s;
constexpr std::size_t kLinks = 200;

// Writes a page with so many links, and gives its address.
std::string pageIn(const ScratchFolder& folder, std::size_t links) {
    const std::string path = folder.file("page-" + std::to_string(links) + ".html");
    std::ofstream page(path);
    page << "<!DOCTYPE html><title>Page</title>";
    for (std::size_t i = 0; i < links; ++i) page << "<a href=x>Link " << i << "</a>\n";
    return "file://" + path;
}

struct Application {
    std::string name;
    std::vector<std::string> command;  // FOLDER and PAGE stand for a folder of its own and an address
    std::size_t objects;               // its tree has more than these
};

const Application kChromium{
    "Chromium",
    {"chromium", "--no-sandbox", "--test-type", "--disable-gpu", "--no-first-run", "--disable-background-networking",
     "--disable-component-update", "--disable-sync", "--password-store=basic", "--user-data-dir=FOLDER", "PAGE"},
    kLinks};
const Application kFirefox{
    "Firefox", {"firefox-esr", "--no-remote", "--new-instance", "--profile", "FOLDER", "PAGE"}, kLinks};
const Application kQt5{"Qt5", {"featherpad"}, 15};
const Application kQt6{"Qt6", {"/usr/bin/python3", std::string(TARVIX_FIXTURES) + "/qt6-form.py"}, 15};
const Application kLibreOffice{
    "LibreOffice", {"soffice", "--norestore", "--nologo", "-env:UserInstallation=file://FOLDER"}, 15};

std::vector<std::string> commandOf(const Application& application, const ScratchFolder& folder, std::size_t links) {
    std::vector<std::string> command = application.command;
    for (std::string& word : command) {
        if (const auto at = word.find("FOLDER"); at != word.npos) word.replace(at, 6, folder.file("profile"));
        if (word == "PAGE") word = pageIn(folder, links);
    }
    return command;
}

// The accessibility bus as somebody sees it who only counts: by asking for children and nothing else, so that no
// application makes its tree for us.
class Counter {
public:
    Counter() {
        const Bus session = connectToSession();
        const auto address = session ? accessibilityBusAddress(session.get()) : std::nullopt;
        if (address) bus_ = connectTo(*address, Peer::messageBus);
    }

    bool isOnBus(std::int32_t pid) const { return rootOf(pid).has_value(); }

    // The objects of a process' tree, counted up to a limit.
    std::size_t objectsOf(std::int32_t pid, std::size_t limit) const {
        const auto root = rootOf(pid);
        std::deque<Reference> open;
        if (root) open.push_back(*root);
        std::size_t count = 0;
        while (!open.empty() && count < limit) {
            ++count;
            for (Reference& child : childrenOf(open.front())) open.push_back(std::move(child));
            open.pop_front();
        }
        return count;
    }

    // The events that somebody listens to, each with whoever does.
    std::size_t listenedTo() const {
        const Message reply = callBlocking(bus_.get(), "org.a11y.atspi.Registry", "/org/a11y/atspi/registry",
                                           "org.a11y.atspi.Registry", "GetRegisteredEvents", Milliseconds(1000));
        std::size_t count = 0;
        const char* who = nullptr;
        const char* event = nullptr;
        EXPECT_TRUE(reply && sd_bus_message_enter_container(reply.get(), 'a', "(ss)") > 0);
        while (reply && sd_bus_message_read(reply.get(), "(ss)", &who, &event) > 0) ++count;
        return count;
    }

private:
    std::vector<Reference> childrenOf(const Reference& of) const {
        const Message reply = callBlocking(bus_.get(), of.bus.c_str(), of.path.c_str(), "org.a11y.atspi.Accessible",
                                           "GetChildren", Milliseconds(1000));
        return reply ? readReferences(reply.get()) : std::vector<Reference>();
    }
    std::optional<Reference> rootOf(std::int32_t pid) const {
        for (Reference& each : childrenOf({"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"})) {
            const Message reply =
                callBlocking(bus_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                             "GetConnectionUnixProcessID", Milliseconds(1000), each.bus.c_str());
            if (reply && readUnsigned(reply.get()) == static_cast<std::uint32_t>(pid)) return std::move(each);
        }
        return std::nullopt;
    }

    Bus bus_;
};

bool statusOf(const char* property) {
    const Bus session = connectToSession();
    int value = 0;
    EXPECT_GE(sd_bus_get_property_trivial(session.get(), "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status", property,
                                          nullptr, 'b', &value),
              0);
    return value != 0;
}

void setEnabled(bool enabled) {
    const Bus session = connectToSession();
    ASSERT_GE(sd_bus_set_property(session.get(), "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status", "IsEnabled",
                                  nullptr, "b", enabled ? 1 : 0),
              0);
}

// What "tarvix doctor" says where nobody can be asked.
std::string doctorsWord() {
    const auto said = outputOf({"sh", "-c", std::string(TARVIX_PROGRAM) + " doctor < /dev/null || test $? -eq 1"});
    EXPECT_TRUE(said);
    return said.value_or("");
}

class WakingTest : public ::testing::Test, public ::testing::WithParamInterface<Application> {
protected:
    void SetUp() override {
        for (const char* name :
             {"ACCESSIBILITY_ENABLED", "GNOME_ACCESSIBILITY", "QT_ACCESSIBILITY", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON"})
            ASSERT_EQ(std::getenv(name), nullptr);
        ASSERT_NO_FATAL_FAILURE(setEnabled(false));
    }
    void TearDown() override {
        application_.reset();
        EXPECT_FALSE(statusOf("ScreenReaderEnabled")) << "that would start a screen reader";
    }

    // Without this Firefox asks for a profile, and tells of itself before it shows the page.
    void makeProfile() const {
        std::filesystem::create_directories(folder_.file("profile"));
        std::ofstream(folder_.file("profile/user.js")) << R"(user_pref("browser.aboutwelcome.enabled", false);
user_pref("browser.shell.checkDefaultBrowser", false);
user_pref("datareporting.policy.dataSubmissionEnabled", false);
user_pref("termsofuse.acceptedVersion", 999);
)";
    }

    void startApplication() {
        makeProfile();
        application_.emplace(commandOf(GetParam(), folder_, kLinks),
                             Process::Environment{{"MOZ_CRASHREPORTER_DISABLE", "1"}});
        ASSERT_TRUE(await(kLimit,
                          [this] {
                              const auto active = windows_->active();
                              if (active) pid_ = active->pid;
                              return active.has_value();
                          }))
            << "no window of " << GetParam().name;
    }
    // As its splash panel does when its user presses the button.
    void startTarvix() {
        ASSERT_NO_FATAL_FAILURE(setEnabled(true));
        tarvix_.emplace(TARVIX_PROGRAM);
        ASSERT_TRUE(tarvix_->isReady());
    }
    void expectTheTree(std::size_t more) {
        std::size_t objects = 0;
        EXPECT_TRUE(await(kLimit,
                          [&] {
                              objects = counter_.objectsOf(pid_, more + 1);
                              return objects > more;
                          }))
            << GetParam().name << " shows " << objects << " objects";
    }

    const std::unique_ptr<X11Windows> windows_ = std::move(X11Windows::open().value());
    ScratchFolder folder_;
    Counter counter_;
    std::optional<Program> tarvix_;
    std::optional<Process> application_;
    std::int32_t pid_ = -1;
};

const auto nameOf = [](const auto& info) { return info.param.name; };

class AfterTarvixTest : public WakingTest {};
TEST_P(AfterTarvixTest, AnApplicationShowsItsTreeWithoutASearch) {
    ASSERT_NO_FATAL_FAILURE(startTarvix());
    ASSERT_NO_FATAL_FAILURE(startApplication());
    expectTheTree(GetParam().objects);
    EXPECT_EQ(counter_.listenedTo(), 0U) << "programs of Qt hold keys back while somebody listens";
}
INSTANTIATE_TEST_SUITE_P(Started, AfterTarvixTest, ::testing::Values(kChromium, kFirefox, kQt5, kQt6, kLibreOffice),
                         nameOf);

class BeforeTarvixTest : public WakingTest {};
TEST_P(BeforeTarvixTest, AnApplicationShowsItsTreeWithoutASearch) {
    ASSERT_NO_FATAL_FAILURE(startApplication());
    ASSERT_NO_FATAL_FAILURE(startTarvix());
    expectTheTree(GetParam().objects);
}
INSTANTIATE_TEST_SUITE_P(Started, BeforeTarvixTest, ::testing::Values(kFirefox, kQt5, kLibreOffice), nameOf);

class SleeperTest : public WakingTest {};
TEST_P(SleeperTest, AnApplicationThatLooksOnlyOnceIsNamedByTheDoctor) {
    ASSERT_NO_FATAL_FAILURE(startApplication());
    ASSERT_NO_FATAL_FAILURE(startTarvix());
    const std::string said = doctorsWord();
    EXPECT_THAT(said, HasSubstr("(process " + std::to_string(pid_) +
                                ") shows no controls: it looks only when it "
                                "starts"));
    EXPECT_FALSE(counter_.isOnBus(pid_));
}
INSTANTIATE_TEST_SUITE_P(Started, SleeperTest, ::testing::Values(kChromium, kQt6), nameOf);

class WokenBrowserTest : public WakingTest {};
TEST_P(WokenBrowserTest, APageThatIsOpenedLaterShowsItsTreeToo) {
    ASSERT_NO_FATAL_FAILURE(startTarvix());
    ASSERT_NO_FATAL_FAILURE(startApplication());
    expectTheTree(kLinks);
    constexpr std::size_t more = 2 * kLinks + 200;
    const Process another(commandOf(GetParam(), folder_, more), {});
    expectTheTree(more);
}
INSTANTIATE_TEST_SUITE_P(Started, WokenBrowserTest, ::testing::Values(kChromium), nameOf);

// A program at a terminal, where somebody has one answer to all that it asks.
struct Said {
    std::string text;
    int status = -1;
};
Said atTerminal(const std::vector<std::string>& command, const std::string& answer) {
    int terminal = -1;
    const pid_t pid = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (pid == 0) {
        std::vector<char*> words;
        for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
        words.push_back(nullptr);
        execv(words[0], words.data());
        _exit(127);
    }
    Said said;
    EXPECT_EQ(write(terminal, answer.data(), answer.size()), static_cast<ssize_t>(answer.size()));
    std::array<char, 4096> part{};
    for (ssize_t length = 0; (length = read(terminal, part.data(), part.size())) > 0;)
        said.text.append(part.data(), static_cast<std::size_t>(length));
    int waited = 0;
    waitpid(pid, &waited, 0);
    said.status = WIFEXITED(waited) ? WEXITSTATUS(waited) : -1;
    close(terminal);
    return said;
}

class DoctorTest : public WakingTest {
protected:
    // The applications of the system are one: Chromium.
    void SetUp() override {
        WakingTest::SetUp();
        makeProfile();
        std::string exec;
        for (const std::string& word : commandOf(kChromium, folder_, kLinks)) exec += word + " ";
        const std::string applications = folder_.file("share/applications");
        std::filesystem::create_directories(applications);
        std::ofstream(applications + "/chromium.desktop")
            << "[Desktop Entry]\nType=Application\nName=Chromium\nExec=" << exec << "\nStartupWMClass=chromium\n";
        setenv("XDG_DATA_DIRS", folder_.file("share").c_str(), 1);
        ASSERT_NE(std::getenv("XDG_DATA_HOME"), nullptr);
        override_ = std::string(std::getenv("XDG_DATA_HOME")) + "/applications/chromium.desktop";
        ASSERT_FALSE(std::filesystem::exists(override_));
    }
    void TearDown() override {
        quit();
        std::filesystem::remove(override_);
        WakingTest::TearDown();
    }

    void launch(const std::string& desktopFile) {
        ASSERT_EQ(Process({"gio", "launch", desktopFile}).waitForEnd(kLimit), 0);
        ASSERT_TRUE(await(kLimit, [this] {
            const auto active = windows_->active();
            if (active) pid_ = active->pid;
            return active.has_value();
        })) << "no window";
    }
    void quit() {
        if (pid_ <= 0) return;
        kill(pid_, SIGTERM);
        // Nobody may wait for its status, so that something of it stays; its window may stay for a moment.
        EXPECT_TRUE(await(kLimit, [this] { return programPath(pid_).empty() && !windows_->active(); }));
        pid_ = -1;
    }

    std::string override_;
};

TEST_F(DoctorTest, AYesHasAProgramStartedSoThatItShowsItsTreeUntilThatIsUndone) {
    ASSERT_NO_FATAL_FAILURE(launch(folder_.file("share/applications/chromium.desktop")));
    ASSERT_NO_FATAL_FAILURE(setEnabled(true));

    const Said no = atTerminal({TARVIX_PROGRAM, "doctor"}, "n\n");
    EXPECT_THAT(no.text, HasSubstr("Chromium (process " + std::to_string(pid_) + ") shows no controls: it looks only"));
    EXPECT_EQ(no.status, 1);
    EXPECT_FALSE(std::filesystem::exists(override_));

    const Said yes = atTerminal({TARVIX_PROGRAM, "doctor"}, "y\n");
    EXPECT_THAT(yes.text, HasSubstr("Written."));
    ASSERT_TRUE(std::filesystem::exists(override_)) << yes.text;

    ASSERT_NO_FATAL_FAILURE(quit());
    // Nothing but the override can make it show its tree now.
    ASSERT_NO_FATAL_FAILURE(setEnabled(false));
    ASSERT_NO_FATAL_FAILURE(launch(override_));
    std::size_t objects = 0;
    EXPECT_TRUE(await(kLimit, [&] {
        objects = counter_.objectsOf(pid_, kLinks + 1);
        return objects > kLinks;
    })) << objects;

    EXPECT_EQ(atTerminal({TARVIX_PROGRAM, "doctor", "--undo"}, "").status, 0);
    EXPECT_FALSE(std::filesystem::exists(override_));
}

}  // namespace
}  // namespace tarvix
