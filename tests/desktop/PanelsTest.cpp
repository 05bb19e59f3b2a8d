// Real panels and a dock: their items are found by name with the running program, clicked, and activated then, as the
// items' own programs say. What hides itself isn't found.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "ax/AXEngine2.h"
#include "linux/x11/Panels.h"
#include "tests/desktop/PanelDesk.h"
#include "tests/desktop/RealServices.h"
#include "tests/desktop/X11Victim.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kStatusLayer = 25;
const std::string kSettings = R"({"searchIncludesDock": true})";

// A window that a list of tasks has a button for.
class TaskWindow {
public:
    TaskWindow(const char* title, std::int16_t x, std::int16_t y) : victim_({x, y, 300, 200, false}) {
        victim_.setText("WM_NAME", title);
        victim_.set32("_NET_WM_WINDOW_TYPE", "ATOM", {victim_.connection().atom("_NET_WM_WINDOW_TYPE_NORMAL")});
        EXPECT_TRUE(victim_.show());
    }
    std::uint32_t number() const { return victim_.window(); }
    X11Victim& victim() { return victim_; }

private:
    X11Victim victim_;
};

class PanelTest : public ::testing::Test {
protected:
    std::vector<AccessibilityElement> trayElements() const {
        const auto list = services_.windowServer->onScreenWindows();
        return listed(list ? engine_.statusItemElements(*list) : OrderedSet<AccessibilityElement>());
    }
    std::vector<AccessibilityElement> dockElements() const { return listed(engine_.dockElements()); }

    static std::vector<AccessibilityElement> listed(const OrderedSet<AccessibilityElement>& set) {
        return {set.begin(), set.end()};
    }
    static bool isNamed(const AccessibilityElement& element, const std::string& name) {
        return element.title == name || element.label == name;
    }
    static bool hold(const std::vector<AccessibilityElement>& elements, const std::string& name) {
        return std::ranges::any_of(elements, [&](const AccessibilityElement& each) { return isNamed(each, name); });
    }

    static std::string told(const std::vector<AccessibilityElement>& elements) {
        std::string lines;
        for (const AccessibilityElement& each : elements) lines += "\n" + each.searchableText();
        return "found were:" + lines;
    }

    // Whether all of them are found at places that don't change any more.
    template <class Elements>
    static bool comeToRest(Elements elements, const std::vector<std::string>& names) {
        std::vector<AccessibilityElement> last;
        int same = 0;
        return eventually(kUntilShown, [&] {
            std::vector<AccessibilityElement> now = elements();
            const bool areAll = std::ranges::all_of(names, [&](const std::string& each) { return hold(now, each); });
            same = areAll && now == last ? same + 1 : 0;
            last = std::move(now);
            return same >= kSteady;
        });
    }
    bool trayComesToRest(const std::vector<std::string>& names) const {
        return comeToRest([this] { return trayElements(); }, names);
    }
    bool dockComesToRest(const std::vector<std::string>& names) const {
        return comeToRest([this] { return dockElements(); }, names);
    }

    bool isOnScreen(auto is) const {
        const auto list = services_.windowServer->onScreenWindows();
        return list && std::ranges::any_of(*list, is);
    }
    bool hasAPanel() const { return std::ranges::any_of(services_.windows->onScreen(), isPanel); }
    bool statusLayerIsOnScreen() const {
        return isOnScreen([](const WindowInfo& each) { return each.layer == kStatusLayer; });
    }
    bool dockIsOnScreen() const {
        return isOnScreen([](const WindowInfo& each) { return each.ownerName == "Dock"; });
    }

    void startProgram() {
        configuration_.write("tarvix/tarvix.json", kSettings);
        program_.emplace(TARVIX_PROGRAM, configuration_.environment());
        ASSERT_TRUE(program_->isReady());
    }

