// The menu bars of real applications: shown, found by a menu's name with the running program, clicked, and open then.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "ax/AXEngine2.h"
#include "tests/desktop/RealServices.h"
#include "tests/desktop/X11Victim.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Keyboard.h"
#include "tests/desktop/play/Program.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAreArray;

// An application with a menu bar.
struct Menus {
    const char* name;
    std::function<std::vector<std::string>(const ScratchFolder&)> command;
    const char* titleEnd;  // how the title of its window ends
    std::vector<std::string> items;
    const char* query;  // for one of them
    const char* item;
    bool isFixture = true;
    friend void PrintTo(const Menus& menus, std::ostream* out) { *out << menus.name; }
};

std::function<std::vector<std::string>(const ScratchFolder&)> fixture(std::string script,
                                                                      std::vector<std::string> more = {}) {
    return [=](const ScratchFolder& folder) {
        std::vector<std::string> command{TARVIX_FIXTURES "/" + script, folder.file("report"), folder.file("log")};
        command.insert(command.end(), more.begin(), more.end());
        return command;
    };
}

std::vector<std::string> writer(const ScratchFolder& folder) {
    return {"soffice",     "-env:UserInstallation=file://" + folder.file("profile"),
            "--norestore", "--nologo",
            "--writer",    "--nofirststartwizard"};
}

const Menus kWindows[] = {
    {"Gtk3", fixture("gtk3-menus.py"), "Heath", {"Acorn"}, "acorn", "Acorn"},
    {"Gtk4", fixture("gtk4-menus.py"), "Heath", {"Acorn"}, "acorn", "Acorn"},
    {"Qt6", fixture("qt6-menus.py"), "Heath", {"Acorn"}, "acorn", "Acorn"},
    {"Firefox",
     fixture("web.py", {"firefox", "menu-bar"}),
     "Mozilla Firefox",
     {"File", "Edit", "View", "History", "Bookmarks", "Tools", "Help"},
     "tools",
     "Tools"},
    {"Writer",
     writer,
     "LibreOffice Writer",
     {"File", "Edit", "View", "Insert", "Format", "Styles", "Table", "Form", "Tools", "Window", "Help"},
     "styles",
     "Styles",
     false},
};

class MenuBarTest : public ::testing::TestWithParam<Menus> {
protected:
    void SetUp() override {
        // Application menus are searched where the desktop has a panel.
        panel_.set32("_NET_WM_WINDOW_TYPE", "ATOM", {panel_.connection().atom("_NET_WM_WINDOW_TYPE_DOCK")});
        ASSERT_TRUE(panel_.show());
        application_.emplace(GetParam().command(folder_));
        ASSERT_TRUE(await(60s, [this] {
            const auto active = services_.windows->active();
            return active && active->title.ends_with(GetParam().titleEnd);
        })) << "the window isn't the active one";
        // A fixture tells when its layout has come to rest; the one in a browser moves the pointer until then.
        if (GetParam().isFixture) {
            ASSERT_TRUE(await(60s, [this] { return std::filesystem::exists(folder_.file("report")); }));
        }
        // Its tree, and where it stands in the end, may come later than the window.
        std::vector<AccessibilityElement> last;
        int same = 0;
        ASSERT_TRUE(await(30s,
                          [&] {
                              std::vector<AccessibilityElement> now = items();
                              same = titles(now) == GetParam().items && now == last ? same + 1 : 0;
                              last = std::move(now);
                              if (same < kSteady) std::this_thread::sleep_for(50ms);
                              return same >= kSteady;
                          }))
            << "the menu bar holds " << ::testing::PrintToString(titles(last));
    }

    std::vector<AccessibilityElement> items() const {
        const OrderedSet<AccessibilityElement> found = engine_.appMenuElements();
        return {found.begin(), found.end()};
    }
    static std::vector<std::string> titles(const std::vector<AccessibilityElement>& elements) {
        std::vector<std::string> titles;
        for (const AccessibilityElement& each : elements) titles.push_back(each.title.value_or("(none)"));
        return titles;
    }

    // Whether a menu has opened at an item of the bar, as the X server sees it.
    bool isOpenAt(AxRect item) const {
        const auto active = services_.windows->active();
        for (const X11Window& each : services_.windows->onScreen()) {
            const bool isMenu = active && each.isOverrideRedirect && each.pid == active->pid;
            // Some draw a shadow or an arrow around it.
            const AxRect around{{each.client.origin.x - 8, each.client.origin.y - 8},
                                {each.client.size.width + 16, each.client.size.height + 16}};
            if (isMenu && each.client.height() > item.height() && intersects(around, item)) return true;
        }
        return false;
    }

    static constexpr int kSteady = 3;
    ScratchFolder folder_;
    RealServices services_;
    const AXEngine2 engine_{services_.platform()};
    Keyboard keyboard_;
    X11Victim panel_{{0, 1050, 1920, 30}};
    std::optional<Process> application_;
};

TEST_P(MenuBarTest, AMenuIsFoundByItsNameAndReturnOpensIt) {
    const std::vector<AccessibilityElement> bar = items();
    const auto item =
        std::ranges::find_if(bar, [](const AccessibilityElement& each) { return each.title == GetParam().item; });
    ASSERT_NE(item, bar.end());
    ASSERT_FALSE(isOpenAt(item->frame()));

    Program program(TARVIX_PROGRAM);
    ASSERT_TRUE(program.isReady());
    // A browser makes its tree for the first who asks, and may take a search for it.
    Program::Step typed;
    for (int tries = 0; tries < 3 && !typed; ++tries) {
        if (tries > 0) {
            ASSERT_TRUE(program.press(keyboard_, keysym::escape, milestone::inputHidden));
        }
        const Program::Step opened = program.pressHotKey(keyboard_);
        ASSERT_TRUE(opened);
        ASSERT_TRUE(program.reached(milestone::candidatesRead, opened.pressed));
        typed = program.type(keyboard_, GetParam().query);
    }
    ASSERT_TRUE(typed);
    ASSERT_GE(typed.answered->count, 1u);
    ASSERT_TRUE(program.press(keyboard_, keysym::returnKey, milestone::inputHidden));
    EXPECT_TRUE(await(10s, [&] { return isOpenAt(item->frame()); }));
    keyboard_.chord({keysym::escape});  // an application with an open menu may not end when it is asked to
}

std::string nameOf(const ::testing::TestParamInfo<Menus>& row) { return row.param.name; }

INSTANTIATE_TEST_SUITE_P(Windows, MenuBarTest, ::testing::ValuesIn(kWindows), nameOf);

}  // namespace
}  // namespace tarvix
