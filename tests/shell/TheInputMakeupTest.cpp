// The presets of The Input's look, on a clock turned by hand.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "shell/TheInputMakeup.h"
#include "simulated/SimulatedRunLoop.h"
#include "simulated/SimulatedUserDefaults.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Value = UserDefaults::Value;
using namespace std::chrono_literals;

Value text(const char* value) { return std::string(value); }

// Notes the writes by whoever makes them.
class Store : public SimulatedUserDefaults {
public:
    using SimulatedUserDefaults::set;
    void set(std::string_view key, Value value) override {
        writes.emplace_back(key);
        if (const auto* number = std::get_if<double>(&value)) numbers.push_back(*number);
        SimulatedUserDefaults::set(key, std::move(value));
    }
    std::vector<std::string> writes;
    std::vector<double> numbers;
};

class TheInputMakeupTest : public testing::Test, public InputPreview {
public:
    void showPlaced(const std::string& shown) override { note("placed '" + shown + "'"); }
    void showInPlace(const std::string& shown) override { note("in place '" + shown + "'"); }
    void hide() override { note("hidden"); }

protected:
    TheInputMakeupTest() { makeup.emplace(store, runLoop, *this); }

    void note(const std::string& what) { log.push_back(std::to_string(runLoop.now().count()) + " " + what); }
    void choose(const char* preset) { store.set("inputPreset", preset); }
    // As the slider does it: the write is its own, and not the logic's.
    void move(std::string_view key, double value) {
        store.set(key, Value(value));
        std::erase(store.writes, std::string(key));
    }
    void settle() { runLoop.turnClock(5s); }
    void forget() {
        log.clear();
        store.writes.clear();
        store.numbers.clear();
    }
    std::optional<Value> preset() const { return store.get("inputPreset"); }

    Store store;
    SimulatedRunLoop runLoop;
    std::vector<std::string> log;
    std::optional<TheInputMakeup> makeup;
};

TEST_F(TheInputMakeupTest, APresetWritesItsFourValuesInTheirOrder) {
    struct Row {
        const char* preset;
        std::vector<double> values;
    };
    for (const Row& row : {Row{"spotlight", {32.0, 0.9, 9.4, 0.43}}, Row{"alfred", {48.0, 0.97, 15.0, 10.0}},
                           Row{"invisibleMan", {24.0, 0.0, 0.0, 0.0}}, Row{"tarvix", {16.0, 0.9, 6.0, 2.0}}}) {
        forget();
        choose(row.preset);
        EXPECT_THAT(store.writes, ElementsAre("inputPreset", "inputTextSize", "inputBackgroundOpacity",
                                              "inputCornerRadius", "inputBorderThickness"));
        EXPECT_EQ(store.numbers, row.values);
        settle();
        EXPECT_EQ(preset(), text(row.preset)) << "the picker stays on it";
        EXPECT_EQ(store.numbers, row.values) << "and nothing follows";
    }
}

TEST_F(TheInputMakeupTest, APresetShowsItselfATenthOfASecondLaterForAboutASecond) {
    choose("spotlight");
    EXPECT_THAT(log, IsEmpty());
    runLoop.turnClock(99ms);
    EXPECT_THAT(log, IsEmpty());
    runLoop.turnClock(1ms);
    EXPECT_THAT(log, ElementsAre("100 placed 'HODL, world!'"));
    runLoop.turnClock(1279ms);
    EXPECT_EQ(log.size(), 1u);
    runLoop.turnClock(1ms);
    EXPECT_THAT(log, ElementsAre("100 placed 'HODL, world!'", "1380 hidden"));
    settle();
    EXPECT_EQ(log.size(), 2u);
    EXPECT_EQ(runLoop.timers(), 0u);
}

TEST_F(TheInputMakeupTest, CustomChosenByHandShowsThePresentLookAndWritesNothing) {
    choose("custom");
    EXPECT_THAT(store.writes, ElementsAre("inputPreset"));
    settle();
    EXPECT_THAT(log, ElementsAre("100 placed 'HODL, world!'", "1380 hidden"));
    EXPECT_EQ(store.get("inputTextSize"), std::nullopt);
}

TEST_F(TheInputMakeupTest, APresetChosenBeforeTheLastOneShowsIsKeptOutByTheGuard) {
    choose("spotlight");
    runLoop.turnClock(50ms);
    choose("alfred");
    EXPECT_EQ(store.get("inputTextSize"), Value(32.0));
    settle();
    EXPECT_THAT(log, ElementsAre("100 placed 'HODL, world!'", "1380 hidden"));
}

TEST_F(TheInputMakeupTest, APresetChosenWhileAnotherShowsIsShownToo) {
    choose("spotlight");
    runLoop.turnClock(600ms);
    choose("alfred");
    settle();
    EXPECT_THAT(log,
                ElementsAre("100 placed 'HODL, world!'", "700 placed 'HODL, world!'", "1380 hidden", "1980 hidden"));
    EXPECT_EQ(store.get("inputTextSize"), Value(48.0));
}

