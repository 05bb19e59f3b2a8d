#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "linux/x11/X11Workspace.h"
#include "tests/contract/WorkspaceContract.h"
#include "tests/desktop/X11Desk.h"

namespace tarvix {
namespace {

namespace fs = std::filesystem;

// A data folder with applications of its own, in front of the others, for as long as it lives.
class Applications {
public:
    Applications() {
        std::string name = (fs::temp_directory_path() / "tarvix-applications-XXXXXX").string();
        folder_ = mkdtemp(name.data());
        if (const char* before = std::getenv("XDG_DATA_HOME")) before_ = before;
        setenv("XDG_DATA_HOME", folder_.c_str(), 1);
        fs::create_directory(folder_ / "applications");
    }
    ~Applications() {
        if (before_.empty()) {
            unsetenv("XDG_DATA_HOME");
        } else {
            setenv("XDG_DATA_HOME", before_.c_str(), 1);
        }
        fs::remove_all(folder_);
    }
    void add(const std::string& path, const std::string& lines) const {
        fs::create_directories((folder_ / "applications" / path).parent_path());
        std::ofstream(folder_ / "applications" / path) << "[Desktop Entry]\nType=Application\n"
                                                       << lines << "\n[Desktop Action new]\nName=New\n";
    }
    fs::path folder() const { return folder_ / "applications"; }

private:
    fs::path folder_;
    std::string before_;
};

// Another process that does nothing, with some variables in its environment.
class Idle {
public:
    explicit Idle(std::vector<std::string> variables = {}, const std::string& program = "sleep") {
        pid_ = fork();
        if (pid_ != 0) return;
        for (std::string& v : variables) putenv(v.data());
        execlp(program.c_str(), program.c_str(), "60", nullptr);
        _exit(127);
    }
    ~Idle() {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    std::int32_t pid() const { return pid_; }

private:
    pid_t pid_;
};

class X11WorkspaceOnDesktop : public X11Desk {
protected:
    X11WorkspaceOnDesktop() {
        applications.add("org.example.Victim.desktop",
                         "Name=Victim Reader\nExec=/opt/v %u\n"
                         "StartupWMClass=Victim");
    }
    void SetUp() override {
        X11Desk::SetUp();
        workspace = std::move(X11Workspace::open(*connection, *windows).value());
    }

