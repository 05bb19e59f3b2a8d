// Every combination of the key table, in every situation of a search; and every other key.
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <set>

#include "core/KeyHelp.h"
#include "core/KeyRouting.h"
#include "tests/scenarios/SearchScenario.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string asTestName(const KeyCombination& keys) {
    std::string name = keyName(keys);
    std::erase_if(name, [](unsigned char c) { return !std::isalnum(c); });
    return name;
}

struct Situation {
    KeyRoute route;
    bool hasQuery;
    bool hasTargets;
    bool settingsAreOn;  // all that have to do with any key
};

std::vector<Situation> everySituation() {
    std::vector<Situation> situations;
    for (const KeyRoute& route : keyRoutes)
        for (const bool hasQuery : {false, true})
            for (const bool hasTargets : {false, true})
                for (const bool settingsAreOn : {false, true})
                    situations.push_back({route, hasQuery, hasTargets, settingsAreOn});
    return situations;
}

std::string nameOf(const Situation& situation) {
    return asTestName(situation.route.combination) + (situation.hasQuery ? "WithAQuery" : "WithoutAQuery") +
           (situation.hasTargets ? "WithTargets" : "WithoutTargets") +
           (situation.settingsAreOn ? "SettingsOn" : "SettingsOff");
}

class EveryKey : public SearchScenario, public testing::WithParamInterface<Situation> {
protected:
    static constexpr int kButtons = 6;

    EveryKey() {
        SimulatedWindow mail = desk.window("Mail", {{0, 0}, {800, 600}});
        for (int i = 0; i < kButtons; ++i)
            mail.add({.role = "AXButton",
                      .title = titleOfButton(i),
                      .frame = {{10, 20.0 + 40 * i}, {60, 20}},
                      .children = {},
                      .attributes = {{std::string(ax::value), "value " + std::to_string(i)}}});
        for (const char* key :
             {"allowCyclingThroughTargets", "repositionMouseAfterClick", "allowCopyingOfTextAndMetadata"})
            desk.userDefaults.set(key, GetParam().settingsAreOn);
        desk.pasteboard.text = "from before";
        desk.screens.pointer = {300, 700};
    }

    void bringAbout() {
        open();
        if (GetParam().hasQuery) desk.type(GetParam().hasTargets ? "send" : "xyzzy");
        // Typing never leads there, so it is done by hand.
        if (!GetParam().hasQuery && GetParam().hasTargets) engine().showTargets(engine().allElements());
        text_ = desk.panels.input().text();
        keysBefore_ = desk.panels.input().keys().size();
        desk.clearJournal();
    }
    static std::string titleOfButton(int n) { return "Send " + std::to_string(n); }
    void makePrimary(int n) {
        engine().firstTarget();
        for (int i = 0; i < n; ++i) engine().nextTarget();
        ASSERT_EQ(primary(), titleOfButton(n));
    }
    // All that has happened but for the markers.
    Texts effects() const {
        return desk.journal({Topic::mouse, Topic::key, Topic::theInput, Topic::pasteboard, Topic::settings,
                             Topic::accessibility, Topic::announcement});
    }
    std::size_t keysInField() const { return desk.panels.input().keys().size() - keysBefore_; }
    const std::string& textBefore() const { return text_; }

private:
    std::string text_;
    std::size_t keysBefore_ = 0;
};

// Where the Primary Target goes, of n.
int expectedIndex(KeyAction action, int i, int n, bool cycling) {
    switch (action) {
        case KeyAction::nextTarget:
            return i + 1 < n ? i + 1 : cycling ? 0 : i;
        case KeyAction::previousTarget:
            return i > 0 ? i - 1 : cycling ? n - 1 : i;
        case KeyAction::lastTarget:
            return n - 1;
        case KeyAction::firstTarget:
            return 0;
        case KeyAction::halfwayDownTarget:
            return i < n / 2 ? n / 2 : n - 1;
        case KeyAction::halfwayUpTarget:
            return i > n / 2 ? n / 2 : 0;
        default:
            return i;
    }
}

std::vector<std::string> clicks(const std::string& button) { return {button + " down", button + " up"}; }

std::vector<std::string> doubleClicks() {
    return {"left down, flags 0", "left up, flags 0", "left down, click 2, flags 0", "left up, click 2, flags 0"};
}