TEST_F(TheInputMakeupTest, APresetChosenRightAfterASliderMovedIsKeptOutByTheGuard) {
    move("inputTextSize", 20);
    runLoop.turnClock(279ms);
    choose("alfred");
    EXPECT_EQ(store.get("inputTextSize"), Value(20.0));
    settle();
    EXPECT_THAT(log, ElementsAre("0 in place 'hello, world!'", "280 hidden"));
    choose("spotlight");
    EXPECT_EQ(store.get("inputTextSize"), Value(32.0));
}

TEST_F(TheInputMakeupTest, TheTextSizeShowsATextAndTheOtherSlidersNone) {
    move("inputTextSize", 20);
    settle();
    move("inputBackgroundOpacity", 0.5);
    settle();
    move("inputCornerRadius", 1);
    settle();
    move("inputBorderThickness", 1);
    settle();
    EXPECT_THAT(log, ElementsAre("0 in place 'hello, world!'", "280 hidden", "5000 in place ''", "5280 hidden",
                                 "10000 in place ''", "10280 hidden", "15000 in place ''", "15280 hidden"));
}

TEST_F(TheInputMakeupTest, AContinuousDragDoesNotPutTheEndOff) {
    for (int i = 1; i <= 40; ++i) {
        move("inputCornerRadius", 6 + i / 10.0);
        runLoop.turnClock(10ms);
    }
    ASSERT_FALSE(log.empty());
    EXPECT_EQ(log[0], "0 in place ''");
    EXPECT_EQ(log[1], "280 hidden");
    settle();
    EXPECT_THAT(log, ElementsAre("0 in place ''", "280 hidden", "280 in place ''", "560 hidden"));
    EXPECT_EQ(preset(), text("custom"));
}

TEST_F(TheInputMakeupTest, ASliderThatMovesDuringAPresetsFirstMomentIsTakenForThePresetsOwn) {
    choose("spotlight");
    move("inputTextSize", 20);
    settle();
    EXPECT_EQ(preset(), text("spotlight"));
    EXPECT_THAT(log, ElementsAre("100 placed 'HODL, world!'", "1380 hidden"));
}

TEST_F(TheInputMakeupTest, AwayFromAPresetIsCustomAndTheOtherSlidersStay) {
    choose("spotlight");
    settle();
    forget();
    move("inputTextSize", 36);
    EXPECT_EQ(preset(), text("custom"));
    EXPECT_THAT(store.writes, ElementsAre("inputPreset"));
    EXPECT_EQ(store.get("inputCornerRadius"), Value(9.4));
}

TEST_F(TheInputMakeupTest, FourValuesThatEqualARowChooseItWithoutAWriteToThem) {
    for (const char* key : {"inputBackgroundOpacity", "inputCornerRadius", "inputBorderThickness"}) {
        move(key, 0);
        settle();
    }
    EXPECT_EQ(preset(), text("custom"));
    forget();
    move("inputTextSize", 24);
    EXPECT_EQ(preset(), text("invisibleMan"));
    settle();
    EXPECT_THAT(store.writes, ElementsAre("inputPreset"));
    EXPECT_THAT(store.numbers, ElementsAre(24.0)) << "the slider's own";
}

TEST_F(TheInputMakeupTest, EqualityIsExact) {
    choose("spotlight");
    settle();
    move("inputCornerRadius", 9.4000000001);
    settle();
    EXPECT_EQ(preset(), text("custom"));
    move("inputCornerRadius", 9.4);
    EXPECT_EQ(preset(), text("spotlight"));
}

TEST_F(TheInputMakeupTest, BackAtTheDefaultsIsTarvix) {
    move("inputTextSize", 20);
    settle();
    move("inputTextSize", 16);
    EXPECT_EQ(preset(), text("tarvix"));
}

TEST_F(TheInputMakeupTest, TheGuardOfADerivationFallsAfterItsTime) {
    move("inputTextSize", 20);
    runLoop.turnClock(279ms);
    move("inputTextSize", 16);
    EXPECT_EQ(preset(), text("custom")) << "still guarded";
    runLoop.turnClock(1ms);
    move("inputCornerRadius", 7);
    move("inputCornerRadius", 6);
    settle();
    move("inputCornerRadius", 6.5);
    EXPECT_EQ(preset(), text("custom"));
    settle();
    move("inputCornerRadius", 6);
    EXPECT_EQ(preset(), text("tarvix"));
}

TEST_F(TheInputMakeupTest, WhatTheStoreHoldsAtTheStartIsNoChange) {
    makeup.reset();
    choose("alfred");
    store.set("inputTextSize", Value(20.0));
    forget();
    makeup.emplace(store, runLoop, *this);
    settle();
    EXPECT_THAT(log, IsEmpty());
    EXPECT_THAT(store.writes, IsEmpty());
    EXPECT_EQ(runLoop.timers(), 0u);
}

