#include <gtest/gtest.h>

#include "keys/KeyCombinationAdaptor.h"
#include "keys/Sauce.h"
#include "simulated/SimulatedInputSources.h"

namespace tarvix {
namespace {

struct AdaptorTest : testing::Test {
    SimulatedInputSources inputSources{{simulatedLayout::us(), simulatedLayout::dvorak()}};
    Sauce sauce{inputSources};

    std::optional<KeyCombination> read(std::uint16_t keyCode, std::uint64_t flags = 0,
                                       KeyEventType type = KeyEventType::keyDown) {
        return KeyCombinationAdaptor::fromCGEvent({type, keyCode, flags}, sauce);
    }
};

TEST_F(AdaptorTest, ReadsKeyAndModifiers) {
    const auto combination = read(36, eventFlag::shift | eventFlag::command);
    ASSERT_TRUE(combination);
    EXPECT_EQ(*combination, KeyCombination(Key::return_, {.shift = true, .command = true}));
    EXPECT_EQ(read(45, eventFlag::control), KeyCombination(Key::n, {.control = true}));
    EXPECT_EQ(read(45, eventFlag::control)->vimKey(), VimKey::controlN);
    EXPECT_EQ(read(8, eventFlag::option), KeyCombination(Key::c, {.option = true}));
}

TEST_F(AdaptorTest, OtherFlagsPlayNoPart) {
    EXPECT_EQ(read(0, 0x10000 /* caps lock */ | 0x200000 | 0x100), KeyCombination(Key::a));
}

TEST_F(AdaptorTest, AnUnknownKeyCodeGivesNoCombination) {
    EXPECT_EQ(read(54), std::nullopt);
    EXPECT_EQ(read(127), std::nullopt);
    EXPECT_EQ(read(65535), std::nullopt);
}

TEST_F(AdaptorTest, NineKeysCarryTheFunctionFlagAlways) {
    constexpr std::uint16_t codes[] = {125, 119, 115, 76, 123, 121, 116, 124, 126};
    for (const std::uint16_t code : codes) {
        const auto combination = read(code, eventFlag::secondaryFn);
        ASSERT_TRUE(combination) << code;
        EXPECT_FALSE(combination->fn) << code;
    }
}

TEST_F(AdaptorTest, AnyOtherKeyTakesTheFunctionFlagAsItStands) {
    constexpr std::uint16_t codes[] = {117 /* forward delete */, 122 /* F1 */, 36, 0};
    for (const std::uint16_t code : codes) {
        EXPECT_TRUE(read(code, eventFlag::secondaryFn)->fn) << code;
        EXPECT_FALSE(read(code)->fn) << code;
    }
    EXPECT_NE(read(117, eventFlag::secondaryFn), KeyCombination(Key::forwardDelete));
}

TEST_F(AdaptorTest, AKeyUpIsAReleaseAndEqualsATemplate) {
    const auto released = read(2, 0, KeyEventType::keyUp);
    ASSERT_TRUE(released);
    EXPECT_EQ(released->action, KeyCombinationAction::release);
    EXPECT_EQ(*released, KeyCombination(Key::d));
    EXPECT_EQ(read(2)->action, KeyCombinationAction::press);
}

TEST_F(AdaptorTest, BothGivesAPressAndAReleaseWithItsOwnModifiersOnly) {
    const auto events = KeyCombinationAdaptor::toCGEvents(KeyCombination(Key::a, {.command = true}), sauce);
    EXPECT_EQ(events, (std::vector<KeyEvent>{{KeyEventType::keyDown, 0, eventFlag::command},
                                             {KeyEventType::keyUp, 0, eventFlag::command}}));
}

TEST_F(AdaptorTest, PressAndReleaseGiveOneEventEach) {
    EXPECT_EQ(KeyCombinationAdaptor::toCGEvents({Key::escape, {}, KeyCombinationAction::press}, sauce),
              (std::vector<KeyEvent>{{KeyEventType::keyDown, 53, 0}}));
    EXPECT_EQ(KeyCombinationAdaptor::toCGEvents({Key::escape, {}, KeyCombinationAction::release}, sauce),
              (std::vector<KeyEvent>{{KeyEventType::keyUp, 53, 0}}));
}

TEST_F(AdaptorTest, EachModifierHasItsFlag) {
    const auto flags = [&](KeyModifiers modifiers) {
        return KeyCombinationAdaptor::toCGEvent({Key::a, modifiers}, KeyEventType::keyDown, sauce).flags;
    };
    EXPECT_EQ(flags({.fn = true}), 0x800000u);
    EXPECT_EQ(flags({.control = true}), 0x40000u);
    EXPECT_EQ(flags({.option = true}), 0x80000u);
    EXPECT_EQ(flags({.shift = true}), 0x20000u);
    EXPECT_EQ(flags({.command = true}), 0x100000u);
    EXPECT_EQ(flags({true, true, true, true, true}), 0x9E0000u);
}

TEST_F(AdaptorTest, TheLayoutOfTheMomentCounts) {
    const KeyCombination d(Key::d);
    EXPECT_EQ(KeyCombinationAdaptor::toCGEvent(d, KeyEventType::keyDown, sauce).keyCode, 2);
    EXPECT_EQ(read(2)->key(), Key::d);
    inputSources.select("us(dvorak)");
    EXPECT_EQ(KeyCombinationAdaptor::toCGEvent(d, KeyEventType::keyDown, sauce).keyCode, 4);
    EXPECT_EQ(read(2)->key(), Key::e);
}

TEST_F(AdaptorTest, AKeyThatTheLayoutLacksKeepsItsFixedCode) {
    EXPECT_EQ(KeyCombinationAdaptor::toCGEvent({Key::yen}, KeyEventType::keyDown, sauce).keyCode, 93);
    EXPECT_EQ(KeyCombinationAdaptor::toCGEvent({Key::caret}, KeyEventType::keyDown, sauce).keyCode, 24);
}

TEST_F(AdaptorTest, WhatIsWrittenIsReadBack) {
    for (const KeyEvent& event :
         KeyCombinationAdaptor::toCGEvents(KeyCombination(Key::slash, {.control = true, .option = true}), sauce)) {
        EXPECT_EQ(KeyCombinationAdaptor::fromCGEvent(event, sauce),
                  KeyCombination(Key::slash, {.control = true, .option = true}));
    }
}

TEST_F(AdaptorTest, AKeyThatALayoutHasInAnotherPlaceIsPostedThereAndReadThere) {
    for (const char* layout : {"us", "us(dvorak)"}) {
        inputSources.select(layout);
        for (std::size_t i = 0; i < keyCount; ++i) {
            const auto key = static_cast<Key>(i);
            const KeyEvent event = KeyCombinationAdaptor::toCGEvent(KeyCombination(key), KeyEventType::keyDown, sauce);
            const bool hasTwin = key == Key::caret || key == Key::atSign || key == Key::colon;  // by the fixed codes
            EXPECT_EQ(KeyCombinationAdaptor::fromCGEvent(event, sauce) == KeyCombination(key), !hasTwin)
                << layout << " " << rawValue(key);
        }
    }
}

struct CharacterTest : testing::Test {
    SimulatedInputSources inputSources{{simulatedLayout::us(), simulatedLayout::dvorak(), simulatedLayout::german(),
                                        simulatedLayout::russian(), simulatedLayout::inputMethod()}};
    Sauce sauce{inputSources};

