#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "keys/Sauce.h"
#include "simulated/SimulatedInputSources.h"

namespace tarvix {
namespace {

using namespace simulatedLayout;
using Names = std::vector<std::string>;

const std::string selectedChanged = "SauceSelectedKeyboardInputSourceChanged";
const std::string enabledChanged = "SauceEnabledKeyboardInputSourcesChanged";
const std::string keyCodesChanged = "SauceSelectedKeyboardKeyCodesChanged";

struct SauceOn {
    explicit SauceOn(std::vector<SimulatedLayout> layouts) : inputSources(std::move(layouts)) {}

    SimulatedInputSources inputSources;
    Sauce sauce{inputSources};
    Names posted;
    Subscription token = sauce.layout.onNotification([this](std::string_view name) { posted.emplace_back(name); });
};

SimulatedLayout renamed(SimulatedLayout layout, std::string id) {
    layout.info.id = std::move(id);
    return layout;
}

TEST(Sauce, OnTheUSLayoutEveryCodeIsItsFixedKey) {
    const SauceOn on({us()});
    for (std::uint16_t code = 0; code <= 126; ++code)
        EXPECT_EQ(on.sauce.keyForKeyCode(code), keyForQwertyKeyCode(code)) << code;
}

TEST(Sauce, OnDvorakAKeyIsWhatItTypes) {
    const SauceOn on({dvorak()});
    EXPECT_EQ(on.sauce.keyForKeyCode(2), Key::e);
    EXPECT_EQ(on.sauce.keyCodeForKey(Key::d), 4);
    EXPECT_EQ(on.sauce.currentKeyCodeForKey(Key::d), 4);
    EXPECT_EQ(on.sauce.keyForKeyCode(4), Key::d);
    EXPECT_EQ(on.sauce.keyForKeyCode(0), Key::a);
}

TEST(Sauce, AKeyThatTheLayoutDoesNotTranslateTakesTheFixedTable) {
    SimulatedLayout layout = us();
    layout.keys.erase(10);
    const SauceOn on({layout});
    EXPECT_FALSE(on.sauce.currentKeyCodeForKey(Key::section));
    EXPECT_EQ(on.sauce.keyForKeyCode(10), Key::section);
    EXPECT_EQ(on.sauce.keyCodeForKey(Key::section), 10);
    EXPECT_FALSE(on.sauce.currentKeyCodeForKey(Key::yen));
    EXPECT_EQ(on.sauce.keyForKeyCode(93), Key::yen);
}

TEST(Sauce, SpecialKeysStandInTheTableWhateverTheLayoutTypes) {
    SimulatedLayout layout = us();
    layout.keys[96] = {"x", "X"};
    const SauceOn on({layout});
    EXPECT_EQ(on.sauce.currentKeyCodeForKey(Key::f5), 96);
    EXPECT_EQ(on.sauce.currentKeyCodeForKey(Key::x), 7);
    EXPECT_EQ(on.sauce.currentKeyCodeForKey(Key::return_), 36);
}

TEST(Sauce, OnAJapaneseLayoutItsOwnKeysAreMet) {
    const SauceOn on({japanese()});
    EXPECT_EQ(on.sauce.currentKeyCodeForKey(Key::atSign), 33);
    EXPECT_EQ(on.sauce.currentKeyCodeForKey(Key::caret), 24);
    EXPECT_EQ(on.sauce.currentKeyCodeForKey(Key::colon), 39);
    EXPECT_EQ(on.sauce.currentKeyCodeForKey(Key::leftBracket), 30);
    EXPECT_EQ(on.sauce.currentKeyCodeForKey(Key::keypadComma), 95);
    EXPECT_EQ(on.sauce.currentKeyCodeForKey(Key::comma), 43);
    EXPECT_EQ(on.sauce.currentKeyCodeForKey(Key::yen), 93);
    EXPECT_EQ(on.sauce.keyForKeyCode(33), Key::atSign);
    EXPECT_EQ(on.sauce.keyForKeyCode(50), Key::grave);
}

TEST(Sauce, TheLowestCodeThatTypesATextWins) {
    SimulatedLayout layout = us();
    layout.keys[3] = {"d", "D"};
    layout.keys[1] = {"d", "D"};
    const SauceOn on({layout});
    EXPECT_EQ(on.sauce.keyCodeForKey(Key::d), 1);
    // A code left without an entry falls back, so two codes can mean one key.
    EXPECT_EQ(on.sauce.keyForKeyCode(2), Key::d);
}

TEST(Sauce, ACodeAboveTheTableIsNoKey) {
    const SauceOn on({us()});
    EXPECT_FALSE(on.sauce.keyForKeyCode(127));
    EXPECT_FALSE(on.sauce.keyForKeyCode(1000));
}

TEST(Sauce, AnInputMethodWithoutALayoutBehavesLikeTheUSLayout) {
    const SauceOn on({inputMethod(), dvorak()});
    EXPECT_EQ(on.sauce.currentKeyCodes(), nullptr);
    EXPECT_FALSE(on.sauce.currentKeyCodeForKey(Key::d));
    EXPECT_EQ(on.sauce.keyCodeForKey(Key::d), 2);
    EXPECT_EQ(on.sauce.keyForKeyCode(2), Key::d);
}

TEST(Sauce, TablesOfOtherSourcesCanBeAsked) {
    const SauceOn on({us(), dvorak(), inputMethod()});
    const auto& sources = on.sauce.layout.inputSources();
    ASSERT_EQ(sources.size(), 3u);
    EXPECT_EQ(on.sauce.keyCodeForKey(Key::d, sources[0]), 2);
    EXPECT_EQ(on.sauce.keyCodeForKey(Key::d, sources[1]), 4);
    EXPECT_FALSE(on.sauce.keyCodeForKey(Key::d, sources[2]));
    EXPECT_EQ(on.sauce.keyCodes(sources[2]), nullptr);
}

TEST(Sauce, SelectingAnotherLayoutIsFollowedAndTold) {
    SauceOn on({us(), dvorak()});
    on.inputSources.select("us(dvorak)");
    EXPECT_EQ(on.sauce.keyCodeForKey(Key::d), 4);
    EXPECT_EQ(on.sauce.layout.currentKeyboardLayoutInputSource().info.id, "us(dvorak)");
    EXPECT_EQ(on.posted, (Names{selectedChanged, keyCodesChanged}));
}

TEST(Sauce, SelectingALayoutWithTheSameTableTellsOfTheSelectionAlone) {
    SauceOn on({us(), renamed(us(), "us(copy)")});
    on.inputSources.select("us(copy)");
    EXPECT_EQ(on.posted, (Names{selectedChanged}));
}

TEST(Sauce, SelectingAnInputMethodTellsOfTheSelectionAlone) {
    SauceOn on({us(), inputMethod()});
    on.inputSources.select("kana-kanji");
    on.inputSources.select("us");
    EXPECT_EQ(on.posted, (Names{selectedChanged, selectedChanged}));
}

TEST(Sauce, SelectingTheSelectedLayoutTellsNothing) {
    SauceOn on({us(), dvorak()});
    on.inputSources.select("us");
    EXPECT_EQ(on.posted, Names{});
}

TEST(Sauce, SwitchingBackCostsNoTranslation) {
    SauceOn on({us(), dvorak()});
    const std::size_t before = on.inputSources.translations();
    EXPECT_GT(before, 0u);
    on.inputSources.select("us(dvorak)");
    on.inputSources.select("us");
    EXPECT_EQ(on.inputSources.translations(), before);
}

TEST(Sauce, ANewSetOfSourcesIsMappedAnewAndTold) {
    SauceOn on({us(), dvorak()});
    const InputSource before = on.sauce.layout.inputSources()[1];
    SimulatedLayout changed = us();
    changed.keys[2] = {"z", "Z"};
    changed.keys[6] = {"d", "D"};
    on.inputSources.setEnabled({changed, japanese()});
    EXPECT_EQ(on.posted, (Names{enabledChanged}));
    EXPECT_EQ(on.sauce.keyCodeForKey(Key::d), 6);
    EXPECT_EQ(on.sauce.keyForKeyCode(2), Key::z);
    EXPECT_EQ(on.sauce.keyCodes(before), nullptr);
    EXPECT_EQ(on.sauce.layout.inputSources()[1].info.id, "jp");
}

TEST(Sauce, ARemovedLayoutThatWasSelectedGivesWayToTheNextOne) {
    SauceOn on({us(), dvorak()});
    on.inputSources.setEnabled({dvorak()});
    EXPECT_EQ(on.posted, (Names{enabledChanged, selectedChanged}));
    EXPECT_EQ(on.sauce.keyCodeForKey(Key::d), 4);
}

TEST(Sauce, FollowsTheASCIICapableSourceEvenWhereTheLayoutStays) {
    SauceOn on({russian(), us()});
    EXPECT_EQ(on.sauce.layout.currentASCIICapableInputSource().info.id, "us");
    on.inputSources.setEnabled({russian(), dvorak()});
    on.inputSources.select("ru");
    EXPECT_EQ(on.posted, (Names{enabledChanged}));
    EXPECT_EQ(on.sauce.layout.currentASCIICapableInputSource().info.id, "us(dvorak)");
}

TEST(Sauce, OnALayoutWithoutLatinLettersTheFixedTableServes) {
    const SauceOn on({russian(), us()});
    EXPECT_EQ(on.sauce.keyForKeyCode(2), Key::d);
    EXPECT_EQ(on.sauce.keyCodeForKey(Key::d), 2);
    EXPECT_EQ(on.sauce.keyForKeyCode(44), Key::period);
}

TEST(KeyboardLayoutText, IsTheSpecialTextElseTheLayouts) {
    const SauceOn on({us()});
    const KeyboardLayout& layout = on.sauce.layout;
    EXPECT_EQ(layout.text(49, 0), "Space");
    EXPECT_EQ(layout.text(0, 0), "a");
    EXPECT_EQ(layout.text(0, carbonModifier::shift), "A");
    EXPECT_EQ(layout.text(0, carbonModifier::option), "å");
    EXPECT_EQ(layout.text(0, carbonModifier::option | carbonModifier::shift), "Å");
    EXPECT_EQ(layout.text(0, carbonModifier::command | carbonModifier::control), "a");
    EXPECT_EQ(layout.text(93, 0), std::nullopt);
}

TEST(KeyboardLayoutText, IsAskedOfTheLayoutInTheCarbonCoding) {
    SauceOn on({us(), dvorak()});
    EXPECT_EQ(on.sauce.text(2, 0), "d");
    on.inputSources.select("us(dvorak)");
    EXPECT_EQ(on.sauce.text(2, 0), "e");
    EXPECT_EQ(on.sauce.text(2, carbonModifier::shift), "E");
    EXPECT_EQ(on.sauce.text(36, carbonModifier::shift), "↩");
}

TEST(KeyboardLayoutText, FallsBackOnTheASCIICapableSource) {
    const SauceOn on({inputMethod(), us()});
    EXPECT_EQ(on.sauce.layout.text(0, 0), "a");
}

TEST(InputSource, IsToldApartByIdAndMode) {
    InputSource a{us().info};
    InputSource b = a;
    b.info.localizedName = "another";
    b.info.isSelected = true;
    EXPECT_EQ(a, b);
    EXPECT_EQ(InputSource::Hash{}(a), InputSource::Hash{}(b));
    b.info.modeID = "";
    EXPECT_NE(a, b);
    a.info.modeID = "";
    EXPECT_EQ(a, b);
    a.info.id = "other";
    EXPECT_NE(a, b);
}

TEST(ModifierTransformer, CarriesFourBitsAndDropsTheRest) {
    EXPECT_EQ(ModifierTransformer::carbonFlags(0x100000), 0x100u);
    EXPECT_EQ(ModifierTransformer::carbonFlags(0x20000), 0x200u);
    EXPECT_EQ(ModifierTransformer::carbonFlags(0x80000), 0x800u);
    EXPECT_EQ(ModifierTransformer::carbonFlags(0x40000), 0x1000u);
    EXPECT_EQ(ModifierTransformer::carbonFlags(0xFFFFFFFFFFFFFFFF), 0x1B00u);
    EXPECT_EQ(ModifierTransformer::eventFlags(0xFFFFFFFF), 0x1E0000u);
    EXPECT_EQ(ModifierTransformer::eventFlags(0x300), 0x120000u);
}

}  // namespace
}  // namespace tarvix