    // Searches for what one target alone goes by, and clicks it.
    void choose(const std::string& query) {
        keyboard_.movePointer({300, 300});  // off the panels, which show tooltips
        const Program::Step opened = program_->pressHotKey(keyboard_);
        ASSERT_TRUE(opened);
        ASSERT_TRUE(program_->reached(milestone::candidatesRead, opened.pressed));
        const Program::Step typed = program_->type(keyboard_, query);
        ASSERT_TRUE(typed);
        ASSERT_EQ(typed.answered->count, 1u);
        ASSERT_TRUE(program_->press(keyboard_, keysym::returnKey, milestone::inputHidden));
    }

    // Whether a panel that hides at the lower edge comes out with this in it: the pointer goes there, and once more
    // where a panel has missed it.
    bool comesOut(const std::string& name) {
        for (int tries = 0; tries < 5; ++tries) {
            keyboard_.movePointer({300, 300});
            keyboard_.movePointer({960, 1079});
            if (eventually(3s,
                           [&] { return statusLayerIsOnScreen() && dockIsOnScreen() && hold(trayElements(), name); }))
                return true;
        }
        return false;
    }

    bool becomesActive(const TaskWindow& window) {
        return eventually(10s, [&] {
            const auto active = services_.windows->active();
            return active && active->number == window.number();
        });
    }
    static bool isActivated(const Fixture& item) {
        return eventually(10s, [&] { return !item.clicks().empty(); });
    }

    static constexpr int kSteady = 3;
    Configuration configuration_;
    RealServices services_;
    const AXEngine2 engine_ = engineWithDock(services_);
    Keyboard keyboard_;
    std::optional<Program> program_;
};

// Xfce's panel -------------------------------------------------------------------------------------------------------

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
      <property name="popdown-speed" type="uint" value="0"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/><value type="int" value="2"/><value type="int" value="3"/>
        <value type="int" value="4"/><value type="int" value="5"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="applicationsmenu"/>
    <property name="plugin-2" type="string" value="launcher">
      <property name="items" type="array"><value type="string" value="bracken.desktop"/></property>
    </property>
    <property name="plugin-3" type="string" value="tasklist"/>
    <property name="plugin-4" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
    </property>
    <property name="plugin-5" type="string" value="systray">
      <property name="known-items" type="array">
        <value type="string" value="Willow"/><value type="string" value="Rowan"/><value type="string" value="Alder"/>
      </property>
      <property name="hidden-items" type="array"><value type="string" value="Alder"/></property>
    </property>
  </property>
</channel>
)";

// One panel for all tests, with its settings where the desktop's keeper of settings looks for them.
class XfcePanelTest : public PanelTest {
protected:
    static void SetUpTestSuite() {
        write("xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", kXfcePanel);
        write("xfce4/panel/launcher-2/bracken.desktop",
              "[Desktop Entry]\nType=Application\nName=Bracken\nIcon=folder\nExec=touch " + launched() + "\n");
        panel_.emplace(std::vector<std::string>{"xfce4-panel", "--disable-wm-check"});
    }
    static void TearDownTestSuite() { panel_.reset(); }

    static std::string file(const std::string& name) {
        return std::string(std::getenv("XDG_CONFIG_HOME")) + "/" + name;
    }
    static void write(const std::string& name, const std::string& text) {
        std::filesystem::create_directories(std::filesystem::path(file(name)).parent_path());
        std::ofstream(file(name)) << text;
    }
    static std::string launched() { return file("launched"); }

    enum class Hides { never, always };
    static void setHiding(Hides when) {
        ASSERT_TRUE(outputOf({"xfconf-query", "-c", "xfce4-panel", "-p", "/panels/panel-1/autohide-behavior", "-n",
                              "-t", "uint", "-s", when == Hides::always ? "2" : "0"}));
    }

    static inline std::optional<Process> panel_;
};

