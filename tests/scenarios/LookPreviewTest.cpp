// Changes of The Input's look in the settings, and what the user sees of them.
#include <gmock/gmock.h>

#include "tests/scenarios/SearchScenario.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Value = UserDefaults::Value;
using namespace std::chrono_literals;

class LookPreviewTest : public SearchScenario {
protected:
    LookPreviewTest() {
        desk.window("Mail", {{100, 300}, {800, 600}}).button("Archive", {{120, 320}, {80, 30}});
        desk.clearJournal();
    }

    Texts previews() const { return desk.journal({Topic::theInput}); }
    std::string shownText() const { return desk.panels.input().text(); }
    const InputLook& look() const { return desk.panels.input().look(); }
};

TEST_F(LookPreviewTest, StartingShowsNothingAndWritesNothing) {
    SimulatedDesktop other;
    other.userDefaults.set("inputPreset", "alfred");
    AppCore program(other.platform());
    program.start();
    program.start();
    other.turnClock(5s);
    EXPECT_THAT(other.journal({Topic::theInput}), IsEmpty());
    EXPECT_EQ(other.userDefaults.get("inputTextSize"), std::nullopt);
}

TEST_F(LookPreviewTest, APresetInTheFileGivesTheLookAndShowsItAtItsPlace) {
    desk.userDefaults.setFromOutside("inputPreset", Value(std::string("alfred")));
    EXPECT_EQ(look(), (InputLook{48, 0.97, 15, 10}));
    EXPECT_FALSE(inputIsShown());
    desk.turnClock(100ms);
    EXPECT_TRUE(inputIsShown());
    EXPECT_EQ(shownText(), "HODL, world!");
    EXPECT_EQ(desk.panels.input().frame().origin, (PanelPoint{100, 700}));
    desk.turnClock(1280ms);
    EXPECT_FALSE(inputIsShown());
    EXPECT_EQ(shownText(), "");
}

TEST_F(LookPreviewTest, AValueInTheFileShowsItselfWhereTheInputStandsAndIsCustom) {
    desk.userDefaults.setFromOutside("inputTextSize", Value(20.0));
    EXPECT_EQ(look().textSize, 20);
    EXPECT_EQ(shownText(), "hello, world!");
    EXPECT_EQ(desk.userDefaults.get("inputPreset"), Value(std::string("custom")));
    desk.turnClock(280ms);
    EXPECT_FALSE(inputIsShown());
    desk.userDefaults.setFromOutside("inputCornerRadius", Value(1.0));
    EXPECT_TRUE(inputIsShown());
    EXPECT_EQ(shownText(), "");
    desk.turnClock(280ms);
    EXPECT_THAT(previews(), ElementsAre("The Input shown", "The Input hidden", "The Input shown", "The Input hidden"));
}

TEST_F(LookPreviewTest, ASearchThatIsUpTakesOnTheLookAndGoesOn) {
    search("arch");
    desk.clearJournal();
    desk.userDefaults.setFromOutside("inputPreset", Value(std::string("alfred")));
    desk.turnClock(5s);
    desk.userDefaults.setFromOutside("inputTextSize", Value(20.0));
    desk.turnClock(5s);
    EXPECT_EQ(look().textSize, 20);
    EXPECT_EQ(desk.userDefaults.get("inputPreset"), Value(std::string("custom")));
    EXPECT_THAT(previews(), IsEmpty());
    EXPECT_EQ(shownText(), "arch");
    EXPECT_THAT(targets(), ElementsAre("Archive"));
}

TEST_F(LookPreviewTest, ASearchThatFollowsAPreviewIsNotHiddenWithIt) {
    desk.userDefaults.setFromOutside("inputPreset", Value(std::string("alfred")));
    desk.turnClock(500ms);
    pressShortcut();  // ends the preview, as it ends a search
    EXPECT_FALSE(inputIsShown());
    search("arch");
    desk.turnClock(5s);
    EXPECT_TRUE(inputIsShown());
    EXPECT_THAT(targets(), ElementsAre("Archive"));
}

TEST_F(LookPreviewTest, APresetThatBecomesDueDuringASearchIsNotShown) {
    desk.userDefaults.setFromOutside("inputPreset", Value(std::string("alfred")));
    search("arch");
    desk.turnClock(5s);
    EXPECT_TRUE(inputIsShown());
    EXPECT_EQ(shownText(), "arch");
}

TEST_F(LookPreviewTest, KeysGoWhereTheyWentBeforeThePreview) {
    desk.userDefaults.set("dontFlushTheInput", Value(true));
    desk.userDefaults.setFromOutside("inputPreset", Value(std::string("alfred")));
    desk.turnClock(500ms);
    desk.clearJournal();
    press(Key::escape);
    desk.type("a");
    press(Key::return_);
    EXPECT_TRUE(inputIsShown());
    EXPECT_EQ(shownText(), "HODL, world!");
    EXPECT_THAT(desk.journal({Topic::key, Topic::mouse}),
                ElementsAre("key 53 reached the application", "key 0 reached the application",
                            "key 36 reached the application"))
        << "and the key that selects a kept text is none of them";
}

TEST_F(LookPreviewTest, TheKeptTextIsThatOfTheLastSearchAndNotOfAPreview) {
    desk.userDefaults.set("dontFlushTheInput", Value(true));
    search("arch");
    press(Key::escape);
    desk.userDefaults.setFromOutside("inputPreset", Value(std::string("alfred")));
    desk.turnClock(100ms);
    EXPECT_EQ(shownText(), "HODL, world!");
    desk.userDefaults.setFromOutside("inputTextSize", Value(20.0));
    desk.turnClock(5s);
    EXPECT_FALSE(inputIsShown());
    EXPECT_EQ(shownText(), "arch");
    open();
    EXPECT_THAT(targets(), ElementsAre("Archive"));
}

TEST_F(LookPreviewTest, WithoutAnApplicationNoPreviewShowsAndNoneOfItsTextStays) {
    desk.activate(std::nullopt);
    desk.userDefaults.setFromOutside("inputPreset", Value(std::string("alfred")));
    desk.turnClock(5s);
    EXPECT_THAT(previews(), IsEmpty());
    EXPECT_EQ(shownText(), "");
    EXPECT_EQ(look().textSize, 48);
}

TEST_F(LookPreviewTest, APreviewForgetsThePrimaryTargetOfTheLastSearch) {
    search("arch");
    press(Key::escape);
    ASSERT_EQ(primary(), "Archive");
    desk.userDefaults.setFromOutside("inputPreset", Value(std::string("alfred")));
    desk.turnClock(100ms);
    EXPECT_EQ(primary(), "none");
}

TEST_F(LookPreviewTest, TheShortcutsOwnKeyIsNothingToLookAt) {
    core.keyboardShortcuts().setShortcut(std::nullopt, toggleWith);
    desk.turnClock(5s);
    EXPECT_THAT(previews(), IsEmpty());
}

}  // namespace
}  // namespace tarvix
