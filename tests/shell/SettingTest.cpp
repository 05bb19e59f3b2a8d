// The typed views.
#include <gtest/gtest.h>

#include <string>

#include "shell/Setting.h"
#include "simulated/SimulatedUserDefaults.h"

namespace tarvix {
namespace {

using Value = UserDefaults::Value;

Value text(const char* value) { return std::string(value); }

class SettingTest : public testing::Test {
protected:
    SimulatedUserDefaults defaults;
    Setting<bool> dock{defaults, {"searchIncludesDock", false}};
    Setting<double> opacity{defaults, {"hazeOverWindowOpacity", 0.2}};
    Setting<HazeOverWindowStyle> style{
        defaults, {"hazeOverWindowStyle", HazeOverWindowStyle::fadeOutExceptDockMenuBarAndFrontmostApp}};
};

TEST_F(SettingTest, AFreshStoreHoldsNothingAndGivesEachViewItsDefault) {
    EXPECT_FALSE(dock.value());
    EXPECT_EQ(opacity.value(), 0.2);
    EXPECT_EQ(style.value(), HazeOverWindowStyle::fadeOutExceptDockMenuBarAndFrontmostApp);
    EXPECT_TRUE((Setting<bool>{defaults, {"searchIncludesAppMenus", true}}.value()));
    EXPECT_EQ((Setting<InputPosition>{defaults, {"inputPosition", InputPosition::aboveWindow}}.value()),
              InputPosition::aboveWindow);
    for (const SettingRow& row : settingRows) EXPECT_EQ(defaults.get(row.key), std::nullopt) << row.key;
}

TEST_F(SettingTest, ValuesAreStoredNatively) {
    dock.set(true);
    opacity.set(1);
    style.set(HazeOverWindowStyle::onlyTargets);
    EXPECT_EQ(defaults.get("searchIncludesDock"), Value(true));
    EXPECT_EQ(defaults.get("hazeOverWindowOpacity"), Value(1.0));
    EXPECT_EQ(defaults.get("hazeOverWindowStyle"), text("onlyTargets"));
}

TEST_F(SettingTest, AWriteOfTheDefaultIsStoredToo) {
    dock.set(false);
    EXPECT_EQ(defaults.get("searchIncludesDock"), Value(false));
}

TEST_F(SettingTest, AnUnknownTextReadsAsTheDefaultAndStaysUntilTheNextWrite) {
    defaults.set("hazeOverWindowStyle", "fadeOutTheNeighbours");
    EXPECT_EQ(style.value(), HazeOverWindowStyle::fadeOutExceptDockMenuBarAndFrontmostApp);
    EXPECT_EQ(defaults.get("hazeOverWindowStyle"), text("fadeOutTheNeighbours"));
    style.set(HazeOverWindowStyle::fadeOutWholeScreen);
    EXPECT_EQ(defaults.get("hazeOverWindowStyle"), text("fadeOutWholeScreen"));
}

TEST_F(SettingTest, AValueOfAnotherTypeReadsAsTheDefaultAndStays) {
    for (const Value& wrong : {Value(0.5), text("true"), text("")}) {
        defaults.set("searchIncludesDock", wrong);
        EXPECT_FALSE(dock.value());
        EXPECT_EQ(defaults.get("searchIncludesDock"), wrong);
    }
    for (const Value& wrong : {Value(true), text("0.5")}) {
        defaults.set("hazeOverWindowOpacity", wrong);
        EXPECT_EQ(opacity.value(), 0.2);
        defaults.set("hazeOverWindowStyle", Value(true));
        EXPECT_EQ(style.value(), HazeOverWindowStyle::fadeOutExceptDockMenuBarAndFrontmostApp);
    }
}

TEST_F(SettingTest, TwoViewsOfAKeySeeEachOthersWritesAndOthersAtOnce) {
    Setting<bool> other{defaults, {"searchIncludesDock", false}};
    other.set(true);
    EXPECT_TRUE(dock.value());
    dock.set(false);
    EXPECT_FALSE(other.value());
    defaults.setFromOutside("searchIncludesDock", Value(true));
    EXPECT_TRUE(dock.value());
    EXPECT_TRUE(other.value());
}

TEST_F(SettingTest, TheHueHasADefaultOfItsOwnAtTheSliderAndAtTheMarkerUntilItIsSet) {
    Setting<double> slider{defaults, {"targetsCustomColorHue", 0.28}};
    Setting<double> marker{defaults, {"targetsCustomColorHue", 0.5}};
    EXPECT_EQ(slider.value(), 0.28);
    EXPECT_EQ(marker.value(), 0.5);
    slider.set(0.7);
    EXPECT_EQ(marker.value(), 0.7);
}

TEST_F(SettingTest, ANumberThatNoSliderOffersIsTakenAsItStands) {
    defaults.set("hazeOverWindowOpacity", Value(0.95));
    EXPECT_EQ(opacity.value(), 0.95);
}

// What a view must not say; it wouldn't compile.
static_assert(isInSettingsTable("inputTextSize", 16.0));
static_assert(!isInSettingsTable("inputTextsize", 16.0));
static_assert(!isInSettingsTable("inputTextSize", 17.0));
static_assert(!isInSettingsTable("inputTextSize", true));
static_assert(!isInSettingsTable("inputWidth", 16.0));
static_assert(!isInSettingsTable("targetsColor", InputPreset::custom));
static_assert(isInSettingsTable("targetsCustomColorHue", 0.28) && isInSettingsTable("targetsCustomColorHue", 0.5));

}  // namespace
}  // namespace tarvix
