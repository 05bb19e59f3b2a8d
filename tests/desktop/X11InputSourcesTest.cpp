#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "keys/KeyCombination.h"
#include "keys/Sauce.h"
#include "linux/x11/EvdevKeyCodes.h"
#include "linux/x11/X11InputSources.h"
#include "linux/x11/XcbXkb.h"
#include "tests/contract/InputSourcesContract.h"
#include "tests/desktop/PollLoop.h"

namespace tarvix {
namespace {

using Ids = std::vector<std::string>;

TEST(EvdevKeyCodes, EveryKeyHasOneAndItLeadsBack) {
    for (std::size_t i = 0; i < keyCount; ++i) {
        const std::uint16_t position = qwertyKeyCode(static_cast<Key>(i));
        const auto evdev = evdevOfKeyCode(position);
        ASSERT_TRUE(evdev) << position;
        EXPECT_EQ(keyCodeOfEvdev(*evdev), position);
        EXPECT_EQ(x11OfKeyCode(position), *evdev + 8);
        EXPECT_EQ(keyCodeOfX11(static_cast<std::uint8_t>(*evdev + 8)), position);
    }
}

TEST(EvdevKeyCodes, NoOtherPositionHasOne) {
    for (std::uint32_t position = 0; position < 300; ++position)
        EXPECT_EQ(evdevOfKeyCode(position).has_value(), keyForQwertyKeyCode(position).has_value()) << position;
}

TEST(EvdevKeyCodes, KeysWithoutAPositionHaveNone) {
    for (const std::uint32_t evdev :
         {0u, 1000u, unsigned{KEY_LEFTSHIFT}, unsigned{KEY_LEFTMETA}, unsigned{KEY_VOLUMEUP}})
        EXPECT_FALSE(keyCodeOfEvdev(evdev)) << evdev;
    EXPECT_FALSE(keyCodeOfX11(0));
    EXPECT_FALSE(keyCodeOfX11(7));
}

// The layouts are those of the whole display, so each test leaves it with "us".
struct X11InputSourcesTest : testing::Test {
    PollLoop loop;
    std::unique_ptr<X11InputSources> sources;
    std::unique_ptr<X11Connection> other = std::move(X11Connection::open().value());
    int enabledChanges = 0;
    int selectedChanges = 0;
    std::vector<Subscription> tokens;

    void SetUp() override {
        setLayouts("us");
        auto opened = X11InputSources::open(loop);
        ASSERT_TRUE(opened) << opened.reason();
        sources = std::move(opened.value());
        tokens.push_back(sources->onEnabledChanged([this] { ++enabledChanges; }));
        tokens.push_back(sources->onSelectedChanged([this] { ++selectedChanges; }));
    }
    void TearDown() override {
        setLayouts("us");
        lockGroup(0);
    }

    void setLayouts(const std::string& layouts, const std::string& variants = {}) {
        const std::string command = "setxkbmap -layout '" + layouts + "' -variant '" + variants + "' -option ''";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
    }
    // The same, until the sources have followed.
    void setLayouts(const std::string& layouts, const std::string& variants, const Ids& expected) {
        setLayouts(layouts, variants);
        ASSERT_TRUE(loop.runUntil([&] { return ids() == expected; })) << testing::PrintToString(ids());
    }
    void lockGroup(std::uint8_t group) {
        other->reply<xcb_xkb_use_extension_reply>(xcb_xkb_use_extension(other->get(), 1, 0));
        xcb_xkb_latch_lock_state(other->get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, group, 0, 0, 0);
        other->sync();
    }
    void setRulesNames(const std::string& layouts, const std::string& variants) {
        std::string names;
        for (const std::string& name : {std::string("evdev"), std::string("pc105"), layouts, variants, std::string()})
            names += name + std::string(1, '\0');
        xcb_change_property(other->get(), XCB_PROP_MODE_REPLACE, other->root(), other->atom("_XKB_RULES_NAMES"),
                            XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(names.size()), names.data());
        other->sync();
    }
    // Waits until everything that the server has announced so far is known.
    void settle(std::uint8_t anotherGroup) {
        const int before = selectedChanges;
        lockGroup(anotherGroup);
        ASSERT_TRUE(loop.runUntil([&] { return selectedChanges > before; }));
    }

