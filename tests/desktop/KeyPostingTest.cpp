// What text fields of the toolkits make of posted keys, on each layout and whatever is held.
#include <gtest/gtest.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "keys/KeyCombinationAdaptor.h"
#include "keys/Sauce.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Events.h"
#include "linux/x11/X11InputSources.h"
#include "linux/x11/X11KeyState.h"
#include "tests/desktop/PollLoop.h"
#include "tests/desktop/X11Victim.h"
#include "tests/desktop/play/Fixture.h"

namespace tarvix {
namespace {

// By the X server's keycodes.
constexpr std::uint8_t handsA = 38, handsD = 40, handsS = 39, handsBackspace = 22;
constexpr std::uint8_t shift = 50, control = 37, alt = 64, super = 133, altGr = 92, capsLock = 66, numLock = 77;

constexpr auto accelerator = "accelerator";
constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz";

struct Layout {
    const char* layouts;
    const char* variants;
    std::uint8_t group;
    const char* selected;
    const char* letters;  // what the keys from `a` to `z` type
};
constexpr Layout layouts[] = {
    {"us", "", 0, "us", letters.data()},
    {"us", "dvorak", 0, "us(dvorak)", letters.data()},
    {"us", "colemak", 0, "us(colemak)", letters.data()},
    {"us", "intl", 0, "us(intl)", letters.data()},
    {"fr", "", 0, "fr", letters.data()},
    {"de", "", 0, "de", letters.data()},
    {"jp", "", 0, "jp", letters.data()},
    {"us,ru", "", 0, "us", letters.data()},
    {"us,ru", "", 1, "ru", "фисвуапршолдьтщзйкыегмцчня"},  // by the fixed places
    {"ru,us", "", 0, "ru", "фисвуапршолдьтщзйкыегмцчня"},
    {"ru,us", "", 1, "us", letters.data()},
    {"de,us", ",dvorak", 1, "us(dvorak)", letters.data()},
};

template <class Toolkit>
class KeyPosting : public testing::Test {
protected:
    static void SetUpTestSuite() { fixture = std::make_unique<Fixture>(Toolkit::script); }
    static void TearDownTestSuite() { fixture.reset(); }

    void SetUp() override {
        ASSERT_TRUE(fixture->isReady());
        connection_->watch(loop_);
        setLayout(layouts[0]);
        if (!text().empty()) {
            hand_.keyDown(control);
            hand_.tap(handsA);
            hand_.keyUp(control);
            hand_.tap(handsBackspace);
            expectText("");
        }
    }
    // Whatever a test did, nothing is held or locked afterwards.
    void TearDown() override {
        expectNothingHeld();
        EXPECT_TRUE(keysDownForApplications(*connection_).none());
    }

    void setLayout(const Layout& layout) {
        const std::string command =
            std::string("setxkbmap -layout '") + layout.layouts + "' -variant '" + layout.variants + "' -option ''";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        lockGroup(*connection_, layout.group);
        connection_->sync();
        ASSERT_TRUE(loop_.runUntil([&] { return sources_->currentKeyboardLayout().id == layout.selected; }))
            << sources_->currentKeyboardLayout().id;
    }

    void post(const KeyCombination& combination) {
        for (const KeyEvent& event : KeyCombinationAdaptor::toCGEvents(combination, sauce_))
            EXPECT_TRUE(events_->post(event));
    }
    void post(Key key, KeyModifiers modifiers = {}) { post(KeyCombination(key, modifiers)); }
    void expectNothingHeld() {
        const auto state = [&] { return int{modifierStates(*connection_, {kMasterKeyboard}).front().effective()}; };
        EXPECT_TRUE(loop_.runUntil([&] { return state() == 0; })) << state();
    }
    void typeByHand(std::uint8_t keycode) { hand_.tap(keycode); }

    static std::string text() {
        std::string text;
        for (const FixtureClick& line : fixture->clicks())
            if (line.name == "text") text = line.modifiers;
        return text;
    }
    void expectText(const std::string& wanted) {
        EXPECT_TRUE(loop_.runUntil([&] { return text() == wanted; })) << text() << "\nis not\n" << wanted;
    }
    void expectAccelerators(std::size_t count) {
        EXPECT_TRUE(loop_.runUntil([&] { return accelerators() == count; })) << accelerators();
    }
    static std::size_t accelerators() { return fixture->keys().size() / std::string_view(accelerator).size(); }

    // Every key that has a place on the layout, with what it is said to type. Dead keys wait for a letter.
    std::vector<std::pair<Key, std::string>> typingKeys() {
        std::vector<std::pair<Key, std::string>> keys;
        for (const auto& [key, keyCode] : *sauce_.currentKeyCodes()) {
            const auto text = sources_->characters(keyCode, 0);
            if (text && !text->empty() && static_cast<unsigned char>(text->front()) >= ' ' && text != "\x7f")
                keys.emplace_back(key, KeyCombination(key).character(sauce_));
        }
        return keys;
    }

    static std::unique_ptr<Fixture> fixture;