std::vector<std::string> joined(std::initializer_list<std::vector<std::string>> parts) {
    std::vector<std::string> all;
    for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

// The effects of a key with the second of the Targets as the primary one and the pointer at 300,300.
std::vector<std::string> expectedEffects(const Situation& situation, const std::string& dumps) {
    using Texts = std::vector<std::string>;
    const Texts closed = {"The Input hidden"};
    const bool onTarget = situation.hasQuery && situation.hasTargets;
    const Texts toTarget = {"moved to 40,70"};
    const Texts back = situation.settingsAreOn ? Texts{"moved to 300,300"} : Texts{};
    const auto clicking = [&](const Texts& atTarget, const Texts& atPointer) {
        if (!situation.hasQuery) return joined({atPointer, closed});
        return onTarget ? joined({toTarget, atTarget, back, closed}) : closed;
    };
    const auto copying = [&](const std::string& text) {
        if (!situation.settingsAreOn) return Texts{};
        return onTarget ? joined({{"pasteboard cleared", "pasteboard set to '" + text + "'"}, closed}) : closed;
    };
    switch (situation.route.action) {
        case KeyAction::nextTarget:
        case KeyAction::previousTarget:
        case KeyAction::lastTarget:
        case KeyAction::firstTarget:
        case KeyAction::halfwayDownTarget:
        case KeyAction::halfwayUpTarget:
        case KeyAction::nothing:
            return {};
        case KeyAction::click:
            return clicking(clicks("left"), clicks("left"));
        case KeyAction::rightClick:
            return clicking(clicks("right"), clicks("right"));
        case KeyAction::moveMouse:
            return onTarget ? joined({toTarget, closed}) : closed;
        case KeyAction::doubleClick:
            return clicking(doubleClicks(), joined({{"moved to 300,300"}, doubleClicks()}));
        case KeyAction::copyText:
            return copying("Send 1");
        case KeyAction::copyMetadata:
            return copying("value 1");
        case KeyAction::showSettings:
            return joined({{"settings shown"}, closed});
        case KeyAction::copyTargetsDescription:
            return {"pasteboard cleared", "pasteboard set to '" + dumps + "'"};
    }
    return {"no such action"};
}

TEST_P(EveryKey, DoesWhatItsRowSays) {
    const auto& [route, hasQuery, hasTargets, settingsAreOn] = GetParam();
    const KeyActionRow& row = rowOf(route.action);
    const bool isAllowed = row.gate == Gate::open || settingsAreOn;
    const bool closes = row.after == After::close && isAllowed;
    bringAbout();
    if (hasTargets) makePrimary(1);
    std::string dumps;
    for (const Target& target : engine().targets()) dumps += target.element.metadataDump();

    press(route.combination);

    EXPECT_EQ(effects(), expectedEffects(GetParam(), dumps));
    EXPECT_EQ(inputIsShown(), !closes);
    EXPECT_EQ(desk.panels.input().text(), closes ? "" : textBefore());
    EXPECT_EQ(keysInField(), isAllowed ? 0u : 1u);
    EXPECT_EQ(primary(), hasTargets ? titleOfButton(expectedIndex(route.action, 1, kButtons, settingsAreOn)) : "none");
}

// The keys that leave the search open.
class EveryMove : public EveryKey {};

TEST_P(EveryMove, LeadsFromEveryTargetToWhereItsRowSays) {
    const auto& [route, hasQuery, hasTargets, settingsAreOn] = GetParam();
    bringAbout();
    for (int i = 0; i < kButtons; ++i) {
        makePrimary(i);
        press(route.combination);
        EXPECT_EQ(primary(), titleOfButton(expectedIndex(route.action, i, kButtons, settingsAreOn))) << "from " << i;
    }
}

std::vector<Situation> everyMove() {
    std::vector<Situation> moves = everySituation();
    std::erase_if(moves, [](const Situation& situation) {
        return !situation.hasTargets || rowOf(situation.route.action).after == After::close;
    });
    return moves;
}

const auto kByName = [](const auto& parameter) { return nameOf(parameter.param); };
INSTANTIATE_TEST_SUITE_P(Table, EveryKey, testing::ValuesIn(everySituation()), kByName);
INSTANTIATE_TEST_SUITE_P(Table, EveryMove, testing::ValuesIn(everyMove()), kByName);

class KeysOfASearch : public SearchScenario {
protected:
    KeysOfASearch() {
        desk.window("Mail", {{0, 0}, {800, 600}}).button("Send", {{10, 20}, {60, 20}});
        desk.userDefaults.set("allowCopyingOfTextAndMetadata", true);
    }

    const std::vector<KeyEvent>& keysInField() const { return desk.panels.input().keys(); }
};

// The action comes first, then the reading is stopped; what leaves the search open leaves the reading alone too.
TEST_F(KeysOfASearch, StopTheReadingExactlyWhenTheyCloseTheInput) {
    desk.userDefaults.set("dontFlushTheInput", true);
    for (const KeyRoute& route : keyRoutes) {
        const bool closes = rowOf(route.action).after == After::close;
        pressShortcut();
        desk.runLoop.runMain();
        desk.panels.input().insert("send");
        press(route.combination);
        EXPECT_EQ(inputIsShown(), !closes) << keyName(route.combination);
        desk.settle();
        EXPECT_EQ(targets(), closes ? Texts{} : Texts{"Send"}) << keyName(route.combination);
        if (inputIsShown()) pressShortcut();
    }
}

TEST_F(KeysOfASearch, WhatNoRowNamesReachesTheTextField) {
    constexpr std::array flags = {eventFlag::shift, eventFlag::control, eventFlag::option, eventFlag::command,
                                  eventFlag::secondaryFn};
    constexpr std::uint16_t codes = 128;
    std::set<std::string> consumed;
    const auto play = [&](const KeyEvent& event) {
        if (!inputIsShown()) open();
        const std::size_t before = keysInField().size();
        desk.press(event.keyCode, event.flags);
        if (keysInField().size() > before) {
            EXPECT_EQ(keysInField().back(), event);
        } else {
            ASSERT_TRUE(keyForQwertyKeyCode(event.keyCode)) << "position " << event.keyCode;
            const auto has = [&](std::uint64_t flag) { return (event.flags & flag) != 0; };
            const KeyCombination keys(*keyForQwertyKeyCode(event.keyCode), {.control = has(eventFlag::control),
                                                                            .option = has(eventFlag::option),
                                                                            .shift = has(eventFlag::shift),
                                                                            .command = has(eventFlag::command)});
            ASSERT_TRUE(std::any_of(keyRoutes.begin(), keyRoutes.end(),
                                    [&](const KeyRoute& route) { return route.combination == keys; }))
                << "position " << event.keyCode << " with flags " << event.flags;
            consumed.insert(keyName(keys));
        }
    };
    for (std::uint16_t code = 0; code < codes; ++code) {
        for (unsigned held = 0; held < 1u << flags.size(); ++held) {
            KeyEvent event{.keyCode = code};
            for (std::size_t i = 0; i < flags.size(); ++i)
                if (held & (1u << i)) event.flags |= flags[i];
            const bool isShortcut = code == qwertyKeyCode(Key::space) &&
                                    (event.flags & ~eventFlag::secondaryFn) == (eventFlag::shift | eventFlag::command);
            if (!isShortcut) play(event);
        }
    }
    EXPECT_EQ(consumed.size(), keyRoutes.size());
}

TEST_F(KeysOfASearch, ReturnWithTheFunctionKeyIsTheTextFields) {
    search("send");
    press({Key::return_, {.fn = true}});
    EXPECT_EQ(keysInField().back().keyCode, qwertyKeyCode(Key::return_));
    EXPECT_TRUE(inputIsShown());
    EXPECT_THAT(desk.journal({Topic::mouse}), IsEmpty());
}

TEST_F(KeysOfASearch, CommandCCopiesTheFieldsOwnTextUntilTheUserAllowsTheOtherThing) {
    desk.userDefaults.set("allowCopyingOfTextAndMetadata", false);
    search("send");
    press({Key::c, {.command = true}});
    press({Key::c, {.control = true, .command = true}});
    ASSERT_GE(keysInField().size(), 2u);
    EXPECT_EQ(keysInField()[keysInField().size() - 2].flags, eventFlag::command);
    EXPECT_EQ(keysInField().back().flags, eventFlag::control | eventFlag::command);
    EXPECT_TRUE(inputIsShown());
    EXPECT_THAT(desk.journal({Topic::pasteboard}), IsEmpty());
}

// A Primary Target of the last search is still there when the next one opens.
TEST_F(KeysOfASearch, WithAnEmptyQueryThePointerCountsAndNotThePrimaryTarget) {
    search("send");
    press(Key::escape);
    pressShortcut();
    ASSERT_EQ(primary(), "Send");
    desk.clearJournal();
    press(Key::return_);
    EXPECT_EQ(seen(), (Texts{"left down", "left up", "The Input hidden"}));
}

TEST_F(KeysOfASearch, CommandCommaEndsTheSearchAndShowsTheSettings) {
    open();
    desk.clearJournal();
    press({Key::comma, {.command = true}});
    EXPECT_THAT(desk.journal({Topic::settings, Topic::theInput}), ElementsAre("settings shown", "The Input hidden"));
}

TEST_F(KeysOfASearch, CommandQDoesNothingAtAll) {
    search("send");
    desk.clearJournal();
    press({Key::q, {.command = true}});
    EXPECT_THAT(desk.journal(), IsEmpty());
    EXPECT_TRUE(inputIsShown());
    EXPECT_THAT(targets(), ElementsAre("Send"));
}

}  // namespace
}  // namespace tarvix
