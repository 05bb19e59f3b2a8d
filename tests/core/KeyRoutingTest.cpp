// Who gets which key while The Input is up.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "core/KeyRouting.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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
    void doubleClickPrimaryTarget(MouseButton button) override {
        calls_.push_back(button == MouseButton::left ? "doubleClickPrimaryTarget" : "doubleClickPrimaryTarget right");
    }
    void doubleClickAtMouse() override { calls_.push_back("doubleClickAtMouse"); }
    void moveMouseToPrimaryTarget() override { calls_.push_back("moveMouseToPrimaryTarget"); }
    void copyTargetsDescription() override { calls_.push_back("copyTargetsDescription"); }
    const std::optional<Target>& primaryTarget() const override { return primary; }
    std::optional<AccessibilityElement> elementUnderMouse() const override { return std::nullopt; }

    std::optional<Target> primary;

private:
    Calls& calls_;
};

class RecordingInput : public TheInputProtocol {
public:
    explicit RecordingInput(Calls& calls) : calls_(calls) {}

    void open() override { calls_.push_back("open"); }
    void close() override { calls_.push_back("close"); }
    bool isVisible() const override { return true; }
    [[nodiscard]] Subscription onVisibilityChanged(std::function<void()>) override { return {}; }
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
        if (!routing_.handleKey(key)) calls_.push_back("passes");
        return calls_;
    }
    void allowCopying(bool allowed) { desk.userDefaults.set("allowCopyingOfTextAndMetadata", allowed); }
    void setPrimaryLink() {
        AccessibilityElement link;
        link.role = AccessibilityElementRole::link;
        link.title = "Inbox";
        link.url = Url{"https://example.org/inbox"};
        engine.primary = Target{link, nullptr};
    }

private:
    Calls calls_;

protected:
    SimulatedDesktop desk;
    RecordingEngine engine{calls_};
    RecordingInput input{calls_};

private:
    Preloading preloading_{desk.runLoop, desk.milestones};
    KeyRouting routing_{desk.platform(), engine, input, preloading_};
};

const KeyModifiers kControlOptionCommand = {.control = true, .option = true, .command = true};
const std::vector<KeyCombination> kCopyKeys = {{Key::c, {.command = true}},
                                               {Key::c, {.control = true, .command = true}},
                                               {Key::c, {.option = true, .command = true}},
                                               {Key::c, {.shift = true, .command = true}}};

struct Row {
    std::vector<KeyCombination> combinations;
    std::vector<std::string> effects;       // with a query
    std::vector<std::string> atThePointer;  // with an empty one
};

Row always(std::vector<KeyCombination> combinations, std::vector<std::string> effects) {
    return {std::move(combinations), effects, effects};
}

const std::vector<Row>& rows() {
    static const std::vector<Row> rows = {
        always({{Key::downArrow}, {Key::tab}, {Key::n, {.control = true}}}, {"nextTarget"}),
        always({{Key::upArrow}, {Key::tab, {.shift = true}}, {Key::p, {.control = true}}}, {"previousTarget"}),
        always({{Key::downArrow, {.command = true}}, {Key::end}}, {"lastTarget"}),
        always({{Key::upArrow, {.command = true}}, {Key::home}}, {"firstTarget"}),
        always({{Key::downArrow, {.control = true}}, {Key::pageDown}}, {"halfwayDownTarget"}),
        always({{Key::upArrow, {.control = true}}, {Key::pageUp}}, {"halfwayUpTarget"}),
        {{{Key::return_},
          {Key::return_, {.option = true}},
          {Key::return_, {.shift = true}},
          {Key::return_, {.command = true}}},
         {"clickPrimaryTarget", "close"},
         {"clickAtMouse", "close"}},
        {{{Key::return_, {.control = true}}}, {"clickPrimaryTarget right", "close"}, {"clickAtMouse right", "close"}},
        {{{Key::return_, {.shift = true, .command = true}}}, {"moveMouseToPrimaryTarget", "close"}, {"close"}},
        {{{Key::keypadEnter}, {Key::return_, kControlOptionCommand}},
         {"doubleClickPrimaryTarget", "close"},
         {"doubleClickAtMouse", "close"}},
        always({kCopyKeys[0]}, {"close"}),
        always({kCopyKeys[1], kCopyKeys[2], kCopyKeys[3]}, {"close"}),
        always({{Key::comma, {.command = true}}}, {"close"}),
        always({{Key::q, {.command = true}}}, {}),
        always({{Key::keypadEnter, kControlOptionCommand}}, {"copyTargetsDescription"}),
    };
    return rows;
}

