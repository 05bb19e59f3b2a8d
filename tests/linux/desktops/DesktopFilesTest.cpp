#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include "linux/desktops/DesktopFiles.h"
#include "linux/desktops/TextSources.h"
#include "tests/linux/desktops/Described.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

// Folders of its own for the configuration of a user and of a system.
class DesktopFilesTest : public ::testing::Test {
protected:
    DesktopFilesTest() {
        std::string pattern = (std::filesystem::temp_directory_path() / "tarvix-XXXXXX").string();
        folder_ = mkdtemp(pattern.data());
        set("HOME", folder_ / "home");
        set("XDG_CONFIG_HOME", folder_ / "user");
        set("XDG_CONFIG_DIRS", (folder_ / "none").string() + ":" + (folder_ / "system").string());
    }
    ~DesktopFilesTest() override {
        for (const auto& [name, value] : before_)
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
        std::filesystem::remove_all(folder_);
    }

    void set(const char* name, const std::string& value) {
        const char* present = std::getenv(name);
        before_.emplace(name, present ? std::optional<std::string>(present) : std::nullopt);
        setenv(name, value.c_str(), 1);
    }
    std::filesystem::path write(const std::string& name, const std::string& text) {
        const auto path = folder_ / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << text;
        return path;
    }
    // A program of that name, before any other.
    void writeProgram(const std::string& name, const std::string& script) {
        std::filesystem::permissions(write("bin/" + name, "#!/bin/sh\n" + script), std::filesystem::perms::owner_all);
        set("PATH", (folder_ / "bin").string() + ":" + std::getenv("PATH"));
    }
    static Words read(const DesktopNames& names) {
        return described(readDesktopShortcuts(names).value_or(DesktopShortcuts{}));
    }

    std::filesystem::path folder_;

private:
    std::map<std::string, std::optional<std::string>> before_;
};

TEST_F(DesktopFilesTest, AnUnknownDesktopSaysNothing) {
    EXPECT_EQ(readDesktopShortcuts({"", ""}), std::nullopt);
    EXPECT_EQ(readDesktopShortcuts({"Enlightenment:XFC", "Open"}), std::nullopt);
}

TEST_F(DesktopFilesTest, AKnownDesktopWithoutFilesHasNoShortcuts) {
    for (const char* desktop : {"XFCE", "KDE", "Openbox"})
        EXPECT_EQ(readDesktopShortcuts({desktop, ""}), DesktopShortcuts{}) << desktop;
}

TEST_F(DesktopFilesTest, TheUsersFileIsReadElseTheSystems) {
    write("system/openbox/rc.xml", "<openbox_config><keyboard><keybind key='W-s'/></keyboard></openbox_config>");
    EXPECT_THAT(read({"", "Openbox"}), ElementsAre("Super+s"));
    write("user/openbox/rc.xml", "<openbox_config><keyboard><keybind key='W-u'/></keyboard></openbox_config>");
    EXPECT_THAT(read({"", "Openbox"}), ElementsAre("Super+u"));
}

TEST_F(DesktopFilesTest, TheSessionAndTheWindowManagerEachHaveTheirOwn) {
    write("user/openbox/rc.xml", "<openbox_config><keyboard><keybind key='W-o'/></keyboard></openbox_config>");
    write("user/kglobalshortcutsrc", "[kwin]\na=Meta+k,none,a\n");
    EXPECT_THAT(read({"x:KDE", "Openbox"}), UnorderedElementsAre("Super+o", "Super+k"));
}

TEST_F(DesktopFilesTest, XfceIsTheUsersFileOverTheSystems) {
    const std::string name = "/xfce4/xfconf/xfce-perchannel-xml/xfce4-keyboard-shortcuts.xml";
    write("system" + name, R"(<channel><property name="xfwm4"><property name="default">
        <property name="&lt;Alt&gt;F4" type="string" value="close_window_key"/></property></property></channel>)");
    EXPECT_THAT(read({"", "Xfwm4"}), ElementsAre("Alt+F4"));
    write("user" + name, R"(<channel><property name="xfwm4"><property name="custom">
        <property name="&lt;Alt&gt;F5" type="string" value="close_window_key"/>
        <property name="override" type="bool" value="true"/></property></property></channel>)");
    EXPECT_THAT(read({"XFCE", ""}), ElementsAre("Alt+F5"));
}

TEST_F(DesktopFilesTest, I3IncludesFilesByPattern) {
    write("user/i3/conf.d/a.conf", "bindsym Mod4+a nop");
    write("user/i3/conf.d/b.conf", "bindsym Mod4+b nop");
    write("user/i3/config", "include " + (folder_ / "user/i3/conf.d/*.conf").string() + "\n");
    EXPECT_THAT(read({"", "i3"}), ElementsAre("Super+a", "Super+b"));
}

TEST_F(DesktopFilesTest, I3sOlderPlaceIsReadWhereTheNewOneHasNone) {
    write("home/.i3/config", "bindsym Mod4+o nop");
    EXPECT_THAT(read({"i3", ""}), ElementsAre("Super+o"));
}

TEST_F(DesktopFilesTest, GnomeIsAskedByItsOwnProgramTheUsersOwnKeysToo) {
    writeProgram("gsettings", R"(case $2 in
  org.gnome.shell.keybindings) echo "$2 toggle-overview ['<Super>s']" ;;
  *.media-keys) echo "$2 custom-keybindings ['/custom0/']" ;;
  *.custom-keybinding:/custom0/) echo "${2%%:*} binding '<Super>t'" ;;
  *) echo "No such schema" >&2; exit 1 ;;
esac)");
    EXPECT_THAT(read({"ubuntu:GNOME", "GNOME Shell"}), ElementsAre("Super+s", "Super+t"));
}

TEST_F(DesktopFilesTest, WithoutItsProgramGnomeHasNoShortcuts) {
    set("PATH", folder_ / "bin");
    EXPECT_EQ(readDesktopShortcuts({"GNOME", ""}), DesktopShortcuts{});
}

TEST_F(DesktopFilesTest, OnlyOrdinaryFilesAreRead) {
    write("user/plain", "text");
    EXPECT_EQ(userConfiguration("plain"), "text");
    EXPECT_EQ(systemConfiguration("plain"), std::nullopt);
    EXPECT_EQ(textOfFile(folder_), std::nullopt);
    ASSERT_EQ(mkfifo((folder_ / "user/pipe").c_str(), 0600), 0);
    EXPECT_EQ(userConfiguration("pipe"), std::nullopt);
    EXPECT_EQ(textOfFile("/dev/zero"), std::nullopt);
}

TEST_F(DesktopFilesTest, AFileWithoutEndIsReadInPart) {
    write("user/long", std::string(3 * 1024 * 1024, 'x'));
    EXPECT_EQ(userConfiguration("long")->size(), 1024u * 1024u);
}

TEST_F(DesktopFilesTest, AProgramThatDoesNotEndIsEnded) {
    EXPECT_EQ(outputOfProgram({"/bin/sh", "-c", "echo first; exec sleep 1000"}, 3s), "first\n");
    EXPECT_EQ(outputOfProgram({"/bin/sh", "-c", "echo closed; exec sleep 1000 >/dev/null"}, 60s), "closed\n");
    EXPECT_EQ(outputOfProgram({"yes"}, 60s).size(), 1024u * 1024u);
}

TEST_F(DesktopFilesTest, AProgramThatIsNotThereSaysNothing) {
    EXPECT_EQ(outputOfProgram({"tarvix-no-such-program"}, 60s), "");
}

}  // namespace
}  // namespace tarvix