    Ids ids() {
        Ids all;
        for (const InputSourceInfo& source : sources->enabled()) all.push_back(source.id);
        return all;
    }
    std::optional<std::string> typed(std::uint16_t keyCode, std::uint32_t modifierState = 0) {
        return sources->translate(sources->currentKeyboardLayout(), keyCode, modifierState);
    }
};

TEST_F(X11InputSourcesTest, TheOneLayoutIsTheSelectedSource) {
    ASSERT_EQ(ids(), Ids{"us"});
    const InputSourceInfo us = sources->currentKeyboardLayout();
    EXPECT_EQ(us.localizedName, "English (US)");
    EXPECT_TRUE(us.isSelected && us.isEnabled && us.isASCIICapable && us.hasLayoutData);
    EXPECT_EQ(sources->currentASCIICapable(), us);
}

TEST_F(X11InputSourcesTest, OnTheUSLayoutEveryKeyIsItsFixedOne) {
    const Sauce sauce(*sources);
    for (std::uint16_t code = 0; code <= 126; ++code) {
        // The key beside the left shift, of European keyboards, types "<" here, which is no key's text.
        EXPECT_EQ(sauce.keyForKeyCode(code), keyForQwertyKeyCode(code)) << code;
    }
    for (const Key key : {Key::a, Key::six, Key::quote, Key::grave, Key::keypadFive, Key::keypadEquals, Key::period})
        EXPECT_EQ(sauce.currentKeyCodeForKey(key), qwertyKeyCode(key)) << rawValue(key);
}

TEST_F(X11InputSourcesTest, ModifiersChooseTheLevel) {
    EXPECT_EQ(typed(0), "a");
    EXPECT_EQ(typed(0, 2), "A");
    EXPECT_EQ(typed(0, 8), "a");
    EXPECT_EQ(typed(19, 2), "@");
    setLayouts("de", "", {"de"});
    EXPECT_EQ(typed(12), "q");
    EXPECT_EQ(typed(12, 8), "@");
    EXPECT_EQ(typed(12, 10), "Ω");
    EXPECT_EQ(typed(27), "ß");
    EXPECT_EQ(typed(27, 2), "?");
}

TEST_F(X11InputSourcesTest, TheKeypadTypesItsDigits) {
    EXPECT_EQ(typed(83), "1");
    EXPECT_EQ(typed(92), "9");
    EXPECT_EQ(typed(65), ".");
    EXPECT_EQ(typed(67), "*");
    EXPECT_EQ(typed(81), "=");
}

TEST_F(X11InputSourcesTest, KeysThatTypeNothingGiveNothing) {
    for (const std::uint16_t code : std::initializer_list<std::uint16_t>{36, 48, 51, 53, 122, 123, 54, 300})
        EXPECT_EQ(typed(code), std::nullopt) << code;
    InputSourceInfo unknown;
    unknown.id = "nowhere";
    EXPECT_EQ(sources->translate(unknown, 0, 0), std::nullopt);
}

TEST_F(X11InputSourcesTest, AVariantIsPartOfTheId) {
    setLayouts("us", "dvorak", {"us(dvorak)"});
    const Sauce sauce(*sources);
    EXPECT_EQ(sauce.keyForKeyCode(2), Key::e);
    EXPECT_EQ(sauce.keyCodeForKey(Key::d), 4);
}

TEST_F(X11InputSourcesTest, DeadKeysAreKnownByTheirSign) {
    setLayouts("de", "", {"de"});
    EXPECT_EQ(typed(24), "´");
    EXPECT_EQ(typed(24, 2), "`");
    EXPECT_EQ(typed(50), "^");
    EXPECT_EQ(typed(33), "ü");
}

TEST_F(X11InputSourcesTest, OnAFrenchKeyboardTheDigitsNeedShift) {
    setLayouts("fr", "", {"fr"});
    EXPECT_EQ(typed(12), "a");
    EXPECT_EQ(typed(18), "&");
    EXPECT_EQ(typed(18, 2), "1");
    const Sauce sauce(*sources);
    EXPECT_EQ(sauce.keyForKeyCode(12), Key::a);
    EXPECT_EQ(sauce.keyForKeyCode(41), Key::m);
    EXPECT_EQ(sauce.currentKeyCodeForKey(Key::caret), 33);  // a dead key
    EXPECT_EQ(sauce.keyCodeForKey(Key::one), 18);           // by its fixed code, since no key types it
}

TEST_F(X11InputSourcesTest, AJapaneseKeyboardHasKeysOfItsOwn) {
    setLayouts("jp", "", {"jp"});
    const Sauce sauce(*sources);
    EXPECT_EQ(sauce.currentKeyCodeForKey(Key::atSign), 33);
    EXPECT_EQ(sauce.currentKeyCodeForKey(Key::caret), 24);
    EXPECT_EQ(sauce.currentKeyCodeForKey(Key::colon), 39);
    EXPECT_EQ(sauce.currentKeyCodeForKey(Key::leftBracket), 30);
    EXPECT_EQ(sauce.keyForKeyCode(24), Key::caret);
}

TEST_F(X11InputSourcesTest, SeveralLayoutsAreSeveralSources) {
    setLayouts("us,ru,us", ",phonetic,dvorak", {"us", "ru(phonetic)", "us(dvorak)"});
    const auto enabled = sources->enabled();
    EXPECT_TRUE(enabled[0].isASCIICapable);
    EXPECT_FALSE(enabled[1].isASCIICapable);
    EXPECT_TRUE(enabled[2].isASCIICapable);
    EXPECT_EQ(sources->translate(enabled[0], 2, 0), "d");
    EXPECT_EQ(sources->translate(enabled[1], 2, 0), "д");
    EXPECT_EQ(sources->translate(enabled[2], 2, 0), "e");
}

TEST_F(X11InputSourcesTest, TheSelectedGroupIsFollowed) {
    setLayouts("us,ru", "", {"us", "ru"});
    const Sauce sauce(*sources);
    const int before = selectedChanges;
    lockGroup(1);
    ASSERT_TRUE(loop.runUntil([&] { return selectedChanges > before; }));
    EXPECT_EQ(sources->currentKeyboardLayout().id, "ru");
    EXPECT_EQ(sources->currentASCIICapable().id, "us");
    EXPECT_EQ(typed(2), "в");
    EXPECT_EQ(sauce.keyForKeyCode(2), Key::d);  // no Latin letter there, so the fixed table
    EXPECT_EQ(sauce.layout.currentKeyboardLayoutInputSource().info.id, "ru");
    settle(0);
    EXPECT_EQ(sources->currentKeyboardLayout().id, "us");
    EXPECT_EQ(selectedChanges, before + 2);
}

TEST_F(X11InputSourcesTest, TheKeysAreToldToHaveChangedWhereTheTablesDiffer) {
    setLayouts("us,us,ru", ",dvorak,", {"us", "us(dvorak)", "ru"});
    Sauce sauce(*sources);
    std::vector<std::string> posted;
    const auto token = sauce.layout.onNotification([&](std::string_view name) { posted.emplace_back(name); });
    const std::string selected = "SauceSelectedKeyboardInputSourceChanged",
                      keys = "SauceSelectedKeyboardKeyCodesChanged";
    settle(1);
    EXPECT_EQ(posted, (std::vector<std::string>{selected, keys}));
    EXPECT_EQ(sauce.keyCodeForKey(Key::d), 4);
    settle(2);
    settle(0);
    EXPECT_EQ(posted, (std::vector<std::string>{selected, keys, selected, keys, selected, keys}));
    setLayouts("us", "altgr-intl", {"us(altgr-intl)"});
    EXPECT_EQ(std::ranges::count(posted, "SauceEnabledKeyboardInputSourcesChanged"), enabledChanges - 1);
}

TEST_F(X11InputSourcesTest, TwoLayoutsWithOneTableAreOneTableToTheKeys) {
    // The same but for what Shift and the third level type.
    setLayouts("us,us", ",symbolic", {"us", "us(symbolic)"});
    Sauce sauce(*sources);
    std::vector<std::string> posted;
    const auto token = sauce.layout.onNotification([&](std::string_view name) { posted.emplace_back(name); });
    settle(1);
    EXPECT_EQ(posted, std::vector<std::string>{"SauceSelectedKeyboardInputSourceChanged"});
}

TEST_F(X11InputSourcesTest, TwoSourcesOfOneNameAreToldApart) {
    setLayouts("us,ru", "", {"us", "ru"});
    setRulesNames("us,us", "");
    ASSERT_TRUE(loop.runUntil([&] { return ids() == (Ids{"us", "us 2"}); })) << testing::PrintToString(ids());
    EXPECT_EQ(sources->translate(sources->enabled()[1], 2, 0), "в");
    settle(1);
    EXPECT_EQ(sources->currentKeyboardLayout().id, "us 2");
}

TEST_F(X11InputSourcesTest, WhatAnEventTypesIsThatOfTheSelectedLayout) {
    setLayouts("us,de", "", {"us", "de"});
    EXPECT_EQ(sources->characters(24, 0), "=");
    settle(1);
    EXPECT_EQ(sources->characters(24, 0), "") << "a dead key waits for a letter";
    EXPECT_EQ(sources->characters(24, eventFlag::command), "´");
    EXPECT_EQ(sources->characters(12, eventFlag::option), "@");
    EXPECT_EQ(sources->characters(12, eventFlag::option | eventFlag::shift), "Ω");
    EXPECT_EQ(sources->characters(12, eventFlag::shift | eventFlag::control), "Q");
    EXPECT_EQ(sources->characters(36, 0), "\r");
    EXPECT_EQ(sources->characters(49, 0), " ");
    EXPECT_EQ(sources->characters(122, 0), std::nullopt);
    EXPECT_EQ(KeyCombination(Key::caret).character(Sauce(*sources)), "^");
}

TEST_F(X11InputSourcesTest, AnotherSetOfLayoutsIsTold) {
    const Sauce sauce(*sources);
    setLayouts("us", "dvorak", {"us(dvorak)"});
    EXPECT_GE(enabledChanges, 1);
    EXPECT_EQ(selectedChanges, 1);
    EXPECT_EQ(sauce.keyForKeyCode(2), Key::e);
    EXPECT_EQ(sauce.layout.currentKeyboardLayoutInputSource().info.id, "us(dvorak)");
}

TEST_F(X11InputSourcesTest, NamesThatComeAfterTheirKeymapAreMet) {
    setRulesNames("us", "intl");
    ASSERT_TRUE(loop.runUntil([&] { return ids() == Ids{"us(intl)"}; }));
    EXPECT_EQ(enabledChanges, 1);
    EXPECT_EQ(selectedChanges, 1);
}

TEST_F(X11InputSourcesTest, NamesThatDoNotFitTheKeymapGiveWayToItsOwn) {
    setRulesNames("us,de", "");
    ASSERT_TRUE(loop.runUntil([&] { return ids() == Ids{"English (US)"}; }));
    xcb_delete_property(other->get(), other->root(), other->atom("_XKB_RULES_NAMES"));
    other->sync();
    setRulesNames("us", "");
    ASSERT_TRUE(loop.runUntil([&] { return ids() == Ids{"us"}; }));
}

TEST_F(X11InputSourcesTest, TheSameLayoutsSetAgainAreNoChange) {
    setLayouts("us,ru", "", {"us", "ru"});
    settle(1);
    const int before = enabledChanges;
    setLayouts("us,ru");
    settle(0);
    EXPECT_EQ(enabledChanges, before);
}

TEST_F(X11InputSourcesTest, AKeyFromAnotherDeviceIsNoChange) {
    setLayouts("us,ru", "", {"us", "ru"});
    settle(1);
    const int before = enabledChanges;
    for (const std::uint8_t type : {std::uint8_t{XCB_KEY_PRESS}, std::uint8_t{XCB_KEY_RELEASE}})
        xcb_test_fake_input(other->get(), type, KEY_A + 8, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    settle(0);
    EXPECT_EQ(enabledChanges, before);
}

ContractSubject<InputSources> x11InputSources() {
    struct World {
        PollLoop loop;
        std::unique_ptr<X11InputSources> sources = std::move(X11InputSources::open(loop).value());
    };
    const auto world = std::make_shared<World>();
    return {world, *world->sources,
            [world](const std::function<bool()>& condition) { return world->loop.runUntil(condition); }};
}

INSTANTIATE_TEST_SUITE_P(X11, InputSourcesContract, testing::Values(x11InputSources));

TEST(X11InputSourcesWithoutADisplay, FailToOpen) {
    const std::string display = std::getenv("DISPLAY");
    setenv("DISPLAY", ":nowhere", 1);
    PollLoop loop;
    const auto opened = X11InputSources::open(loop);
    setenv("DISPLAY", display.c_str(), 1);
    ASSERT_FALSE(opened);
    EXPECT_FALSE(opened.reason().empty());
}

}  // namespace
}  // namespace tarvix