    std::string typed(Key key, KeyModifiers modifiers = {}) { return KeyCombination(key, modifiers).character(sauce); }
};

TEST_F(CharacterTest, IsWhatTheKeyTypesOnTheLayoutOfTheMoment) {
    EXPECT_EQ(typed(Key::d), "d");
    EXPECT_EQ(typed(Key::space), " ");
    EXPECT_EQ(typed(Key::return_), "\r");
    EXPECT_EQ(typed(Key::one, {.shift = true}), "!");
    inputSources.select("us(dvorak)");
    EXPECT_EQ(typed(Key::d), "d") << "by the key that types it there";
    inputSources.select("ru");
    EXPECT_EQ(typed(Key::d), "в") << "by its fixed place, as no key types it there";
}

TEST_F(CharacterTest, OfTheModifiersOnlyShiftCounts) {
    EXPECT_EQ(typed(Key::a, {.shift = true}), "A");
    EXPECT_EQ(typed(Key::a, {.fn = true, .control = true, .option = true, .command = true}), "a");
    EXPECT_EQ(typed(Key::a, {.option = true, .shift = true}), "A");
}

TEST_F(CharacterTest, ADeadKeyIsItsOwnSign) {
    inputSources.select("de");
    EXPECT_EQ(typed(Key::caret), "^");
    EXPECT_EQ(typed(Key::caret, {.shift = true}), "°");
}

TEST_F(CharacterTest, IsAQuestionMarkWhereNothingIsTyped) {
    EXPECT_EQ(typed(Key::f5), "?");
    EXPECT_EQ(typed(Key::leftArrow), "?");
    EXPECT_EQ(typed(Key::yen), "?");
    inputSources.select("kana-kanji");
    EXPECT_EQ(typed(Key::a), "?");
}

TEST_F(CharacterTest, IsThatOfTheReleaseToo) {
    EXPECT_EQ(KeyCombination(Key::a, {}, KeyCombinationAction::release).character(sauce), "a");
    EXPECT_EQ(KeyCombination(VimKey::dollarSign).character(sauce), "$");
}

}  // namespace
}  // namespace tarvix
