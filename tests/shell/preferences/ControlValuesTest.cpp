#include <gtest/gtest.h>

#include "shell/preferences/ControlValues.h"
#include "shell/preferences/SettingsView.h"
#include "simulated/SimulatedUserDefaults.h"

namespace tarvix {
namespace {

Slider slider(double least, double most, std::optional<double> step = {}) {
    return {.label = "Text size:", .setting = {"inputTextSize", 16.0}, .range = {least, most}, .step = step};
}

TEST(SliderPlaces, AreASteppedSlidersSteps) {
    const SliderPlaces places(slider(12, 48, 4));
    EXPECT_EQ(places.most(), 9);
    for (int place = 0; place <= 9; ++place) EXPECT_EQ(places.valueAt(place), 12 + 4 * place);
    EXPECT_EQ(places.placeOf(16), 1);
    EXPECT_EQ(places.placeOf(17.9), 1);
}

TEST(SliderPlaces, ReachEveryValueOfThePresetsExactly) {
    for (const double value : {0.0, 0.9, 0.97, 1.0}) {
        const SliderPlaces places(slider(0, 1));
        EXPECT_EQ(places.valueAt(places.placeOf(value)), value);
    }
    for (const double value : {0.0, 6.0, 9.4, 15.0}) {
        const SliderPlaces places(slider(0, 15));
        EXPECT_EQ(places.valueAt(places.placeOf(value)), value);
    }
    for (const double value : {0.0, 0.43, 2.0, 10.0}) {
        const SliderPlaces places(slider(0, 10));
        EXPECT_EQ(places.valueAt(places.placeOf(value)), value);
    }
}

TEST(SliderPlaces, ReachBothEndsOfARangeThatDoesNotBeginAtZero) {
    const SliderPlaces places(slider(0.1, 0.9));
    EXPECT_EQ(places.valueAt(0), 0.1);
    EXPECT_EQ(places.valueAt(places.most()), 0.9);
    EXPECT_EQ(places.valueAt(places.placeOf(0.2)), 0.2);
    EXPECT_GT(places.most(), 500) << "nobody sees the places apart";
}

TEST(SliderPlaces, OfAValueOutsideAreTheEnds) {
    const SliderPlaces places(slider(0, 1));
    EXPECT_EQ(places.placeOf(-3), 0);
    EXPECT_EQ(places.placeOf(1e300), places.most());
}

TEST(Chosen, IsTheStoredCaseAndTheDefaultForAnythingElse) {
    SimulatedUserDefaults store;
    const Picker position = picker<InputPosition>("Show:", {"inputPosition", InputPosition::aboveWindow});
    EXPECT_EQ(chosen(position, store), "aboveWindow");
    store.set("inputPosition", std::string("fixed"));
    EXPECT_EQ(chosen(position, store), "fixed");
    store.set("inputPosition", std::string("beside the point"));
    EXPECT_EQ(chosen(position, store), "aboveWindow");
    store.set("inputPosition", true);
    EXPECT_EQ(chosen(position, store), "aboveWindow");
}

TEST(KeysMeant, NameTheKeysOfThisDesktop) {
    EXPECT_EQ(keysMeant("Hide it"), "");
    EXPECT_EQ(keysMeant("while pressing ⌘."), "⌘ is the Super key");
    EXPECT_EQ(keysMeant("`⇧⌘C` copies"), "⇧ is the Shift key, ⌘ is the Super key");
}

TEST(Holds, IsNeverTrueForASettingWithoutAPicker) {
    SimulatedUserDefaults store;
    store.set("inputTextSize", std::string("custom"));
    EXPECT_FALSE(holds({"inputTextSize", "custom"}, settingsView(), store));
}

}  // namespace
}  // namespace tarvix