// The items come in another order than the panel keeps them in, and one of them doesn't show.
TEST_F(XfcePanelTest, AnItemOfTheTrayIsFoundByItsNameAndReturnActivatesIt) {
    ASSERT_TRUE(hasNotifierHost());
    Fixture alder("tray.py", {"notifier", "Alder"}), rowan("tray.py", {"notifier", "Rowan"}),
        willow("tray.py", {"notifier", "Willow"}), sorrel("tray.py", {"embedded", "Sorrel"}),
        yarrow("tray.py", {"embedded", "Yarrow"});
    ASSERT_TRUE(trayComesToRest({"Rowan", "Willow", "Sorrel", "Yarrow"})) << told(trayElements());
    EXPECT_FALSE(hold(trayElements(), "Alder")) << "the panel doesn't show it";
    startProgram();
    if (HasFatalFailure()) return;
    for (const auto& [query, item] : {std::pair{"rowan", &rowan}, {"willow", &willow}, {"yarrow", &yarrow}}) {
        EXPECT_THAT(item->clicks(), IsEmpty());
        choose(query);
        if (HasFatalFailure()) return;
        EXPECT_TRUE(isActivated(*item)) << query;
        EXPECT_EQ(item->clicks().size(), 1u) << query;
    }
    EXPECT_THAT(sorrel.clicks(), IsEmpty());
    EXPECT_THAT(alder.clicks(), IsEmpty());
}

TEST_F(XfcePanelTest, TheButtonsOfWindowsAndTheLaunchersAreTheDock) {
    TaskWindow fern("Fern", 100, 100), moss("Moss", 600, 100);
    ASSERT_TRUE(dockComesToRest({"Fern", "Moss", "Bracken"})) << told(dockElements());
    for (const char* name : {"Fern", "Moss", "Bracken"}) EXPECT_FALSE(hold(trayElements(), name)) << name;
    EXPECT_TRUE(hold(trayElements(), "Applications"));
    EXPECT_TRUE(dockIsOnScreen());
    startProgram();
    if (HasFatalFailure()) return;
    choose("fern");
    if (HasFatalFailure()) return;
    EXPECT_TRUE(becomesActive(fern));
    choose("moss");
    if (HasFatalFailure()) return;
    EXPECT_TRUE(becomesActive(moss));
    EXPECT_FALSE(std::filesystem::exists(launched()));
    choose("bracken");
    if (HasFatalFailure()) return;
    EXPECT_TRUE(eventually(10s, [this] { return std::filesystem::exists(launched()); }));
}

// Neither what is frozen nor what stands beside it keeps the search from its end.
TEST_F(XfcePanelTest, WhatIsFrozenKeepsNothingElseFromBeingFound) {
    ASSERT_TRUE(hasNotifierHost());
    Fixture rowan("tray.py", {"notifier", "Rowan"}), willow("tray.py", {"notifier", "Willow"}),
        sorrel("tray.py", {"embedded", "Sorrel"}), yarrow("tray.py", {"embedded", "Yarrow"});
    ASSERT_TRUE(trayComesToRest({"Rowan", "Willow", "Sorrel", "Yarrow"})) << told(trayElements());
    for (Fixture* item : {&rowan, &sorrel}) item->process().send(SIGSTOP);
    for (int search = 0; search < 2; ++search)
        for (const char* name : {"Rowan", "Willow", "Sorrel", "Yarrow", "Applications"})
            EXPECT_TRUE(hold(trayElements(), name)) << name << " in search " << search;
    for (Fixture* item : {&rowan, &sorrel}) item->process().send(SIGCONT);
    panel_->send(SIGSTOP);
    for (int search = 0; search < 2; ++search) EXPECT_FALSE(hold(trayElements(), "Applications"));
    panel_->send(SIGCONT);
    EXPECT_TRUE(trayComesToRest({"Rowan", "Willow", "Sorrel", "Yarrow", "Applications"}));
}

TEST_F(XfcePanelTest, WhileItHidesNothingOfItIsACandidate) {
    keyboard_.movePointer({300, 300});
    ASSERT_TRUE(trayComesToRest({"Applications"}));
    EXPECT_TRUE(statusLayerIsOnScreen());
    setHiding(Hides::always);
    EXPECT_TRUE(eventually(10s, [this] { return !statusLayerIsOnScreen() && !dockIsOnScreen(); }));
    EXPECT_THAT(trayElements(), IsEmpty());
    EXPECT_THAT(dockElements(), IsEmpty());
    EXPECT_TRUE(comesOut("Applications"));
    setHiding(Hides::never);
}

