// The program's status item in real panels: it shows, its menu opens with what holds at that moment, its entries do
// what they say, and it follows the panels as they come and go.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "ax/AXEngine2.h"
#include "linux/x11/Panels.h"
#include "tests/desktop/PanelDesk.h"
#include "tests/desktop/RealServices.h"
#include "tests/desktop/X11Victim.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;

constexpr ScreenPoint kAway{300, 300};  // off the panels, which show tips

ScreenPoint middleOf(const AxRect& frame) {
    return {static_cast<int>(frame.minX() + frame.width() / 2), static_cast<int>(frame.minY() + frame.height() / 2)};
}

class StatusItemTest : public ::testing::Test {
protected:
    StatusItemTest() {
        victim_.set32("_NET_WM_WINDOW_TYPE", "ATOM", {victim_.connection().atom("_NET_WM_WINDOW_TYPE_NORMAL")});
        EXPECT_TRUE(victim_.show());
        keyboard_.movePointer(kAway);
    }

    void startProgram() {
        hide(false);
        program_.emplace(TARVIX_PROGRAM, configuration_.environment());
        ASSERT_TRUE(program_->isReady());
    }

    void hide(bool hides) {
        configuration_.write("tarvix/tarvix.json",
                             std::string(R"({"hideMenuBarIcon": )") + (hides ? "true}" : "false}"));
    }

    // Where the item is, as a search finds it.
    std::optional<AxRect> icon() const {
        const auto windows = services_.windowServer->onScreenWindows();
        if (!windows) return std::nullopt;
        for (const AccessibilityElement& each : engine_.statusItemElements(*windows))
            if (each.searchableText().find("Tarvix") != std::string::npos) return AxRect{each.position, each.size};
        return std::nullopt;
    }
    // Whether it is there, at a place that doesn't change any more.
    bool isShown() const {
        std::optional<AxRect> last;
        int same = 0;
        return eventually(kUntilShown, [&] {
            const auto now = icon();
            same = now && now == last ? same + 1 : 0;
            last = now;
            return same >= 3;
        });
    }
    bool isGone() const {
        return eventually(kUntilShown, [&] { return !icon(); });
    }

    // Whose menu it is differs: the panel's own, or one of the program.
    bool menuIsShown() const {
        constexpr double least = 60;  // a tip is lower
        return std::ranges::any_of(services_.windows->onScreen(), [](const X11Window& each) {
            return each.isOverrideRedirect && each.client.height() > least && each.client.width() > least;
        });
    }
    void openMenu(std::uint8_t button = 1) {
        ASSERT_TRUE(isShown());
        keyboard_.movePointer(middleOf(*icon()));
        keyboard_.click(button);
        ASSERT_TRUE(eventually(15s, [this] { return menuIsShown(); }));
    }
    // Opens the menu and chooses an entry by keys.
    void choose(const std::vector<std::uint32_t>& keys) {
        openMenu();
        if (HasFatalFailure()) return;
        keyboard_.movePointer(kAway);
        for (const std::uint32_t key : keys) keyboard_.chord({key});
        ASSERT_TRUE(eventually(15s, [this] { return !menuIsShown(); }));
    }
    // What a panel has been told last of the entry that names an application.
    static std::string reportTitle() {
        const std::string name = "org.kde.StatusNotifierItem-";
        const auto names = outputOf({"busctl", "--user", "list", "--no-legend", "--acquired"}).value_or("");
        const auto start = names.find(name);
        if (start == std::string::npos) return "no item";
        return outputOf({"busctl", "--user", "call", names.substr(start, names.find(' ', start) - start), "/MenuBar",
                         "com.canonical.dbusmenu", "GetProperty", "is", "3", "label"})
            .value_or("no entry");
    }
    std::string notWorkingOnFrontmost() const {
        const auto frontmost = services_.workspace->frontmostApplication();
        return frontmost ? "v s \"Not working on \\\"" + frontmost->localizedName + "\\\"?\"\n"
                         : "nothing is frontmost";
    }
    bool settingsAreShown() {
        return eventually(15s, [this] {
            return std::ranges::any_of(services_.windows->onScreen(), [this](const X11Window& each) {
                return each.pid == program_->process().pid() && each.title.find("Settings") != std::string::npos;
            });
        });
    }

