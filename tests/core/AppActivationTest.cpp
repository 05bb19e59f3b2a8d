// Which switch an application gets when it becomes active.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "core/AppActivation.h"
#include "core/AppCore.h"
#include "core/AppDelegate.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class AppActivation : public testing::Test {
protected:
    AppActivation() {
        desk.accessibility.onSetAttribute = [this](const UIElement& element, std::string_view name, const AxValue&) {
            writes.emplace_back(desk.accessibility.pid(element).value_or(0), name);
        };
        testing::internal::CaptureStdout();  // of no interest here, and out of the way
    }
    ~AppActivation() override { testing::internal::GetCapturedStdout(); }

    using Write = std::pair<std::int32_t, std::string>;
    SimulatedDesktop desk;
    std::vector<Write> writes;
};

class AppActivationInTheProgram : public AppActivation {
protected:
    std::size_t switches() const { return desk.runLoop.timers() - timersBefore; }

    AppCore core{desk.platform()};
    AppDelegate delegate{desk.platform(), core};
    std::size_t timersBefore = 0;

    void SetUp() override {
        delegate.applicationDidFinishLaunching();
        timersBefore = desk.runLoop.timers();
    }
};

TEST_F(AppActivationInTheProgram, ABrowserGetsTheSwitchOfTheEnhancedInterface) {
    const std::int32_t browser = desk.launch("Browser", "org.mozilla.firefox");
    EXPECT_THAT(writes, ElementsAre(Write(browser, "AXEnhancedUserInterface")));
    EXPECT_EQ(switches(), 1u);
    desk.turnClock(280ms);
    EXPECT_THAT(writes, SizeIs(2));
}

TEST_F(AppActivationInTheProgram, AnApplicationOfWebTechnologyGetsTheManualSwitch) {
    const std::int32_t chat = desk.launch("Chat", "com.tinyspeck.slackmacgap");
    EXPECT_THAT(writes, ElementsAre(Write(chat, "AXManualAccessibility")));
    desk.turnClock(439ms);
    EXPECT_THAT(writes, SizeIs(1));
    desk.turnClock(1ms);
    EXPECT_THAT(writes, SizeIs(2));
}

TEST_F(AppActivationInTheProgram, OneApplicationGetsBoth) {
    const std::int32_t player = desk.launch("Player", "com.spotify.client");
    EXPECT_THAT(writes, ElementsAre(Write(player, "AXEnhancedUserInterface"), Write(player, "AXManualAccessibility")));
    desk.turnClock(879ms);
    EXPECT_THAT(writes, SizeIs(2));
    desk.turnClock(1ms);
    EXPECT_THAT(writes, SizeIs(4));
}

TEST_F(AppActivationInTheProgram, AnApplicationThatIsNotInTheCatalogueGetsNone) {
    desk.launch("Editor");
    EXPECT_THAT(writes, IsEmpty());
    EXPECT_EQ(switches(), 0u);
}

TEST_F(AppActivationInTheProgram, AnApplicationWithoutBundleIdentifierGetsNone) {
    desk.workspace.launch({7777, std::nullopt, "Unknown"});
    desk.activate(7777);
    EXPECT_THAT(writes, IsEmpty());
    EXPECT_EQ(switches(), 0u);
}

TEST_F(AppActivationInTheProgram, AnApplicationThatIsActivatedTwiceWithinASecondGetsTwoSwitches) {
    const std::int32_t browser = desk.launch("Browser", "com.google.Chrome");
    desk.turnClock(500ms);
    desk.activate(browser);
    EXPECT_EQ(switches(), 2u);
    desk.turnClock(60s);
    EXPECT_EQ(switches(), 0u);
    EXPECT_THAT(writes, SizeIs(24)) << "each has its own count";
}

TEST_F(AppActivationInTheProgram, ASecondStartDoesNotDoubleTheSwitches) {
    core.start();
    desk.launch("Browser", "com.google.Chrome");
    EXPECT_THAT(writes, SizeIs(1));
}

TEST_F(AppActivationInTheProgram, AnActivationNeitherEndsASearchNorReadsAnything) {
    desk.window("Mail").button("Send", {{10, 10}, {60, 20}});
    desk.press(qwertyKeyCode(Key::space), eventFlag::shift | eventFlag::command);
    desk.settle();
    const std::size_t reads = desk.accessibility.reads().size();
    desk.launch("Editor");
    EXPECT_TRUE(core.theInput().isVisible());
    EXPECT_EQ(desk.accessibility.reads().size(), reads);
}

TEST_F(AppActivation, BeforeTheProgramHasStartedThereAreNoSwitches) {
    AppCore core(desk.platform());
    AppDelegate delegate(desk.platform(), core);
    desk.accessibility.trusted = false;
    delegate.applicationDidFinishLaunching();
    desk.launch("Browser", "org.mozilla.firefox");
    EXPECT_THAT(writes, IsEmpty());
    EXPECT_EQ(desk.runLoop.timers(), 0u);
}

TEST_F(AppActivation, WhenTheProgramHasGoneThereAreNone) {
    {
        AppCore core(desk.platform());
        AppDelegate delegate(desk.platform(), core);
        delegate.applicationDidFinishLaunching();
    }
    desk.launch("Browser", "org.mozilla.firefox");
    EXPECT_THAT(writes, IsEmpty());
}

TEST_F(AppActivation, AnApplicationInTheCatalogueThatNeedsNoSwitchGetsNone) {
    const AppCatalog catalog{{{"Editor", "org.example.Editor", std::nullopt}}};
    anAppHasBeenActivated({4711, "org.example.Editor", "Editor"}, AXEngine2(desk.platform()), catalog);
    EXPECT_THAT(writes, IsEmpty());
    EXPECT_EQ(desk.runLoop.timers(), 0u);
}

}  // namespace
}  // namespace tarvix
