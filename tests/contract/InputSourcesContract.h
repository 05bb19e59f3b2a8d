// What every service of keyboard layouts keeps to, whatever layouts are set up.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "platform/Events.h"
#include "platform/InputSources.h"
#include "tests/contract/Subject.h"

namespace tarvix {

class InputSourcesContract : public testing::TestWithParam<ContractFactory<InputSources>> {
protected:
    // The texts that a source's keys give in one modifier state.
    std::set<std::string> typed(const InputSourceInfo& source, std::uint32_t modifierState) {
        std::set<std::string> texts;
        for (std::uint16_t keyCode = 0; keyCode < 128; ++keyCode) {
            if (const auto text = sources.translate(source, keyCode, modifierState)) texts.insert(*text);
        }
        return texts;
    }

    ContractSubject<InputSources> subject_ = GetParam()();
    InputSources& sources = subject_.service;
};

TEST_P(InputSourcesContract, OneOfTheEnabledSourcesIsSelectedAndCurrent) {
    int selected = 0;
    for (const InputSourceInfo& source : sources.enabled()) {
        EXPECT_TRUE(source.isEnabled);
        if (!source.isSelected) continue;
        ++selected;
        EXPECT_EQ(source, sources.currentKeyboardLayout());
    }
    EXPECT_EQ(selected, 1);
}

TEST_P(InputSourcesContract, EachSourceHasAnIdOfItsOwn) {
    std::set<std::string> ids;
    for (const InputSourceInfo& source : sources.enabled()) {
        EXPECT_FALSE(source.id.empty());
        EXPECT_TRUE(ids.insert(source.id).second) << source.id;
    }
}

TEST_P(InputSourcesContract, TheASCIICapableSourceIsTheCurrentOneWhereThatIsCapable) {
    const InputSourceInfo current = sources.currentKeyboardLayout();
    const InputSourceInfo capable = sources.currentASCIICapable();
    EXPECT_TRUE(!current.isASCIICapable || capable == current) << capable.id;
    const auto enabled = sources.enabled();
    EXPECT_EQ(capable.isASCIICapable,
              std::any_of(enabled.begin(), enabled.end(), [](const auto& source) { return source.isASCIICapable; }));
}

TEST_P(InputSourcesContract, AnASCIICapableLayoutTypesTheLetters) {
    int layouts = 0;
    for (const InputSourceInfo& source : sources.enabled()) {
        if (!source.isASCIICapable || !source.hasLayoutData) continue;
        ++layouts;
        const auto plain = typed(source, 0);
        const auto shifted = typed(source, 2);
        for (char letter = 'a'; letter <= 'z'; ++letter) {
            EXPECT_TRUE(plain.contains(std::string(1, letter))) << source.id << letter;
            EXPECT_TRUE(shifted.contains(std::string(1, static_cast<char>(letter - 'a' + 'A')))) << source.id << letter;
        }
    }
    EXPECT_GT(layouts, 0);
}

TEST_P(InputSourcesContract, TheKeypadTypesDigits) {
    const InputSourceInfo source = sources.currentASCIICapable();
    EXPECT_EQ(sources.translate(source, 82, 0), "0");
    EXPECT_EQ(sources.translate(source, 89, 0), "7");
    EXPECT_EQ(sources.translate(source, 91, 0), "8");
}

TEST_P(InputSourcesContract, NoKeyTypesAnEmptyTextOrAControlCharacter) {
    for (const InputSourceInfo& source : sources.enabled()) {
        for (const std::uint32_t modifierState : {0u, 2u, 8u, 10u}) {
            for (const std::string& text : typed(source, modifierState)) {
                ASSERT_FALSE(text.empty());
                EXPECT_GE(static_cast<unsigned char>(text[0]), 0x20) << source.id;
                EXPECT_NE(text[0], 0x7f) << source.id;
            }
        }
    }
}

TEST_P(InputSourcesContract, AnEventTypesWhatItsKeyDoesOnTheSelectedSource) {
    const InputSourceInfo current = sources.currentKeyboardLayout();
    int compared = 0;
    for (std::uint16_t keyCode = 0; keyCode < 128; ++keyCode) {
        const auto text = sources.translate(current, keyCode, 0);
        if (!text) continue;
        ++compared;
        EXPECT_EQ(sources.characters(keyCode, eventFlag::command), text) << keyCode;
        EXPECT_EQ(sources.characters(keyCode, eventFlag::command | eventFlag::shift),
                  sources.translate(current, keyCode, 2))
            << keyCode;
    }
    EXPECT_EQ(compared > 0, current.hasLayoutData);
    EXPECT_EQ(sources.characters(54, 0), std::nullopt) << "no key";
}

TEST_P(InputSourcesContract, AnUnknownSourceTypesNothing) {
    InputSourceInfo unknown = sources.currentASCIICapable();
    unknown.id = "nowhere";
    EXPECT_TRUE(typed(unknown, 0).empty());
}

}  // namespace tarvix