    PollLoop loop_;
    std::unique_ptr<X11Connection> connection_ = std::move(X11Connection::open().value());
    std::unique_ptr<X11Events> events_ = std::move(X11Events::open(*connection_).value());
    std::unique_ptr<X11InputSources> sources_ = std::move(X11InputSources::open(loop_).value());
    Sauce sauce_{*sources_};
    Hardware hand_;
};
template <class Toolkit>
std::unique_ptr<Fixture> KeyPosting<Toolkit>::fixture;

struct Gtk3 {
    static constexpr auto name = "Gtk3", script = "gtk3-field.py";
};
struct Gtk4 {
    static constexpr auto name = "Gtk4", script = "gtk4-field.py";
};
struct Qt6 {
    static constexpr auto name = "Qt6", script = "qt6-field.py";
};
struct Names {
    template <class Toolkit>
    static std::string GetName(int) {
        return Toolkit::name;
    }
};
using Toolkits = testing::Types<Gtk3, Gtk4, Qt6>;
TYPED_TEST_SUITE(KeyPosting, Toolkits, Names);

TYPED_TEST(KeyPosting, OnEveryLayoutTheKeyOfALetterTypesIt) {
    std::string all;
    for (const Layout& layout : layouts) {
        SCOPED_TRACE(std::string(layout.layouts) + " " + layout.selected);
        this->setLayout(layout);
        for (const char letter : letters) this->post(*keyFor(std::string_view(&letter, 1)));
        all += layout.letters;
        this->expectText(all);
    }
}

TYPED_TEST(KeyPosting, OnEveryLayoutEachKeyTypesItsCharacter) {
    std::string all;
    for (const Layout& layout : layouts) {
        SCOPED_TRACE(std::string(layout.layouts) + " " + layout.selected);
        this->setLayout(layout);
        const auto keys = this->typingKeys();
        EXPECT_GT(keys.size(), 20u);
        for (const auto& [key, character] : keys) {
            this->post(key);
            all += character;
        }
        for (const Key key : {Key::a, Key::q, Key::z, Key::m}) {
            this->post(key, {.shift = true});
            all += KeyCombination(key, {.shift = true}).character(this->sauce_);
        }
        this->expectText(all);
    }
}

TYPED_TEST(KeyPosting, OnEveryLatinLayoutAShortcutIsThatOfItsLetter) {
    std::size_t count = this->accelerators();
    for (const Layout& layout : layouts) {
        if (layout.letters != letters.data()) continue;
        SCOPED_TRACE(layout.selected);
        this->setLayout(layout);
        this->post(Key::d, {.control = true});
        this->expectAccelerators(++count);
    }
}

TYPED_TEST(KeyPosting, WhateverIsHeldAKeyTypesWhatItTypesAlone) {
    const std::vector<std::vector<std::uint8_t>> held = {
        {shift},        {control},        {alt},
        {super},        {altGr},          {shift, super},
        {control, alt}, {shift, control}, {shift, control, alt, super}};
    std::string all;
    for (const auto& keys : held) {
        for (const std::uint8_t key : keys) this->hand_.keyDown(key);
        this->post(Key::a);
        this->post(Key::b, {.shift = true});
        this->expectText(all += "aB");
        for (const std::uint8_t key : keys) this->hand_.keyUp(key);
        this->expectNothingHeld();
        // Neither is anything left, nor has a lone Alt or Super opened a menu.
        this->typeByHand(handsS);
        this->expectText(all += "s");
    }
}

TYPED_TEST(KeyPosting, AHeldModifierGoesOnCountingForWhatTheHandTypes) {
    const std::size_t count = this->accelerators();
    this->hand_.keyDown(shift);
    this->post(Key::a);
    this->typeByHand(handsS);
    this->expectText("aS");
    this->hand_.keyUp(shift);
    this->hand_.keyDown(control);
    this->post(Key::b);
    this->typeByHand(handsD);
    this->expectText("aSb");
    this->expectAccelerators(count + 1);
    this->hand_.keyUp(control);
}

TYPED_TEST(KeyPosting, AShortcutIsMetWhateverIsHeld) {
    std::size_t count = this->accelerators();
    for (const std::uint8_t held : {shift, alt, super, control}) {
        this->hand_.keyDown(held);
        this->post(Key::d, {.control = true});
        this->expectAccelerators(++count);
        this->hand_.keyUp(held);
        this->expectNothingHeld();
    }
}

TYPED_TEST(KeyPosting, CapsLockPlaysNoPart) {
    this->typeByHand(capsLock);
    this->post(Key::a);
    this->post(Key::b, {.shift = true});
    this->typeByHand(handsS);
    this->expectText("aBS");
    this->typeByHand(capsLock);
}

TYPED_TEST(KeyPosting, TheKeypadTypesDigitsWithNumLockOnAndOff) {
    this->post(Key::keypadSeven);
    this->expectText("7");
    this->typeByHand(numLock);
    this->post(Key::keypadEight);
    this->post(Key::a);
    this->expectText("78a");
    this->typeByHand(numLock);
}

TYPED_TEST(KeyPosting, APostedControlASelectsEverything) {
    this->post(Key::a);
    this->post(Key::b);
    this->hand_.keyDown(shift);
    this->post(Key::a, {.control = true});
    this->post(Key::c);
    this->expectText("c");
    this->hand_.keyUp(shift);
}

}  // namespace
}  // namespace tarvix
