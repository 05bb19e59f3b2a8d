// Controls of the settings that are moved, and what the user sees of it on the desktop.
#include <gmock/gmock.h>

#include "tests/scenarios/SearchScenario.h"

namespace tarvix {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Value = UserDefaults::Value;
using namespace std::chrono_literals;

// The settings window in front of a window of Mail's.
class MakeupPreviewTest : public SearchScenario {
protected:
    MakeupPreviewTest() {
        desk.window("Mail", {{100, 300}, {800, 600}}).button("Archive", {{120, 320}, {80, 30}});
        openSettings();
        desk.clearJournal();
    }

    void openSettings() {
        desk.window("Tarvix", {{400, 200}, {600, 500}}, desk.workspace.ownBundleIdentifier())
            .button("Quit", {{420, 220}, {80, 30}});
    }
    // As a control does it.
    void set(std::string_view key, Value value) {
        desk.userDefaults.set(key, std::move(value));
        core.controlEffects().changed(key);
    }
    void set(std::string_view key, const char* value) { set(key, Value(std::string(value))); }
    std::size_t markers() const { return desk.panels.canvas().markers().size(); }
    Texts dimming() const { return desk.journal({Topic::dimming}); }
};

TEST_F(MakeupPreviewTest, AColourMarksTheWindowBehindTheSettings) {
    set("targetsColor", "voiceOver");
    EXPECT_EQ(markers(), 0u) << "nothing is read yet";
    desk.settle();
    EXPECT_THAT(targets(), ElementsAre("Archive"));
    desk.turnClock(1279ms);
    EXPECT_THAT(targets(), ElementsAre("Archive"));
    desk.turnClock(1ms);
    EXPECT_THAT(targets(), IsEmpty());
    EXPECT_FALSE(desk.panels.canvas().isVisible());
    EXPECT_EQ(desk.runLoop.timers(), 0u);
}

TEST_F(MakeupPreviewTest, TheHueAndTheDimmingDoTheSame) {
    for (const auto& [key, value] :
         {std::pair{"targetsCustomColorHue", Value(0.3)}, std::pair{"hazeOverWindowOpacity", Value(0.7)},
          std::pair{"hazeOverWindowStyle", Value(std::string("fadeOutWholeScreen"))}}) {
        set(key, value);
        desk.settle();
        EXPECT_THAT(targets(), ElementsAre("Archive")) << key;
        desk.turnClock(5s);
        EXPECT_THAT(targets(), IsEmpty()) << key;
    }
}

TEST_F(MakeupPreviewTest, MovingAControlAgainExtendsThePreviewAndReadsNothingAnew) {
    set("targetsCustomColorHue", 0.3);
    desk.settle();
    for (int i = 0; i < 5; ++i) {
        desk.turnClock(1000ms);
        set("targetsCustomColorHue", 0.4 + i / 10.0);
        EXPECT_FALSE(desk.runLoop.runBackgroundBody());
        EXPECT_THAT(targets(), ElementsAre("Archive"));
    }
    desk.turnClock(1279ms);
    EXPECT_EQ(markers(), 1u);
    desk.turnClock(1ms);
    EXPECT_EQ(markers(), 0u);
    set("targetsCustomColorHue", 0.1);
    EXPECT_TRUE(desk.runLoop.runBackgroundBody()) << "it is over, and what is there may have changed";
    desk.settle();
}

TEST_F(MakeupPreviewTest, AReadingThatTakesLongShowsItsMarkersForAsLongAsAnother) {
    set("targetsColor", "accent");
    desk.turnClock(3s);
    EXPECT_EQ(markers(), 0u);
    desk.settle();
    EXPECT_EQ(markers(), 1u);
    desk.turnClock(1280ms);
    EXPECT_EQ(markers(), 0u);
}

TEST_F(MakeupPreviewTest, TheScreenIsDimmedAtOnceByTheNewOpacityAndBrightAgainAfterwards) {
    set("hazeOverWindowOpacity", 0.6);
    EXPECT_EQ(desk.panels.dimming().alpha(), 0.6);
    desk.turnClock(1000ms);
    set("hazeOverWindowOpacity", 0.3);
    EXPECT_EQ(desk.panels.dimming().alpha(), 0.3);
    desk.turnClock(1280ms);
    EXPECT_EQ(desk.panels.dimming().alpha(), 0);
}

TEST_F(MakeupPreviewTest, NothingToFadeOutIsNoDimming) {
    set("hazeOverWindowStyle", "fadeOutWholeScreen");
    EXPECT_EQ(desk.panels.dimming().alpha(), 0.2);
    set("hazeOverWindowStyle", "onlyTargets");
    EXPECT_EQ(desk.panels.dimming().alpha(), 0);
    desk.settle();
    EXPECT_EQ(markers(), 1u);
}

TEST_F(MakeupPreviewTest, WithNoOtherWindowItIsOurOwn) {
    SimulatedDesktop alone;
    AppCore program(alone.platform());
    program.start();
    alone.window("Tarvix", {{400, 200}, {600, 500}}, alone.workspace.ownBundleIdentifier())
        .button("Quit", {{420, 220}, {80, 30}});
    program.controlEffects().changed("targetsColor");
    alone.settle();
    ASSERT_EQ(program.tarvixEngine().targets().size(), 1u);
    EXPECT_EQ(program.tarvixEngine().targets().front().element.title, "Quit");
}

TEST_F(MakeupPreviewTest, WithoutTheSettingsInFrontItIsTheFrontmostWindow) {
    desk.window("Paint", {{0, 0}, {300, 200}}).button("Brush", {{10, 20}, {30, 30}});
    set("targetsColor", "accent");
    desk.settle();
    EXPECT_THAT(targets(), ElementsAre("Brush"));
}

TEST_F(MakeupPreviewTest, WithNobodyInFrontNothingShowsNotEvenWhereTheLastOneWas) {
    set("targetsColor", "accent");
    desk.settle();
    ASSERT_EQ(markers(), 1u);
    desk.turnClock(5s);
    desk.activate(std::nullopt);
    desk.clearJournal();
    set("targetsColor", "highlight");
    desk.settle();
    EXPECT_FALSE(desk.panels.canvas().isVisible());
    EXPECT_THAT(dimming(), IsEmpty());
    desk.turnClock(5s);
}

TEST_F(MakeupPreviewTest, NoPreviewTakesTheKeyboardOrClicks) {
    set("targetsColor", "accent");
    set("inputPosition", "aboveMouse");
    desk.settle();
    EXPECT_FALSE(desk.panels.input().isKey());
    press(Key::return_);
    press(Key::downArrow);
    EXPECT_THAT(desk.journal({Topic::mouse}), IsEmpty());
    EXPECT_EQ(desk.journal({Topic::key}).size(), 2u) << "both reached the settings";
    desk.turnClock(5s);
}

TEST_F(MakeupPreviewTest, ASearchThatIsUpIsLeftAlone) {
    desk.window("Paint", {{0, 0}, {300, 200}})
        .button("Brush", {{10, 20}, {30, 30}})
        .button("Bucket", {{50, 20}, {30, 30}});
    search("bru");
    desk.clearJournal();
    set("targetsColor", "accent");
    set("hazeOverWindowStyle", "onlyTargets");
    set("inputPosition", "aboveMouse");
    desk.settle();
    EXPECT_THAT(targets(), ElementsAre("Brush"));
    desk.turnClock(5s);
    EXPECT_TRUE(inputIsShown());
    EXPECT_THAT(targets(), ElementsAre("Brush"));
    EXPECT_THAT(seen(), IsEmpty());
    EXPECT_THAT(dimming(), IsEmpty());
}

TEST_F(MakeupPreviewTest, ASearchEndsThePreviewAndIsNotEndedByIt) {
    set("targetsColor", "accent");
    desk.settle();
    ASSERT_EQ(markers(), 1u);
    pressShortcut();
    EXPECT_EQ(markers(), 0u) << "before the search has read anything";
    EXPECT_EQ(primary(), "none") << "a key must not click what a preview has marked";
    desk.settle();
    desk.type("quit");
    desk.turnClock(5s);
    EXPECT_TRUE(inputIsShown());
    EXPECT_THAT(targets(), ElementsAre("Quit"));
}

TEST_F(MakeupPreviewTest, WhatIsReadForAPreviewIsNotASearchsOwn) {
    set("targetsColor", "accent");
    pressShortcut();
    desk.settle();  // the preview's reading ends, then the search's
    desk.type("*");
    EXPECT_THAT(targets(), ElementsAre("Quit"));
    press(Key::escape);
    desk.turnClock(5s);
    EXPECT_THAT(targets(), IsEmpty());
}

TEST_F(MakeupPreviewTest, APositionShowsTheInputThereForASecondPastTheLastChange) {
    set("inputPosition", "aboveWindow");
    EXPECT_TRUE(inputIsShown());
    EXPECT_EQ(desk.panels.input().frame().origin, (PanelPoint{400, 800})) << "the settings are in front";
    desk.turnClock(1000ms);
    desk.movePointer({50, 950});
    set("inputPosition", "aboveMouse");
    EXPECT_EQ(desk.panels.input().frame().origin, (PanelPoint{50, 50}));
    desk.turnClock(1279ms);
    EXPECT_TRUE(inputIsShown());
    desk.turnClock(1ms);
    EXPECT_FALSE(inputIsShown());
    EXPECT_EQ(desk.panels.input().text(), "");
    EXPECT_EQ(desk.runLoop.timers(), 0u);
}

TEST_F(MakeupPreviewTest, ALookOfTheInputDuringAPreviewOfTheMarkersTakesTheirPlace) {
    set("targetsColor", "accent");
    desk.settle();
    set("inputCornerRadius", 3.0);
    EXPECT_TRUE(inputIsShown());
    EXPECT_EQ(markers(), 0u);
    desk.turnClock(5s);
    EXPECT_FALSE(inputIsShown());
    EXPECT_EQ(desk.panels.dimming().alpha(), 0);
    set("targetsColor", "highlight");
    desk.settle();
    EXPECT_EQ(markers(), 1u);
}

TEST_F(MakeupPreviewTest, AControlOfAnythingElseShowsNothing) {
    for (const char* key : {"searchIncludesDock", "dontFlushTheInput", "fuzzyMatchingFlavor", "hideMenuBarIcon"})
        core.controlEffects().changed(key);
    EXPECT_FALSE(desk.runLoop.runBackgroundBody());
    EXPECT_EQ(desk.runLoop.timers(), 0u);
    EXPECT_THAT(desk.journal(), IsEmpty());
}

TEST_F(MakeupPreviewTest, TheStatusItemIsToldOfBothOfItsSettings) {
    int told = 0;
    const Subscription statusItem = core.controlEffects().onStatusItemChanged([&] { ++told; });
    for (const char* key : {"hideMenuBarIcon", "allowTemporaryHidingOfMenuBarIcon", "searchIncludesDock"})
        core.controlEffects().changed(key);
    EXPECT_EQ(told, 2);
}

TEST_F(MakeupPreviewTest, ANewFlavorIsWhatTheNextSearchUses) {
    desk.window("Chat", {{0, 0}, {300, 200}}).button("hello friend", {{10, 20}, {30, 30}});
    search("hf");
    EXPECT_THAT(targets(), IsEmpty());
    press(Key::escape);
    set("fuzzyMatchingFlavor", "tarvixExtended");
    search("hf");
    EXPECT_THAT(targets(), ElementsAre("hello friend"));
}

}  // namespace
}  // namespace tarvix
