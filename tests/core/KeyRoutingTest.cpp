// Who gets which key while The Input is up.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "core/KeyRouting.h"
#include "simulated/SimulatedMilestones.h"
#include "simulated/SimulatedRunLoop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;

using Calls = std::vector<std::string>;

class RecordingEngine : public TarvixEngineProtocol {
public:
    explicit RecordingEngine(Calls& calls) : calls_(calls) {}

    OrderedSet<AccessibilityElement> filteredElements(std::string_view) override { return {}; }
    void removeTargets() override { calls_.push_back("removeTargets"); }
    void showTargets(const OrderedSet<AccessibilityElement>&) override { calls_.push_back("showTargets"); }
    void endSession() override { calls_.push_back("endSession"); }
    void nextTarget() override { calls_.push_back("nextTarget"); }
    void previousTarget() override { calls_.push_back("previousTarget"); }
    void firstTarget() override { calls_.push_back("firstTarget"); }
    void lastTarget() override { calls_.push_back("lastTarget"); }
    void halfwayDownTarget() override { calls_.push_back("halfwayDownTarget"); }
    void halfwayUpTarget() override { calls_.push_back("halfwayUpTarget"); }
    void clickPrimaryTarget(MouseButton button) override {
        calls_.push_back(button == MouseButton::left ? "clickPrimaryTarget" : "clickPrimaryTarget right");
    }
    void clickAtMouse(MouseButton button) override {
        calls_.push_back(button == MouseButton::left ? "clickAtMouse" : "clickAtMouse right");
    }

private:
    Calls& calls_;
};

class RecordingInput : public TheInputProtocol {
public:
    explicit RecordingInput(Calls& calls) : calls_(calls) {}

    void open() override { calls_.push_back("open"); }
    void close() override { calls_.push_back("close"); }
    bool isVisible() const override { return true; }
    const std::string& value() const override { return text; }
    void setShowPreloading(bool) override {}

    std::string text = "query";

private:
    Calls& calls_;
};

class KeyRoutingTest : public testing::Test {
protected:
    // What a key does, and "passes" when it is the text field's.
    Calls after(const KeyCombination& key) {
        calls_.clear();
        if (!handleKey(key, engine_, input, preloading_)) calls_.push_back("passes");
        return calls_;
    }

private:
    Calls calls_;
    SimulatedRunLoop runLoop_;
    SimulatedMilestones milestones_;
    Preloading preloading_{runLoop_, milestones_};
    RecordingEngine engine_{calls_};

protected:
    RecordingInput input{calls_};
};

struct Row {
    std::vector<KeyCombination> combinations;
    std::vector<std::string> effects;
};

TEST_F(KeyRoutingTest, EachRowOfTheTableDoesWhatItSays) {
    const std::vector<Row> rows = {
        {{{Key::downArrow}, {Key::tab}, {Key::n, {.control = true}}}, {"nextTarget"}},
        {{{Key::upArrow}, {Key::tab, {.shift = true}}, {Key::p, {.control = true}}}, {"previousTarget"}},
        {{{Key::downArrow, {.command = true}}, {Key::end}}, {"lastTarget"}},
        {{{Key::upArrow, {.command = true}}, {Key::home}}, {"firstTarget"}},
        {{{Key::downArrow, {.control = true}}, {Key::pageDown}}, {"halfwayDownTarget"}},
        {{{Key::upArrow, {.control = true}}, {Key::pageUp}}, {"halfwayUpTarget"}},
        {{{Key::return_},
          {Key::return_, {.option = true}},
          {Key::return_, {.shift = true}},
          {Key::return_, {.command = true}}},
         {"clickPrimaryTarget", "close"}},
    };
    for (std::size_t row = 0; row < rows.size(); ++row)
        for (const KeyCombination& combination : rows[row].combinations)
            EXPECT_EQ(after(combination), rows[row].effects) << "row " << row + 1;
}

TEST_F(KeyRoutingTest, APressFromTheKeyboardMatchesATemplateThatIsBoth) {
    EXPECT_THAT(after({Key::downArrow, {}, KeyCombinationAction::press}), ElementsAre("nextTarget"));
}

TEST_F(KeyRoutingTest, ReturnWithAnEmptyQueryClicksAtThePointer) {
    input.text = "";
    EXPECT_THAT(after({Key::return_}), ElementsAre("clickAtMouse", "close"));
}

TEST_F(KeyRoutingTest, AQueryOfBlanksIsNotEmpty) {
    input.text = " ";
    EXPECT_THAT(after({Key::return_}), ElementsAre("clickPrimaryTarget", "close"));
}

TEST_F(KeyRoutingTest, WhatIsTheTextFieldsPasses) {
    const std::vector<KeyCombination> keys = {
        {Key::escape},
        {Key::delete_},
        {Key::leftArrow},
        {Key::rightArrow},
        {Key::a},
        {Key::n},
        {Key::n, {.control = true, .shift = true}},
        {Key::downArrow, {.shift = true}},
        {Key::downArrow, {.control = true, .command = true}},
        {Key::home, {.shift = true}},
        {Key::tab, {.command = true}},
        {Key::return_, {.control = true, .option = true}},
        {Key::return_, {.fn = true}},
    };
    for (const KeyCombination& key : keys) EXPECT_THAT(after(key), ElementsAre("passes")) << rawValue(key.key());
}

TEST(KeyTable, EveryRowHasHelpForTheUser) {
    for (const KeyActionRow& row : keyActions) EXPECT_FALSE(row.help.empty());
}

TEST(KeyTable, EveryActionHasAKey) {
    for (const KeyActionRow& row : keyActions)
        EXPECT_TRUE(std::any_of(keyRoutes.begin(), keyRoutes.end(), [&](const KeyRoute& route) {
            return route.action == row.action;
        })) << row.help;
}

TEST(KeyTable, ACombinationThatStandsTwiceIsNoticed) {
    constexpr auto twice = std::to_array<KeyRoute>({
        {{Key::tab}, KeyAction::nextTarget},
        {{Key::tab, {}, KeyCombinationAction::press}, KeyAction::previousTarget},
    });
    static_assert(!everyCombinationOnce(twice));
    EXPECT_FALSE(everyCombinationOnce(twice));
}

}  // namespace
}  // namespace tarvix