    Applications applications;
    std::unique_ptr<X11Windows> windows = std::move(X11Windows::open().value());
    std::unique_ptr<X11Workspace> workspace;
};

TEST_F(X11WorkspaceOnDesktop, TheFrontmostApplicationIsNamedByItsDesktopFile) {
    const RunningApplication expected{getpid(), "org.example.Victim", "Victim Reader"};
    EXPECT_EQ(workspace->frontmostApplication(), expected);
    EXPECT_EQ(workspace->runningApplication(getpid()), expected);
    ASSERT_TRUE(take());
    EXPECT_EQ(workspace->frontmostApplication(), expected) << "a panel of ours with the keyboard changes nothing";
}

TEST_F(X11WorkspaceOnDesktop, AnIdOnTheWindowIsWorthMoreThanItsClass) {
    applications.add("org.example.Writer.desktop", "Name=Writer");
    application.setText("_GTK_APPLICATION_ID", "org.example.Writer");
    application.connection().sync();
    EXPECT_EQ(workspace->frontmostApplication(), (RunningApplication{getpid(), "org.example.Writer", "Writer"}))
        << "though the file was added after the start";
}

TEST_F(X11WorkspaceOnDesktop, WithoutADesktopFileAProgramIsNamedAfterItself) {
    const Idle idle;
    ASSERT_TRUE(loop.runUntil([&] {
        const auto app = workspace->runningApplication(idle.pid());
        return app && app->bundleIdentifier == "sleep";
    }));
    EXPECT_EQ(workspace->runningApplication(idle.pid()), (RunningApplication{idle.pid(), "sleep", "sleep"}));
}

TEST_F(X11WorkspaceOnDesktop, ThisProgramGoesByItsOwnDesktopFileThoughItIsNotInstalled) {
    const fs::path program = applications.folder() / "tarvix";
    fs::copy_file("/bin/sleep", program);
    const Idle idle({}, program);
    EXPECT_TRUE(loop.runUntil([&] {
        const auto app = workspace->runningApplication(idle.pid());
        return app && app->bundleIdentifier == workspace->ownBundleIdentifier();
    }));
}

TEST_F(X11WorkspaceOnDesktop, AProcessIsFoundByTheCommandOfADesktopFile) {
    applications.add("idle/helper.desktop", "Name=Helper\nExec=env A=b /usr/bin/sleep 60");
    const Idle idle;
    EXPECT_TRUE(loop.runUntil([&] {
        return workspace->runningApplication(idle.pid()) == RunningApplication{idle.pid(), "idle-helper", "Helper"};
    }));
}

TEST_F(X11WorkspaceOnDesktop, WhatALauncherStartedIsKnownByTheLaunchersWordButNotItsChildren) {
    applications.add("launched.desktop", "Name=Launched");
    const std::string file = "GIO_LAUNCHED_DESKTOP_FILE=/somewhere/launched.desktop";
    const Idle inherited({file, "GIO_LAUNCHED_DESKTOP_FILE_PID=1"});
    EXPECT_TRUE(
        loop.runUntil([&] { return workspace->runningApplication(inherited.pid())->bundleIdentifier == "sleep"; }));
}

TEST_F(X11WorkspaceOnDesktop, AnApplicationOfTheCatalogueGoesByTheCataloguesIdentifier) {
    applications.add("code.desktop", "Name=Visual Studio Code");
    application.setText("WM_CLASS", std::string("code\0Code\0", 10));
    application.connection().sync();
    const RunningApplication expected{getpid(), "com.microsoft.VSCode", "Visual Studio Code"};
    EXPECT_EQ(workspace->frontmostApplication(), expected);
    EXPECT_EQ(workspace->runningApplications("com.microsoft.VSCode"), std::vector{expected});
    EXPECT_TRUE(workspace->runningApplications("code").empty());
}

TEST_F(X11WorkspaceOnDesktop, AProcessThatHasGoneIsAbsent) {
    std::int32_t pid = 0;
    {
        const Idle idle;
        pid = idle.pid();
        EXPECT_TRUE(workspace->runningApplication(pid));
    }
    EXPECT_FALSE(workspace->runningApplication(pid));
    EXPECT_FALSE(workspace->runningApplication(-1));
}

TEST_F(X11WorkspaceOnDesktop, WhereNoWindowIsActiveTheDesktopIs) {
    application.hide();
    hardware.movePointer(1800, 900);
    const RunningApplication desktop{0, "desktop", "Desktop"};
    if (!hasWindowManager(*connection))
        xcb_set_input_focus(connection->get(), XCB_INPUT_FOCUS_NONE, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_CURRENT_TIME);
    connection->sync();
    EXPECT_TRUE(loop.runUntil([&] { return workspace->frontmostApplication() == desktop; }));
    EXPECT_EQ(workspace->runningApplication(0), desktop);
}

TEST_F(X11WorkspaceOnDesktop, AnotherActiveApplicationIsTold) {
    if (!hasWindowManager(*connection)) GTEST_SKIP() << "without a window manager nobody says which window is active";
    std::vector<RunningApplication> told;
    const auto listening = workspace->onApplicationActivated([&](const RunningApplication& a) { told.push_back(a); });
    applications.add("org.example.Other.desktop", "Name=Other\nStartupWMClass=Other");
    X11Victim other({700, 300, 200, 100, false});
    other.setText("WM_CLASS", std::string("other\0Other\0", 12));
    ASSERT_TRUE(other.show());
    ASSERT_TRUE(other.focus());
    EXPECT_TRUE(loop.runUntil([&] { return !told.empty(); }));
    EXPECT_EQ(told, (std::vector<RunningApplication>{{getpid(), "org.example.Other", "Other"}}));
}

TEST_F(X11WorkspaceOnDesktop, TheScreenReaderIsWhatTheAccessibilitySideSays) {
    EXPECT_FALSE(workspace->isVoiceOverEnabled());
    workspace->announce("nobody hears", 50);
    std::vector<std::string> spoken;
    workspace->setScreenReader({[] { return true; }, [&](std::string_view text, int) { spoken.emplace_back(text); }});
    EXPECT_TRUE(workspace->isVoiceOverEnabled());
    workspace->announce("hello", 50);
    EXPECT_EQ(spoken, Lines{"hello"});
}

// The desk of the tests above, without a test of its own.
class WorkspaceDesk : private X11WorkspaceOnDesktop {
public:
    WorkspaceDesk() {
        SetUp();
        // A window manager says which window is active after it has given it the focus.
        EXPECT_TRUE(loop.runUntil([this] { return workspace->frontmostApplication()->processIdentifier == getpid(); }));
        settle();
    }
    ~WorkspaceDesk() override { TearDown(); }

    Workspace& service() { return *workspace; }
    std::optional<std::int32_t> another() {
        if (!hasWindowManager(*connection)) return std::nullopt;
        applications.add("org.example.Other.desktop", "Name=Other\nStartupWMClass=Other");
        other_.setText("WM_CLASS", std::string("other\0Other\0", 12));
        EXPECT_TRUE(other_.show() && other_.focus());
        return getpid();
    }
    bool waitUntil(const std::function<bool()>& condition) { return loop.runUntil(condition); }

private:
    void TestBody() override {}