TEST_F(KeyRoutingTest, EachRowOfTheTableDoesWhatItSays) {
    allowCopying(true);
    for (const Row& row : rows()) {
        for (const KeyCombination& combination : row.combinations) {
            input.text = "query";
            EXPECT_EQ(after(combination), row.effects) << "row " << &row - rows().data() + 1;
            input.text = "";
            EXPECT_EQ(after(combination), row.atThePointer) << "row " << &row - rows().data() + 1;
        }
    }
}

TEST_F(KeyRoutingTest, WhateverNoRowNamesPasses) {
    allowCopying(true);
    const auto isNamed = [](const KeyCombination& key) {
        return std::any_of(rows().begin(), rows().end(), [&](const Row& row) {
            return std::find(row.combinations.begin(), row.combinations.end(), key) != row.combinations.end();
        });
    };
    constexpr unsigned allModifiers = 32;
    for (std::size_t key = 0; key < keyCount; ++key) {
        for (unsigned bits = 0; bits < allModifiers; ++bits) {
            const KeyCombination combination(static_cast<Key>(key), {.fn = (bits & 1) != 0,
                                                                     .control = (bits & 2) != 0,
                                                                     .option = (bits & 4) != 0,
                                                                     .shift = (bits & 8) != 0,
                                                                     .command = (bits & 16) != 0});
            EXPECT_EQ(after(combination) == Calls{"passes"}, !isNamed(combination))
                << rawValue(combination.key()) << " with modifiers " << bits;
        }
    }
}

TEST_F(KeyRoutingTest, APressFromTheKeyboardMatchesATemplateThatIsBoth) {
    EXPECT_THAT(after({Key::downArrow, {}, KeyCombinationAction::press}), ElementsAre("nextTarget"));
}

TEST_F(KeyRoutingTest, AQueryOfBlanksIsNotEmpty) {
    input.text = " ";
    EXPECT_THAT(after({Key::return_}), ElementsAre("clickPrimaryTarget", "close"));
}

TEST_F(KeyRoutingTest, TheCopyKeysAreTheTextFieldsUntilTheUserAllowsThem) {
    setPrimaryLink();
    for (const KeyCombination& key : kCopyKeys) EXPECT_THAT(after(key), ElementsAre("passes"));
    EXPECT_THAT(desk.journal(), IsEmpty());
    allowCopying(true);
    for (const KeyCombination& key : kCopyKeys) EXPECT_THAT(after(key), ElementsAre("close"));
    allowCopying(false);
    for (const KeyCombination& key : kCopyKeys) EXPECT_THAT(after(key), ElementsAre("passes"));
}

TEST_F(KeyRoutingTest, CommandCCopiesTheTextOfThePrimaryTargetAndWithOneMoreModifierTheMetadata) {
    allowCopying(true);
    setPrimaryLink();
    after(kCopyKeys[0]);
    EXPECT_EQ(desk.pasteboard.text, "Inbox");
    for (std::size_t i = 1; i < kCopyKeys.size(); ++i) {
        desk.pasteboard.text.reset();
        after(kCopyKeys[i]);
        EXPECT_EQ(desk.pasteboard.text, "https://example.org/inbox");
    }
}

TEST_F(KeyRoutingTest, WithoutAPrimaryTargetOrWithAnEmptyQueryNothingIsCopied) {
    allowCopying(true);
    for (const KeyCombination& key : kCopyKeys) after(key);
    setPrimaryLink();
    input.text = "";
    for (const KeyCombination& key : kCopyKeys) after(key);
    EXPECT_THAT(desk.journal(), IsEmpty());
}

TEST_F(KeyRoutingTest, CommandCommaShowsTheSettings) {
    after({Key::comma, {.command = true}});
    EXPECT_THAT(desk.journal(), ElementsAre("settings shown", "activated"));
}

TEST_F(KeyRoutingTest, CommandQDoesNothingAtAll) {
    EXPECT_THAT(after({Key::q, {.command = true}}), IsEmpty());
    EXPECT_THAT(desk.journal(), IsEmpty());
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