    // A panel that reads the menu from the bus.
    void playReport(std::uint8_t button) {
        const std::string before = notWorkingOnFrontmost();
        X11Victim other({600, 100, 300, 200, false});
        other.setText("WM_CLASS", std::string("other\0Other\0", 12));
        other.set32("_NET_WM_WINDOW_TYPE", "ATOM", {other.connection().atom("_NET_WM_WINDOW_TYPE_NORMAL")});
        ASSERT_TRUE(other.show());
        ASSERT_TRUE(eventually(15s, [&] { return notWorkingOnFrontmost() != before; }));
        EXPECT_NE(reportTitle(), notWorkingOnFrontmost()) << "before it is opened";
        openMenu(button);
        if (HasFatalFailure()) return;
        EXPECT_TRUE(eventually(15s, [&] { return reportTitle() == notWorkingOnFrontmost(); })) << reportTitle();
        keyboard_.chord({keysym::escape});
        ASSERT_TRUE(eventually(15s, [this] { return !menuIsShown(); }));
    }

    // What every panel's item has to show.
    void playEntries() {
        choose({keysym::down, keysym::returnKey});
        if (HasFatalFailure()) return;
        EXPECT_TRUE(settingsAreShown());
        choose({keysym::up, keysym::returnKey});
        if (HasFatalFailure()) return;
        EXPECT_EQ(program_->process().waitForEnd(10s), 0);
    }

    Configuration configuration_;
    RealServices services_;
    const AXEngine2 engine_ = engineWithDock(services_);
    Keyboard keyboard_;
    X11Victim victim_{{100, 100, 300, 200, false}};
    std::optional<Process> panel_;
    std::optional<Program> program_;
};

constexpr const char* kXfcePanel = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=8;x=960;y=1064"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="30"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty"><property name="plugin-1" type="string" value="systray"/></property>
</channel>
)";

class StatusItemInXfceTest : public StatusItemTest {
protected:
    // The desktop's keeper of settings looks in the desktop's own folder.
    void startPanel() {
        const std::string path = std::string(std::getenv("XDG_CONFIG_HOME")) + "/xfce4/xfconf/xfce-perchannel-xml";
        std::filesystem::create_directories(path);
        std::ofstream(path + "/xfce4-panel.xml") << kXfcePanel;
        panel_.emplace(std::vector<std::string>{"xfce4-panel", "--disable-wm-check"});
        ASSERT_TRUE(hasNotifierHost());
    }
};

TEST_F(StatusItemInXfceTest, ShowsHidesAndOpensItsMenu) {
    startPanel();
    if (HasFatalFailure()) return;
    startProgram();
    if (HasFatalFailure()) return;
    ASSERT_TRUE(isShown());
    hide(true);
    EXPECT_TRUE(isGone());
    hide(false);
    EXPECT_TRUE(isShown());
    playReport(1);
    if (HasFatalFailure()) return;
    playEntries();
}

class StatusItemInTint2Test : public StatusItemTest {
protected:
    void startPanel() {
        configuration_.write("tint2rc",
                             "panel_items = S\npanel_position = bottom center horizontal\npanel_size = 100% 30\n"
                             "panel_layer = top\nsystray_padding = 4 2 4\nsystray_icon_size = 22\n");
        panel_.emplace(std::vector<std::string>{"tint2", "-c", configuration_.file("tint2rc")});
    }
};

TEST_F(StatusItemInTint2Test, ComesLateStaysThroughARestartAndOpensItsMenu) {
    startProgram();
    if (HasFatalFailure()) return;
    for (int times = 0; times < 2; ++times) {
        panel_.reset();
        EXPECT_TRUE(isGone());
        startPanel();
        EXPECT_TRUE(isShown());
    }
    hide(true);
    EXPECT_TRUE(isGone());
    hide(false);
    playEntries();
}

}  // namespace
}  // namespace tarvix