    X11Victim other_{{700, 300, 200, 100, false}};
};

WorkspaceSubject workspaceOfTheServer() {
    const auto desk = std::make_shared<WorkspaceDesk>();
    return {desk, desk->service(), getpid(), [desk] { return desk->another(); },
            [desk](const std::function<bool()>& condition) { return desk->waitUntil(condition); }};
}

INSTANTIATE_TEST_SUITE_P(X11, WorkspaceContract, testing::Values(workspaceOfTheServer));

TEST(X11DesktopEntries, AnEarlierFolderHidesTheFilesOfALaterOne) {
    Applications later;
    later.add("a.desktop", "Name=Later");
    later.add("b.desktop", "Name=B");
    Applications earlier;
    earlier.add("a.desktop", "Name=Earlier");
    DesktopEntries entries({earlier.folder(), later.folder()});
    EXPECT_EQ(entries.withId("a")->name, "Earlier");
    EXPECT_EQ(entries.withId("b")->name, "B");
    EXPECT_FALSE(entries.withId("c"));
}

TEST(X11DesktopEntries, WhatAnEntrySaysOfItsWindowsComesBeforeTheNameOfAFile) {
    Applications applications;
    applications.add("gimp.desktop", "Name=By name");
    applications.add("org.gimp.Gimp.desktop", "Name=By class\nStartupWMClass=gimp");
    applications.add("org.example.Paint.desktop", "Name=Paint");
    DesktopEntries entries({applications.folder()});
    EXPECT_EQ(entries.ofWindow("gimp", "gimp")->name, "By class");
    EXPECT_EQ(entries.ofWindow("Paint", "")->name, "Paint") << "by the last part of its id";
    EXPECT_EQ(entries.ofWindow("unknown", "org.example.paint")->name, "Paint") << "by the instance, in any case";
    EXPECT_FALSE(entries.ofWindow("", ""));
}

TEST(X11DesktopEntries, OfSeveralThatStartAProgramOneInMenusIsIt) {
    Applications applications;
    applications.add("panel-handler.desktop", "Name=Add a launcher\nExec=panel --add %u\nNoDisplay=true");
    applications.add("panel-settings.desktop", "Name=Panel\nExec=panel --settings");
    applications.add("agent.desktop", "Name=Agent\nExec=agent\nNoDisplay=true");
    DesktopEntries entries({applications.folder()});
    EXPECT_EQ(entries.ofProgram("panel")->name, "Panel");
    EXPECT_EQ(entries.ofProgram("agent")->name, "Agent");
}

TEST(X11DesktopEntries, ASnapIsFoundByItsMainApplicationElseByAnyOfIt) {
    Applications applications;
    applications.add("code_url-handler.desktop", "Name=Handler");
    applications.add("code_code.desktop", "Name=Code");
    applications.add("skype_skypeforlinux.desktop", "Name=Skype");
    applications.add("codec.desktop", "Name=Codec");
    DesktopEntries entries({applications.folder()});
    EXPECT_EQ(entries.ofSnap("code")->name, "Code");
    EXPECT_EQ(entries.ofSnap("skype")->id, "skype_skypeforlinux");
    EXPECT_FALSE(entries.ofSnap("cod"));
}

TEST(X11DesktopEntries, AnAppImageHasOneEntryInItsFolder) {
    Applications applications;
    EXPECT_FALSE(DesktopEntries::onlyIn(applications.folder()));
    applications.add("obsidian.desktop", "Name=Obsidian\nExec=AppRun --no-sandbox %U\nStartupWMClass=obsidian");
    std::ofstream(applications.folder() / ".DirIcon") << "no entry";
    EXPECT_EQ(DesktopEntries::onlyIn(applications.folder()),
              (DesktopEntry{"obsidian", "Obsidian", "obsidian", "AppRun", applications.folder() / "obsidian.desktop"}));
    EXPECT_FALSE(DesktopEntries::onlyIn("/nowhere"));
}

TEST(X11DesktopEntries, OnlyApplicationsAndOnlyTheMainGroupCount) {
    Applications applications;
    applications.add("x.desktop", "# Name=Comment\nName = Spaced \nExec=\"/opt/x y/prog\" --flag");
    std::ofstream(applications.folder() / "link.desktop") << "[Desktop Entry]\nType=Link\nName=Link\n";
    std::ofstream(applications.folder() / "broken.desktop") << "=\n[\nName";
    DesktopEntries entries({applications.folder(), "/nowhere"});
    EXPECT_EQ(entries.withId("x")->name, "Spaced ");
    EXPECT_FALSE(entries.withId("link"));
    EXPECT_FALSE(entries.withId("broken"));
}

}  // namespace
}  // namespace tarvix
