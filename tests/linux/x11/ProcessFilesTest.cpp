#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "linux/x11/ProcessFiles.h"

namespace tarvix {
namespace {

TEST(ProcessFiles, APartOfASnapIsKnownByItsPath) {
    EXPECT_EQ(snapOfPath("/snap/firefox/4173/usr/lib/firefox/firefox"), "firefox");
    EXPECT_EQ(snapOfPath("/var/lib/snapd/snap/code_two/1/usr/share/code/code"), "code_two");
    EXPECT_EQ(snapOfPath("/snap/bin/code"), std::nullopt) << "the launcher of all Snaps";
    EXPECT_EQ(snapOfPath("/usr/bin/snap"), std::nullopt);
    EXPECT_EQ(snapOfPath("/home/me/snap/firefox/common/x"), std::nullopt) << "what a user keeps there is anything";
    EXPECT_EQ(snapOfPath("/snap/"), std::nullopt);
    EXPECT_EQ(snapOfPath("/snap//x"), std::nullopt);
    EXPECT_EQ(snapOfPath(""), std::nullopt);
}

TEST(ProcessFiles, TheControlGroupOfASnapNamesIt) {
    EXPECT_EQ(snapOfControlGroup("0::/user.slice/user-1000.slice/user@1000.service/app.slice/"
                                 "snap.spotify.spotify-6d0bb3a4-0a1b-4c2d-8e3f-123456789abc.scope\n"),
              "spotify");
    EXPECT_EQ(snapOfControlGroup("12:freezer:/snap.code\n0::/user.slice\n"), std::nullopt);
    EXPECT_EQ(snapOfControlGroup("0::/user.slice/app-gnome-org.gnome.gedit-1.scope\n"), std::nullopt);
    EXPECT_EQ(snapOfControlGroup("0::/snap..\n"), std::nullopt);
    EXPECT_EQ(snapOfControlGroup(""), std::nullopt);
}

TEST(ProcessFiles, AnAppImageIsKnownByTheFolderWhereItIsUnpacked) {
    EXPECT_EQ(appImageFolderOfPath("/tmp/.mount_ObsidiAbCdEf/obsidian"), "/tmp/.mount_ObsidiAbCdEf");
    EXPECT_EQ(appImageFolderOfPath("/tmp/.mount_LogseqXYZ/usr/bin/logseq"), "/tmp/.mount_LogseqXYZ");
    EXPECT_EQ(appImageFolderOfPath("/tmp/appimage_extracted_0a1b/AppRun"), "/tmp/appimage_extracted_0a1b");
    EXPECT_EQ(appImageFolderOfPath("/usr/bin/obsidian"), std::nullopt);
    EXPECT_EQ(appImageFolderOfPath("/tmp/.mount_alone"), std::nullopt);
}

TEST(ProcessFiles, AScriptIsKnownByItsOwnName) {
    EXPECT_EQ(programOrScript("gedit", {"gedit", "a.txt"}), "gedit");
    EXPECT_EQ(programOrScript("python3.11", {"/usr/bin/python3", "-E", "/usr/bin/terminator", "-x"}), "terminator");
    EXPECT_EQ(programOrScript("python3.11", {"python3"}), "") << "it isn't Python's own window";
    EXPECT_EQ(programOrScript("gjs-console", {"gjs", "/usr/bin/org.gnome.Weather"}), "org.gnome.Weather");
    EXPECT_EQ(programOrScript("bash", {}), "");
    EXPECT_EQ(programOrScript("shotwell", {"shotwell"}), "shotwell") << "it only begins like a shell";
    EXPECT_EQ(programOrScript("nodejs-viewer", {"x", "y"}), "nodejs-viewer");
}

TEST(ProcessFiles, ThisVeryProcessIsNoPartOfAnyOfThem) {
    EXPECT_TRUE(processIsAlive(getpid()));
    EXPECT_EQ(programName(getpid()), "test_x11");
    EXPECT_TRUE(programPath(getpid()).ends_with("/test_x11"));
    EXPECT_EQ(programOrScriptName(getpid()), "test_x11");
    EXPECT_FALSE(isStopped(getpid()));
    EXPECT_EQ(flatpakId(getpid()), std::nullopt);
    EXPECT_EQ(snapOfProgram(getpid()), std::nullopt);
    EXPECT_EQ(appImageFolder(getpid()), std::nullopt);
}

TEST(ProcessFiles, AProcessThatWasStoppedIsKnownAsSuch) {
    const pid_t pid = fork();
    if (pid == 0) {
        pause();
        _exit(0);
    }
    EXPECT_FALSE(isStopped(pid));
    kill(pid, SIGSTOP);
    int status = 0;
    waitpid(pid, &status, WUNTRACED);
    EXPECT_TRUE(isStopped(pid));
    kill(pid, SIGKILL);
    waitpid(pid, &status, 0);
    EXPECT_FALSE(isStopped(pid));
}

TEST(ProcessFiles, OfAProcessThatIsNotThereNothingIsKnown) {
    EXPECT_EQ(programPath(-1), "");
    EXPECT_EQ(snapOfProgram(-1), std::nullopt);
    EXPECT_EQ(snapOfEnvironment(-1), std::nullopt);
    EXPECT_EQ(appImageFolder(-1), std::nullopt);
}

}  // namespace
}  // namespace tarvix
