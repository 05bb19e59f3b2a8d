// The entries of autostart folders, and this program's own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "linux/desktops/AutostartEntry.h"
#include "linux/desktops/TextSources.h"
#include "linux/desktops/XdgAutostart.h"

namespace tarvix {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Optional;

const std::string kHelper = "org.tarvix.Tarvix-LaunchAtLoginHelper";
const std::string kPath = "/usr/local/bin:/usr/bin:/bin";

std::string entryWith(const std::string& lines) { return "[Desktop Entry]\nType=Application\n" + lines; }

// What an entry says --------------------------------------------------------------------------------------------------

struct SwitchCase {
    const char* lines;
    bool isOn;
};

TEST(AutostartEntry, IsSwitchedOnUnlessSomebodyHasSwitchedItOff) {
    const std::vector<std::string> desktops{"ubuntu", "GNOME"};
    for (const auto& [lines, isOn] : {
             SwitchCase{"Exec=x\n", true},
             {"Exec = x\n", true},
             {"", false},
             {"Exec=x\nHidden=true\n", false},
             {"Exec=x\nHidden=false\n", true},
             {"Exec=x\n#Hidden=true\n", true},
             {"Exec=x\n[Desktop Action a]\nHidden=true\n", true},
             {"Exec=x\nX-GNOME-Autostart-enabled=false\n", false},
             {"Exec=x\nX-GNOME-Autostart-enabled=true\n", true},
             {"Exec=x\nX-MATE-Autostart-enabled=false\n", false},
             {"Exec=x\nOnlyShowIn=KDE;GNOME;\n", true},
             {"Exec=x\nOnlyShowIn=KDE;XFCE\n", false},
             {"Exec=x\nOnlyShowIn=;\n", false},
             {"Exec=x\nNotShowIn=KDE;\n", true},
             {"Exec=x\nNotShowIn=ubuntu;\n", false},
             {"Exec=x\nNoDisplay=true\n", true},
         })
        EXPECT_EQ(isSwitchedOn(entryWith(lines), desktops), isOn) << lines;
    EXPECT_FALSE(isSwitchedOn("", desktops));
    EXPECT_FALSE(isSwitchedOn("Exec=x\n", desktops)) << "outside the group";
}

TEST(AutostartEntry, CanBeStartedWhereItsProgramsAre) {
    for (const auto& [lines, can] : {
             SwitchCase{"Exec=sh\n", true},
             {"Exec=/bin/sh -c true\n", true},
             {"Exec=\"/bin/sh\" -c true\n", true},
             {"Exec=/bin/no-such-program\n", false},
             {"Exec=no-such-program\n", false},
             {"Exec=/etc/passwd\n", false},
             {"Exec=/etc\n", false},
             {"Exec=\n", false},
             {"Exec=sh\nTryExec=sh\n", true},
             {"Exec=sh\nTryExec=/bin/sh\n", true},
             {"Exec=sh\nTryExec=\n", true},
             {"Exec=sh\nTryExec=no-such-program\n", false},
         })
        EXPECT_EQ(canBeStarted(entryWith(lines), kPath), can) << lines;
}

TEST(AutostartEntry, WordsOfALineAreReadByTheRulesOfDesktopEntries) {
    EXPECT_THAT(execWords("tarvix"), ElementsAre("tarvix"));
    EXPECT_THAT(execWords("  a   b\tc "), ElementsAre("a", "b", "c"));
    EXPECT_THAT(execWords(R"("a b" c)"), ElementsAre("a b", "c"));
    EXPECT_THAT(execWords(R"("a\\"b\\\\c\\$d" "")"), ElementsAre(R"(a"b\c$d)", ""));
    EXPECT_THAT(execWords("a %u 100%%"), ElementsAre("a", "", "100%"));
    EXPECT_THAT(execWords(R"(a\sb)"), ElementsAre("a", "b"));
    EXPECT_THAT(execWords(""), IsEmpty());
    EXPECT_THAT(execWords("\"open"), ElementsAre("open"));
    EXPECT_THAT(execWords("a%"), ElementsAre("a"));
}

TEST(AutostartEntry, APathIsWrittenSoThatItIsReadAsTheSameOne) {
    EXPECT_EQ(execLine("tarvix"), "tarvix");
    EXPECT_EQ(execLine("/opt/my tarvix/bin/tarvix"), R"("/opt/my tarvix/bin/tarvix")");
    EXPECT_EQ(execLine("/a%b"), "/a%%b");
    EXPECT_EQ(execLine(R"(/a\b)"), R"("/a\\\\b")");
    for (const char* path : {"tarvix", "/usr/bin/tarvix", "/a b/c", "/100%/%u", R"(/"quoted"/'it')", R"(/back\slash)",
                             "/$HOME/`x`", "/tab\tline\nend", "/a;b&c|d<e>f(g)h*i?j#k~l", "/ümlaut/雪", "/ends\\"})
        EXPECT_THAT(execWords(execLine(path)), ElementsAre(path));
}

// The files
// ------------------------------------------------------------------------------------------------------------

class XdgAutostartTest : public testing::Test {
protected:
    XdgAutostartTest() {
        std::string pattern = (fs::temp_directory_path() / "tarvix-autostart-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        fs::create_directories(systemFolder());
        makeProgram(program());
    }
    ~XdgAutostartTest() override { fs::remove_all(folder); }

    XdgAutostart autostart() const { return XdgAutostart(places()); }
    AutostartPlaces places() const { return {userFolder(), {systemFolder()}, {"XFCE"}, kPath, program()}; }
    fs::path userFolder() const { return folder / "config" / "autostart"; }
    fs::path systemFolder() const { return folder / "system" / "autostart"; }
    fs::path userEntry() const { return userFolder() / "org.tarvix.Tarvix.desktop"; }
    fs::path systemEntry() const { return systemFolder() / "org.tarvix.Tarvix.desktop"; }
    std::string program() const { return (folder / "programs" / "tarvix").string(); }

    static void write(const fs::path& path, const std::string& text) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }
    static void makeProgram(const fs::path& path) {
        write(path, "#!/bin/sh\necho started >>\"$0.log\"\n");
        fs::permissions(path, fs::perms::owner_all);
    }
    std::string text() const { return textOfFile(userEntry().string()).value_or(""); }
    std::vector<std::string> filesOfUser() const {
        std::vector<std::string> names;
        for (const auto& each : fs::directory_iterator(userFolder())) names.push_back(each.path().filename());
        return names;
    }

