#include <gtest/gtest.h>
#include <unistd.h>

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

TEST(ProcessFiles, ThisVeryProcessIsNoPartOfAnyOfThem) {
    EXPECT_TRUE(processIsAlive(getpid()));
    EXPECT_EQ(programName(getpid()), "test_x11");
    EXPECT_TRUE(programPath(getpid()).ends_with("/test_x11"));
    EXPECT_EQ(flatpakId(getpid()), std::nullopt);
    EXPECT_EQ(snapOfProgram(getpid()), std::nullopt);
    EXPECT_EQ(appImageFolder(getpid()), std::nullopt);
}

TEST(ProcessFiles, OfAProcessThatIsNotThereNothingIsKnown) {
    EXPECT_EQ(programPath(-1), "");
    EXPECT_EQ(snapOfProgram(-1), std::nullopt);
    EXPECT_EQ(snapOfEnvironment(-1), std::nullopt);
    EXPECT_EQ(appImageFolder(-1), std::nullopt);
}

}  // namespace
}  // namespace tarvix