TEST_F(TheInputMakeupTest, WritesThatLeaveTheLookAsItIsAreNoChange) {
    store.set("inputPreset", "tarvix");
    store.set("inputTextSize", Value(16.0));
    store.set("inputCornerRadius", "round");
    store.set("searchIncludesDock", Value(true));
    store.set("KeyboardShortcuts_toggleWith", "{\"carbonKeyCode\":49}");
    store.remove("KeyboardShortcuts_toggleWith");
    settle();
    EXPECT_THAT(log, IsEmpty());
    EXPECT_THAT(store.writes, ElementsAre("inputPreset", "inputTextSize", "inputCornerRadius", "searchIncludesDock",
                                          "KeyboardShortcuts_toggleWith"));
}

TEST_F(TheInputMakeupTest, AnUnusablePresetCountsAsTheDefaultOne) {
    choose("spotlight");
    settle();
    forget();
    choose("spotlite");
    EXPECT_THAT(store.numbers, ElementsAre(16.0, 0.9, 6.0, 2.0));
    EXPECT_EQ(preset(), text("spotlite"));
}

TEST_F(TheInputMakeupTest, AnotherProgramsChoiceCountsAsTheUsers) {
    store.setFromOutside("inputPreset", text("invisibleMan"));
    EXPECT_THAT(store.numbers, ElementsAre(24.0, 0.0, 0.0, 0.0));
    settle();
    store.setFromOutside("inputBorderThickness", Value(1.0));
    EXPECT_EQ(preset(), text("custom"));
    EXPECT_THAT(log, ElementsAre("100 placed 'HODL, world!'", "1380 hidden", "5000 in place ''"));
}

// Several values in a file that is saved: they are there before the first of them is told.
class SavedFile : public SimulatedUserDefaults {
public:
    void save(const std::vector<std::pair<std::string_view, Value>>& values) {
        quiet_ = true;
        for (const auto& [key, value] : values) set(key, value);
        quiet_ = false;
        for (std::size_t i = 0; i < values.size(); ++i) told_({});
    }
    void removeAll() {
        quiet_ = true;
        for (const SettingRow& row : settingRows) remove(row.key);
        quiet_ = false;
        told_({});
    }
    Subscription onChange(std::function<void(std::string_view)> changed) override { return told_.add(changed); }

private:
    bool quiet_ = false;
    Listeners<std::string_view> told_;
    Subscription own_ = SimulatedUserDefaults::onChange([this](std::string_view key) {
        if (!quiet_) told_(key);
    });
};

class SavedLookTest : public TheInputMakeupTest {
protected:
    SavedFile file;
    TheInputMakeup saved{file, runLoop, *this};
};

TEST_F(SavedLookTest, APresetThatArrivesWithValuesPrevails) {
    file.save(
        {{"inputBackgroundOpacity", Value(0.5)}, {"inputPreset", text("alfred")}, {"inputTextSize", Value(20.0)}});
    settle();
    EXPECT_EQ(file.get("inputPreset"), text("alfred"));
    EXPECT_EQ(file.get("inputTextSize"), Value(48.0));
    EXPECT_EQ(file.get("inputBackgroundOpacity"), Value(0.97));
    EXPECT_THAT(log, ElementsAre("100 placed 'HODL, world!'", "1380 hidden"));
}

TEST_F(SavedLookTest, CustomThatArrivesWithValuesLeavesThem) {
    file.save({{"inputPreset", text("custom")}, {"inputTextSize", Value(20.0)}});
    settle();
    EXPECT_EQ(file.get("inputPreset"), text("custom"));
    EXPECT_EQ(file.get("inputTextSize"), Value(20.0));
    EXPECT_THAT(log, ElementsAre("100 placed 'HODL, world!'", "1380 hidden"));
}

TEST_F(SavedLookTest, ValuesThatArriveTogetherAreOneChangeAndTheTextSizeSpeaks) {
    file.save({{"inputBackgroundOpacity", Value(0.0)},
               {"inputBorderThickness", Value(0.0)},
               {"inputCornerRadius", Value(0.0)},
               {"inputTextSize", Value(24.0)}});
    settle();
    EXPECT_EQ(file.get("inputPreset"), text("invisibleMan"));
    EXPECT_THAT(log, ElementsAre("0 in place 'hello, world!'", "280 hidden"));
}

TEST_F(SavedLookTest, ALookThatIsSetBackLeavesTheStoreEmpty) {
    file.save({{"inputPreset", text("alfred")}});
    settle();
    log.clear();
    file.removeAll();
    settle();
    EXPECT_THAT(log, IsEmpty());
    for (const SettingRow& row : settingRows) EXPECT_EQ(file.get(row.key), std::nullopt) << row.key;
    file.save({{"inputPreset", text("alfred")}});
    EXPECT_EQ(file.get("inputTextSize"), Value(48.0));
}

}  // namespace
}  // namespace tarvix