// Another panel with a tree -------------------------------------------------------------------------------------------

using LxqtPanelTest = PanelTest;

TEST_F(LxqtPanelTest, AnItemOfTheTrayIsFoundByItsNameAndReturnActivatesIt) {
    configuration_.write(
        "lxqt/panel.conf",
        "panels=panel1\n[panel1]\nplugins=mainmenu, taskbar, statusnotifier\nposition=Bottom\n"
        "panelSize=32\niconSize=22\n[mainmenu]\ntype=mainmenu\n[taskbar]\ntype=taskbar\ngroupingEnabled=false\n"
        "[statusnotifier]\ntype=statusnotifier\n");
    const Process panel({"lxqt-panel"}, configuration_.environment());
    ASSERT_TRUE(hasNotifierHost());
    Fixture rowan("tray.py", {"notifier", "Rowan"}), willow("tray.py", {"notifier", "Willow"});
    TaskWindow fern("Fern", 100, 100), moss("Moss", 600, 100);
    const auto named = [](const AccessibilityElement& each, const std::string& name) {
        return each.searchableText().find(name) != std::string::npos;
    };
    ASSERT_TRUE(eventually(kUntilShown, [&] {
        const auto found = trayElements();
        return std::ranges::all_of(std::array{"Rowan", "Willow"}, [&](const char* name) {
            return std::ranges::any_of(found, [&](const auto& each) { return named(each, name); });
        });
    })) << told(trayElements());
    ASSERT_TRUE(dockComesToRest({"Fern", "Moss"})) << told(dockElements());
    startProgram();
    if (HasFatalFailure()) return;
    for (const auto& [query, item] : {std::pair{"willow", &willow}, {"rowan", &rowan}}) {
        choose(query);
        if (HasFatalFailure()) return;
        EXPECT_TRUE(isActivated(*item)) << query;
        EXPECT_EQ(item->clicks().size(), 1u) << query;
    }
    choose("fern");
    if (HasFatalFailure()) return;
    EXPECT_TRUE(becomesActive(fern));
}

// A panel without a tree ----------------------------------------------------------------------------------------------

// It doesn't say where the button at its very start is, so that the tray stands there.
class Tint2Test : public PanelTest {
protected:
    void start(bool hides) {
        configuration_.write("tint2rc",
                             "panel_items = ST\npanel_position = bottom center horizontal\npanel_size = 100% 30\n"
                             "panel_layer = top\ntaskbar_mode = single_desktop\ntask_text = 1\n"
                             "task_maximum_size = 150 30\nmouse_left = toggle_iconify\nsystray_padding = 4 2 4\n"
                             "systray_icon_size = 22\nautohide_show_timeout = 0\nautohide_hide_timeout = 0\n"
                             "autohide_height = 4\nautohide = " +
                                 std::string(hides ? "1" : "0") + "\n");
        panel_.emplace(std::vector<std::string>{"tint2", "-c", configuration_.file("tint2rc")});
    }

    std::optional<Process> panel_;
};

TEST_F(Tint2Test, IconsAndButtonsOfWindowsAreKnownByTheXServer) {
    start(false);
    Fixture sorrel("tray.py", {"embedded", "Sorrel"}), yarrow("tray.py", {"embedded", "Yarrow"});
    TaskWindow fern("Fern", 100, 100), moss("Moss", 600, 100);
    ASSERT_TRUE(trayComesToRest({"Sorrel", "Yarrow"})) << told(trayElements());
    ASSERT_TRUE(dockComesToRest({"Fern", "Moss"})) << told(dockElements());
    EXPECT_EQ(trayElements().size(), 2u);
    EXPECT_EQ(dockElements().size(), 2u);
    startProgram();
    if (HasFatalFailure()) return;
    for (const auto& [query, item] : {std::pair{"yarrow", &yarrow}, {"sorrel", &sorrel}}) {
        choose(query);
        if (HasFatalFailure()) return;
        EXPECT_TRUE(isActivated(*item)) << query;
        EXPECT_EQ(item->clicks().size(), 1u) << query;
    }
    ASSERT_TRUE(becomesActive(moss));
    choose("fern");
    if (HasFatalFailure()) return;
    EXPECT_TRUE(becomesActive(fern));
}

