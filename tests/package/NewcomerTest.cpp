// Somebody's first minutes with Tarvix, by the keyboard alone.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/package/InstalledProgram.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr int kMostTabs = 20;  // more than there are controls in the pane

// The switch that programs look at to know whether somebody wants to read their controls.
bool setAccessibility(bool on) {
    return outputOf({"dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus",
                     "org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status", "string:IsEnabled",
                     std::string("variant:boolean:") + (on ? "true" : "false")})
        .has_value();
}

bool isAccessibilityOn() {
    const auto told = outputOf({"dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus",
                                "org.freedesktop.DBus.Properties.Get", "string:org.a11y.Status", "string:IsEnabled"});
    return told && told->find("boolean true") != std::string::npos;
}

// What of the program's windows has the keyboard, as a screen reader sees it: a line for each, since a row of tabs
// never says of its tab that it hasn't.
std::string focusedObjects() {
    std::istringstream lines(
        outputOf({std::string(TARVIX_FIXTURES) + "/screen-reader.py", "see", "tarvix"}).value_or(""));
    std::string found;
    for (std::string line; std::getline(lines, line);)
        if (line.find("focused") != std::string::npos) found += line + "\n";
    return found;
}

std::string settings() {
    std::ifstream file(std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / "tarvix/tarvix.json");
    return {std::istreambuf_iterator<char>(file), {}};
}

class NewcomerTest : public ::testing::Test {
protected:
    // With Tab, as far as it takes.
    bool goTo(std::string_view control) {
        for (int i = 0; i < kMostTabs; ++i) {
            const std::string before = focusedObjects();
            if (before.find(control) != std::string::npos) return true;
            program.keyboard().chord({keysym::tab});
            await(3s, [&] { return focusedObjects() != before; });
        }
        return false;
    }

    Fixture fixture{"gtk3.py"};
    InstalledProgram program;
};

TEST_F(NewcomerTest, FromTheMenuToTheFirstClick) {
    ASSERT_TRUE(fixture.isReady());
    ASSERT_TRUE(setAccessibility(false));

    // The splash panel, and its first button.
    ASSERT_TRUE(program.chooseFromMenu());
    ASSERT_TRUE(program.hasInFront("Tarvix"));
    ASSERT_FALSE(isAccessibilityOn()) << "nothing is switched on before it is wanted";
    const std::int64_t granting = monotonicMicroseconds();
    program.keyboard().chord({keysym::returnKey});
    ASSERT_TRUE(program.reached(milestone::ready, granting));
    EXPECT_TRUE(isAccessibilityOn());

    // The settings, and another shortcut.
    ASSERT_TRUE(program.hasInFront("Settings"));
    ASSERT_TRUE(goTo("Start Tarvixing with")) << focusedObjects();
    const std::vector<std::uint32_t> shortcut{keysym::control, keysym::super, 'j'};
    program.keyboard().chord(shortcut);
    ASSERT_TRUE(await(5s, [] { return settings().find("KeyboardShortcuts_toggleWith") != std::string::npos; }));
    program.keyboard().chord({keysym::control, 'w'});
    ASSERT_TRUE(await(10s, [&] {
        const auto front = program.windows().active();
        return front && front->number == fixture.window();
    })) << "the application has the keyboard again";

    // The first search.
    ASSERT_EQ(program.search(shortcut, "elder"), 1u);
    ASSERT_TRUE(program.press({keysym::returnKey}, milestone::inputHidden));
    await(5s, [&] { return !fixture.clicks().empty(); });
    EXPECT_THAT(fixture.clicks(), ElementsAre(FixtureClick{"Elder", 1, 1, ""}));
}

}  // namespace
}  // namespace tarvix