    fs::path folder;
};

TEST_F(XdgAutostartTest, WithoutAnEntryItIsOff) {
    EXPECT_FALSE(autostart().isEnabled());
    EXPECT_EQ(autostart().disable(), std::nullopt);
    EXPECT_FALSE(fs::exists(userFolder()));
}

TEST_F(XdgAutostartTest, TurnedOnThereIsOneWholeEntryAndTurnedOffNone) {
    EXPECT_EQ(autostart().enable(), std::nullopt);
    EXPECT_TRUE(autostart().isEnabled());
    EXPECT_THAT(filesOfUser(), ElementsAre("org.tarvix.Tarvix.desktop"));
    EXPECT_THAT(text(), HasSubstr("\nExec=" + program() + "\n"));
    EXPECT_THAT(text(), HasSubstr("\nTryExec=" + program() + "\n"));
    struct stat status {};
    ASSERT_EQ(stat(userEntry().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0644u);
    EXPECT_EQ(autostart().disable(), std::nullopt);
    EXPECT_FALSE(autostart().isEnabled());
    EXPECT_THAT(filesOfUser(), IsEmpty());
}

TEST_F(XdgAutostartTest, WhatTheUserSwitchesOffIsOffAndCanBeTurnedOnAgain) {
    for (const char* line : {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n", "OnlyShowIn=KDE;\n"}) {
        write(userEntry(), entryWith("Exec=sh\n") + line);
        EXPECT_FALSE(autostart().isEnabled()) << line;
        EXPECT_EQ(autostart().enable(), std::nullopt);
        EXPECT_TRUE(autostart().isEnabled()) << line;
    }
}

TEST_F(XdgAutostartTest, AnEntryOfAProgramThatIsGoneIsOffAndIsReplaced) {
    write(userEntry(), entryWith("Exec=/opt/older/tarvix\n"));
    EXPECT_FALSE(autostart().isEnabled());
    EXPECT_EQ(autostart().enable(), std::nullopt);
    EXPECT_THAT(text(), HasSubstr("Exec=" + program()));
    fs::remove(program());
    EXPECT_FALSE(autostart().isEnabled());
}

TEST_F(XdgAutostartTest, AnEntryOfAnOlderCopyIsReplaced) {
    write(userEntry(), entryWith("Exec=/bin/sh\n"));
    EXPECT_TRUE(autostart().isEnabled());
    EXPECT_EQ(autostart().enable(), std::nullopt);
    EXPECT_THAT(text(), HasSubstr("Exec=" + program()));
}

TEST_F(XdgAutostartTest, AnEntryOfTheSystemIsOverriddenAndLeftAlone) {
    const std::string ofSystem = entryWith("Exec=sh\n");
    write(systemEntry(), ofSystem);
    EXPECT_TRUE(autostart().isEnabled());
    EXPECT_EQ(autostart().disable(), std::nullopt);
    EXPECT_FALSE(autostart().isEnabled());
    EXPECT_THAT(text(), HasSubstr("Hidden=true"));
    EXPECT_EQ(autostart().enable(), std::nullopt);
    EXPECT_TRUE(autostart().isEnabled());
    EXPECT_EQ(autostart().disable(), std::nullopt);
    EXPECT_FALSE(autostart().isEnabled());
    EXPECT_EQ(textOfFile(systemEntry().string()), ofSystem);
}

TEST_F(XdgAutostartTest, ASystemsEntryThatIsOffNeedsNoOverride) {
    write(systemEntry(), entryWith("Exec=sh\nOnlyShowIn=KDE;\n"));
    EXPECT_FALSE(autostart().isEnabled());
    EXPECT_EQ(autostart().enable(), std::nullopt);
    EXPECT_EQ(autostart().disable(), std::nullopt);
    EXPECT_FALSE(fs::exists(userEntry()));
}

TEST_F(XdgAutostartTest, ASymbolicLinkIsReadAndNotTouched) {
    write(folder / "elsewhere", entryWith("Exec=sh\n"));
    fs::create_directories(userFolder());
    fs::create_symlink(folder / "elsewhere", userEntry());
    EXPECT_TRUE(autostart().isEnabled());
    for (const auto& reason : {autostart().enable(), autostart().disable()})
        EXPECT_EQ(reason, userEntry().string() + ": It is a symbolic link");
    EXPECT_TRUE(autostart().isEnabled());
    EXPECT_TRUE(fs::is_symlink(userEntry()));
    fs::remove(folder / "elsewhere");
    EXPECT_FALSE(autostart().isEnabled());
    EXPECT_EQ(autostart().disable(), std::nullopt) << "it is off already";
}

TEST_F(XdgAutostartTest, AFolderInItsPlaceIsNotTouched) {
    fs::create_directories(userEntry());
    EXPECT_FALSE(autostart().isEnabled());
    EXPECT_EQ(autostart().enable(), userEntry().string() + ": It is a folder");
    EXPECT_FALSE(autostart().isEnabled());
    EXPECT_EQ(autostart().disable(), std::nullopt);
    EXPECT_TRUE(fs::is_directory(userEntry()));
}

TEST_F(XdgAutostartTest, APipeInItsPlaceKeepsNobodyWaiting) {
    fs::create_directories(userFolder());
    ASSERT_EQ(mkfifo(userEntry().c_str(), 0600), 0);
    EXPECT_FALSE(autostart().isEnabled());
    EXPECT_EQ(autostart().enable(), userEntry().string() + ": It is no ordinary file");
}

TEST_F(XdgAutostartTest, WhereNoFolderCanBeMadeTheReasonIsTold) {
    write(folder / "config", "a file\n");
    const auto reason = autostart().enable();
    EXPECT_THAT(reason, Optional(HasSubstr(userFolder().string() + ": ")));
    EXPECT_FALSE(autostart().isEnabled());
    EXPECT_EQ(autostart().disable(), std::nullopt);
}

// To root nothing is read-only, so that somebody else has to try.
TEST_F(XdgAutostartTest, AReadOnlyFolderIsTold) {
    ASSERT_EQ(autostart().enable(), std::nullopt);
    for (const fs::path& each : {folder, userFolder().parent_path(), userFolder()})
        fs::permissions(each, fs::perms(0555));
    constexpr uid_t nobody = 65534;
    const bool isRoot = geteuid() == 0;
    if (isRoot) {
        ASSERT_EQ(seteuid(nobody), 0);
    }
    const auto whyNotOn = autostart().enable(), whyNotOff = autostart().disable();
    if (isRoot) {
        ASSERT_EQ(seteuid(0), 0);
    }
    for (const fs::path& each : {folder, userFolder().parent_path(), userFolder()})
        fs::permissions(each, fs::perms(0755));
    EXPECT_EQ(whyNotOn, userEntry().string() + ": Permission denied");
    EXPECT_EQ(whyNotOff, userEntry().string() + ": Permission denied");
    EXPECT_TRUE(autostart().isEnabled());
}

// A limit on the length of files stands for the end of a disk: what is written comes to an end in the middle.
TEST_F(XdgAutostartTest, AFullDiskIsToldAndTheOldEntryStays) {
    const std::string old = entryWith("Exec=sh\n");
    write(userEntry(), old);
    const auto before = signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit little{16, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &little), 0);
    const auto reason = autostart().enable();
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    signal(SIGXFSZ, before);
    EXPECT_EQ(reason, userEntry().string() + ": File too large");
    EXPECT_EQ(text(), old);
    EXPECT_THAT(filesOfUser(), ElementsAre("org.tarvix.Tarvix.desktop"));
    EXPECT_TRUE(autostart().isEnabled());
}

TEST_F(XdgAutostartTest, TheHelperOfOlderVersionsIsKnownByItsEntryEvenIfItsProgramIsGone) {
    EXPECT_FALSE(autostart().isHelperEnabled(kHelper));
    write(userFolder() / (kHelper + ".desktop"), entryWith("Exec=/usr/lib/tarvix/no-such-helper\n"));
    EXPECT_TRUE(autostart().isHelperEnabled(kHelper));
    EXPECT_FALSE(autostart().isEnabled());
    autostart().removeHelper(kHelper);
    EXPECT_FALSE(autostart().isHelperEnabled(kHelper));
    EXPECT_THAT(filesOfUser(), IsEmpty());
    write(userFolder() / (kHelper + ".desktop"), entryWith("Exec=sh\nHidden=true\n"));
    EXPECT_FALSE(autostart().isHelperEnabled(kHelper));
}

TEST_F(XdgAutostartTest, TheFoldersAreThoseOfTheEnvironment) {
    setenv("XDG_CONFIG_HOME", "/a", 1);
    setenv("XDG_CONFIG_DIRS", "/b:/c", 1);
    setenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME", 1);
    const AutostartPlaces found = AutostartPlaces::standard();
    EXPECT_EQ(found.userFolder, "/a/autostart");
    EXPECT_THAT(found.systemFolders, ElementsAre("/b/autostart", "/c/autostart"));
    EXPECT_THAT(found.desktops, ElementsAre("ubuntu", "GNOME"));
    EXPECT_EQ(found.program, fs::read_symlink("/proc/self/exe").string());
    const fs::path usual = fs::path(std::getenv("HOME")) / ".config/autostart";
    setenv("XDG_CONFIG_HOME", "a", 1);
    setenv("XDG_CONFIG_DIRS", "b:/c:.", 1);
    EXPECT_EQ(AutostartPlaces::standard().userFolder, usual);
    EXPECT_THAT(AutostartPlaces::standard().systemFolders, ElementsAre("/c/autostart"));
    for (const char* name : {"XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "XDG_CURRENT_DESKTOP"}) unsetenv(name);
    EXPECT_EQ(AutostartPlaces::standard().userFolder, usual);
    EXPECT_THAT(AutostartPlaces::standard().systemFolders, ElementsAre("/etc/xdg/autostart"));
}

TEST_F(XdgAutostartTest, AProgramThatItsNameFindsIsNamedByThat) {
    const std::string before = std::getenv("PATH");
    fs::create_symlink(fs::read_symlink("/proc/self/exe"), folder / "tarvix");
    setenv("PATH", (folder.string() + ":" + before).c_str(), 1);
    EXPECT_EQ(AutostartPlaces::standard().program, "tarvix");
    setenv("PATH", ((folder / "programs").string() + ":" + before).c_str(), 1);
    EXPECT_NE(AutostartPlaces::standard().program, "tarvix") << "another program";
    setenv("PATH", before.c_str(), 1);
}

// Other programs' readers
// ------------------------------------------------------------------------------------------------

class AutostartRunnersTest : public XdgAutostartTest {
protected:
    // An entry of its own for a program at an odd place.
    XdgAutostart itselfAt(const fs::path& path) {
        odd_ = path;
        makeProgram(odd_);
        AutostartPlaces there = places();
        there.program = odd_.string();
        return XdgAutostart(there);
    }
    bool isStarted() const {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!fs::exists(odd_.string() + ".log") && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return fs::remove(odd_.string() + ".log");
    }

    fs::path odd_;
};

// But for a percent sign, which not every reader takes as one in a program's path.
TEST_F(AutostartRunnersTest, AnOddPathIsStarted) {
    const std::string gio = programPath("gio", kPath);
    if (gio.empty()) GTEST_SKIP() << "gio isn't installed";
    XdgAutostart itself = itselfAt(folder / "odd one's \"$HOME\" \\ `x`;&" / "tarvix");
    ASSERT_EQ(itself.enable(), std::nullopt);
    outputOfProgram({gio, "launch", userEntry().string()}, std::chrono::seconds(20));
    EXPECT_TRUE(isStarted()) << text();
}

// With a program that starts a session's entries.
TEST_F(AutostartRunnersTest, ASessionStartsWhatIsOnAndNothingElse) {
    const std::string dex = programPath("dex", kPath);
    if (dex.empty()) GTEST_SKIP() << "dex isn't installed";
    XdgAutostart itself = itselfAt(folder / "odd one's" / "tarvix");
    fs::create_directories(userFolder());
    const auto runSession = [&](bool isDry) {
        setenv("XDG_CONFIG_HOME", userFolder().parent_path().c_str(), 1);
        setenv("XDG_CONFIG_DIRS", systemFolder().parent_path().c_str(), 1);
        std::vector<std::string> command{dex, "--autostart", "--environment", "XFCE"};
        if (isDry) command.emplace_back("--dry-run");
        const std::string output = outputOfProgram(command, std::chrono::seconds(20));
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"}) unsetenv(name);
        return output;
    };
    const auto wouldStart = [&] { return runSession(true).find(odd_.string()) != std::string::npos; };
    EXPECT_FALSE(wouldStart());
    ASSERT_EQ(itself.enable(), std::nullopt);
    EXPECT_TRUE(wouldStart());
    runSession(false);
    EXPECT_TRUE(isStarted());
    ASSERT_EQ(itself.disable(), std::nullopt);
    EXPECT_FALSE(wouldStart());
    write(systemEntry(), entryWith("Name=Tarvix\nExec=" + execLine(odd_.string()) + "\n"));
    EXPECT_TRUE(wouldStart());
    ASSERT_EQ(itself.disable(), std::nullopt);
    EXPECT_FALSE(wouldStart());
}

}  // namespace
}  // namespace tarvix
