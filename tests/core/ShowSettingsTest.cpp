// How the settings window comes to the front.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/ShowSettings.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ShowSettings : public testing::Test {
protected:
    MenuItem entry(const std::string& title) {
        return {.title = title, .action = [this, title] { desk.log.note(Topic::settings, "chose " + title); }};
    }
    std::vector<std::string> shown() {
        showSettings(desk.platform());
        return desk.journal({Topic::settings, Topic::application});
    }

    SimulatedDesktop desk;
};

TEST_F(ShowSettings, InvokesTheFirstEntryOfTheFirstMenuThatBeginsSo) {
    desk.application.menu = {
        {.title = "Tarvix", .submenu = {entry("About Settings"), entry("Settings..."), entry("Settings again")}},
        {.title = "File", .submenu = {entry("Settings of files")}}};
    EXPECT_THAT(shown(), ElementsAre("chose Settings...", "activated"));
}

TEST_F(ShowSettings, WithoutSuchAnEntryTheApplicationIsAsked) {
    EXPECT_THAT(shown(), ElementsAre("settings shown", "activated")) << "no menu at all";
    desk.clearJournal();
    desk.application.menu = {entry("Settings")};
    EXPECT_THAT(shown(), ElementsAre("settings shown", "activated")) << "no submenu";
    desk.clearJournal();
    desk.application.menu = {{.title = "Tarvix", .submenu = {entry("Preferences..."), entry("settings")}}};
    EXPECT_THAT(shown(), ElementsAre("settings shown", "activated")) << "no such title";
    desk.clearJournal();
    desk.application.menu = {{.title = "Tarvix", .submenu = {{.title = "Settings..."}}}};
    EXPECT_THAT(shown(), ElementsAre("settings shown", "activated")) << "an entry that is disabled";
}

// The window may be this program's own, and its main thread has to answer.
TEST_F(ShowSettings, TheWindowThatHasTheFocusIsWalkedInTheBackgroundOfALaterBlock) {
    desk.window("Mail").button("Send", {{10, 20}, {60, 20}});
    showSettings(desk.platform());
    EXPECT_EQ(desk.runLoop.waitingBlocks(), 1u);
    EXPECT_EQ(desk.runLoop.waitingBodies(), 0u);
    desk.runLoop.runMain();
    EXPECT_THAT(desk.accessibility.reads(), IsEmpty());
    ASSERT_TRUE(desk.runLoop.runBackgroundBody());
    EXPECT_FALSE(desk.accessibility.reads().empty());
}

TEST_F(ShowSettings, WhereTheFocusIsNobodysNothingIsWalked) {
    desk.window("Mail").button("Send", {{10, 20}, {60, 20}});
    desk.faults.fail("pid");
    showSettings(desk.platform());
    desk.settle();
    ASSERT_EQ(desk.accessibility.reads().size(), 1u);
    EXPECT_THAT(desk.accessibility.reads().front().names, ElementsAre("AXFocusedApplication"));
}

}  // namespace
}  // namespace tarvix