TEST_F(Tint2Test, WhileItHidesNothingOfItIsACandidate) {
    keyboard_.movePointer({300, 300});
    start(true);
    const Fixture sorrel("tray.py", {"embedded", "Sorrel"});
    ASSERT_TRUE(eventually(kUntilShown, [this] { return hasAPanel() && !statusLayerIsOnScreen(); }));
    for (int times = 0; times < 2; ++times) {
        ASSERT_TRUE(comesOut("Sorrel"));
        keyboard_.movePointer({300, 300});
        EXPECT_TRUE(eventually(10s, [this] { return !statusLayerIsOnScreen() && !dockIsOnScreen(); }));
        EXPECT_THAT(trayElements(), IsEmpty());
    }
}

// A dock --------------------------------------------------------------------------------------------------------------

class PlankTest : public PanelTest {
protected:
    void SetUp() override {
        for (const char* name : {"Bracken", "Tansy"}) {
            const std::string entry = applications() + "/" + name + ".desktop";
            std::filesystem::create_directories(applications());
            std::ofstream(entry) << "[Desktop Entry]\nType=Application\nName=The " << name
                                 << "\nIcon=folder\nExec=touch " << launched(name) << "\n";
            configuration_.write(std::string("plank/dock1/launchers/") + name + ".dockitem",
                                 "[PlankDockItemPreferences]\nLauncher=file://" + entry + "\n");
        }
        dock_.emplace(std::vector<std::string>{"plank"}, configuration_.environment());
    }
    void TearDown() override { std::filesystem::remove_all(applications()); }

    static std::string applications() { return std::string(std::getenv("XDG_DATA_HOME")) + "/applications"; }
    std::string launched(const std::string& name) const { return configuration_.file("launched-" + name); }

    std::optional<Process> dock_;
};

TEST_F(PlankTest, AnItemIsFoundByItsNameAndReturnLaunchesIt) {
    ASSERT_TRUE(dockComesToRest({"The Bracken", "The Tansy"}));
    EXPECT_TRUE(dockIsOnScreen());
    EXPECT_FALSE(statusLayerIsOnScreen());
    startProgram();
    if (HasFatalFailure()) return;
    for (const char* name : {"Tansy", "Bracken"}) {
        EXPECT_FALSE(std::filesystem::exists(launched(name)));
        choose(std::string("the ") + static_cast<char>(std::tolower(*name)) + (name + 1));
        if (HasFatalFailure()) return;
        EXPECT_TRUE(eventually(10s, [&] { return std::filesystem::exists(launched(name)); })) << name;
    }
}

TEST_F(PlankTest, WhileItHidesNothingOfItIsACandidate) {
    keyboard_.movePointer({300, 300});
    ASSERT_TRUE(dockComesToRest({"The Bracken", "The Tansy"}));
    {
        X11Victim above({700, 500, 500, 580, false});
        ASSERT_TRUE(above.show());
        EXPECT_TRUE(eventually(10s, [this] { return !dockIsOnScreen(); }));
        EXPECT_THAT(dockElements(), IsEmpty());
    }
    EXPECT_TRUE(eventually(10s, [this] { return dockIsOnScreen(); }));
    EXPECT_TRUE(dockComesToRest({"The Bracken", "The Tansy"}));
}

TEST_F(PlankTest, WhileItIsFrozenTheSearchEndsWithoutIt) {
    ASSERT_TRUE(dockComesToRest({"The Bracken", "The Tansy"}));
    dock_->send(SIGSTOP);
    EXPECT_THAT(dockElements(), IsEmpty());
    dock_->send(SIGCONT);
    EXPECT_TRUE(dockComesToRest({"The Bracken", "The Tansy"}));
}

}  // namespace
}  // namespace tarvix
