#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "linux/desktops/XfceShortcuts.h"
#include "tests/linux/desktops/Described.h"

namespace tarvix {
namespace {

using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

// As the desktop installs it.
constexpr std::string_view kSystem = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-keyboard-shortcuts" version="1.0">
  <property name="commands" type="empty">
    <property name="default" type="empty">
      <property name="&lt;Alt&gt;F2" type="string" value="xfce4-appfinder --collapsed">
        <property name="startup-notify" type="bool" value="true"/>
      </property>
      <property name="&lt;Primary&gt;&lt;Alt&gt;Delete" type="string" value="xfce4-session-logout"/>
      <property name="XF86WWW" type="string" value="exo-open --launch WebBrowser"/>
    </property>
  </property>
  <property name="xfwm4" type="empty">
    <property name="default" type="empty">
      <property name="Escape" type="string" value="cancel_key"/>
      <property name="Left" type="string" value="left_key"/>
      <property name="&lt;Alt&gt;Tab" type="string" value="cycle_windows_key"/>
      <property name="&lt;Super&gt;KP_Left" type="string" value="tile_left_key"/>
    </property>
  </property>
</channel>
)";

// As the settings write it once the user has changed something.
constexpr std::string_view kUser = R"(<?xml version="1.0" encoding="UTF-8"?>

<channel name="xfce4-keyboard-shortcuts" version="1.0">
  <property name="commands" type="empty">
    <property name="default" type="empty">
      <property name="&lt;Alt&gt;F2" type="empty">
        <property name="startup-notify" type="empty"/>
      </property>
    </property>
    <property name="custom" type="empty">
      <property name="&lt;Alt&gt;F2" type="string" value="xfce4-appfinder --collapsed"/>
      <property name="&lt;Shift&gt;&lt;Super&gt;space" type="string" value="xfce4-terminal"/>
      <property name="override" type="bool" value="true"/>
    </property>
  </property>
  <property name="xfwm4" type="empty">
    <property name="default" type="empty">
      <property name="&lt;Alt&gt;Tab" type="empty"/>
    </property>
  </property>
</channel>
)";

TEST(XfceShortcuts, OfTheSystemHoldForAUserWhoHasChangedNothing) {
    EXPECT_THAT(described(xfceShortcuts("", kSystem)),
                UnorderedElementsAre("Alt+F2", "Ctrl+Alt+Delete", "XF86WWW", "Alt+Tab", "Super+KP_Left"));
}

TEST(XfceShortcuts, TheUsersListTakesThePlaceOfTheDefaultOfItsKind) {
    EXPECT_THAT(described(xfceShortcuts(kUser, kSystem)),
                UnorderedElementsAre("Alt+F2", "Shift+Super+space", "Alt+Tab", "Super+KP_Left"));
}

TEST(XfceShortcuts, TheUsersFileStandsAlone) {
    EXPECT_THAT(described(xfceShortcuts(kUser, "")), UnorderedElementsAre("Alt+F2", "Shift+Super+space"));
}

TEST(XfceShortcuts, ABrokenFileLeavesTheOther) {
    EXPECT_THAT(described(xfceShortcuts("<channel><property name=", kSystem)),
                UnorderedElementsAre("Alt+F2", "Ctrl+Alt+Delete", "XF86WWW", "Alt+Tab", "Super+KP_Left"));
    EXPECT_THAT(xfceShortcuts("no xml", "\xff\xfe"), IsEmpty());
    EXPECT_THAT(xfceShortcuts(R"(<channel><property name="commands" type="string" value="x"/></channel>)",
                              R"(<other><property name="commands"/></other>)"),
                IsEmpty());
}

TEST(XfceShortcuts, AFileThatEndsEarlyGivesWhatItHas) {
    const auto found = xfceShortcuts("", kSystem.substr(0, kSystem.find("XF86WWW")));
    EXPECT_LE(found.size(), 2u);
}

TEST(XfceShortcuts, ADeeplyNestedFileIsNoHarm) {
    std::string deep;
    for (int i = 0; i < 100'000; ++i) deep += "<property name=\"commands\">";
    EXPECT_THAT(xfceShortcuts(deep, deep), IsEmpty());
}

}  // namespace
}  // namespace tarvix
