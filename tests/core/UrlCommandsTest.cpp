// What addresses of this program's scheme do.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "base/UrlComponents.h"
#include "core/UrlCommands.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

class UrlCommandsTest : public testing::Test {
protected:
    UrlCommandsTest() {
        desk.window("Mail")
            .button("Save", {{10, 20}, {60, 20}})
            .button("Save as", {{90, 20}, {60, 20}})
            .button("Send", {{170, 20}, {60, 20}});
        core.start();
        desk.clearJournal();
    }

    void open(const Texts& urls) { handleURLs(urls, core); }
    void open(const std::string& url) { open(Texts{url}); }
    bool isUp() const { return desk.panels.input().isVisible(); }
    const std::string& text() { return core.theInput().value(); }
    Texts shownAndHidden() const { return desk.journal({Topic::theInput}); }
    Texts targets() {
        desk.settle();
        Texts titles;
        for (const Target& target : core.tarvixEngine().targets()) titles.push_back(target.element.title.value_or(""));
        return titles;
    }
    // With The Input down and with it up.
    void expectNoEffect(const std::string& url) {
        for (const bool up : {false, true}) {
            if (isUp() != up) core.toggleTheInput();
            if (up) core.theInput().enter("send");
            desk.settle();
            desk.clearJournal();
            const std::string before = text();
            open(url);
            desk.settle();
            EXPECT_THAT(desk.journal(), IsEmpty()) << url.substr(0, 80);
            EXPECT_EQ(text(), before) << url.substr(0, 80);
        }
        core.toggleTheInput();
    }

    SimulatedDesktop desk;
    AppCore core{desk.platform()};
};

// --- The three commands

TEST_F(UrlCommandsTest, OpenBringsTheInputUpWithItsTextAndTheTargetsFollowWithoutAKey) {
    open("tarvix://openTheInput?with=save");
    EXPECT_TRUE(isUp());
    EXPECT_EQ(text(), "save");
    EXPECT_EQ(desk.panels.input().text(), "save");
    EXPECT_THAT(targets(), ElementsAre("Save", "Save as"));
}

TEST_F(UrlCommandsTest, OpenWhileTheInputIsUpDoesNothingNotEvenToTheText) {
    open("tarvix://openTheInput?with=save");
    desk.settle();
    desk.clearJournal();
    open("tarvix://openTheInput?with=send");
    desk.settle();
    EXPECT_THAT(desk.journal(), IsEmpty());
    EXPECT_EQ(text(), "save");
}

TEST_F(UrlCommandsTest, CloseWhileTheInputIsDownDoesNothing) {
    open("tarvix://closeTheInput");
    open("tarvix://closeTheInput?with=save");
    EXPECT_THAT(desk.journal(), IsEmpty());
    EXPECT_EQ(text(), "");
}

TEST_F(UrlCommandsTest, CloseEndsTheSearchAndStopsItsReadingWhateverItsQuery) {
    open("tarvix://openTheInput?with=save");
    ASSERT_TRUE(isUp());
    desk.userDefaults.set("dontFlushTheInput", true);
    open("tarvix://closeTheInput?with=send");
    EXPECT_FALSE(isUp());
    EXPECT_EQ(text(), "save");
    EXPECT_THAT(targets(), IsEmpty()) << "a reading that goes on would show them";
    EXPECT_EQ(core.tarvixEngine().allElements().size(), 3u);
}

TEST_F(UrlCommandsTest, ToggleTwiceOpensAndCloses) {
    open("tarvix://toggleTheInput?with=save");
    EXPECT_TRUE(isUp());
    EXPECT_EQ(text(), "save");
    open("tarvix://toggleTheInput?with=save");
    EXPECT_FALSE(isUp());
    EXPECT_THAT(shownAndHidden(), ElementsAre("The Input shown", "The Input hidden"));
}

TEST_F(UrlCommandsTest, AToggleOfAnOpenPanelReplacesTheTextAndThenClosesIt) {
    desk.userDefaults.set("dontFlushTheInput", true);
    open("tarvix://openTheInput?with=save");
    desk.settle();
    open("tarvix://toggleTheInput?with=send");
    EXPECT_FALSE(isUp());
    open("tarvix://openTheInput");
    EXPECT_EQ(text(), "send") << "what the next search starts with";
    EXPECT_THAT(targets(), ElementsAre("Send"));
}

TEST_F(UrlCommandsTest, WhereTextsAreNotKeptThatTextGoesWithThePanel) {
    open("tarvix://openTheInput?with=save");
    open("tarvix://toggleTheInput?with=send");
    EXPECT_EQ(text(), "");
}

// --- The prefix rule

TEST_F(UrlCommandsTest, WhateverFollowsTheCommandIsAccepted) {
    open("tarvix://openTheInputNow");
    EXPECT_TRUE(isUp());
    open("tarvix://closeTheInput/at/once#now");
    EXPECT_FALSE(isUp());
    open("tarvix://openTheInput/?with=save");
    EXPECT_TRUE(isUp());
    EXPECT_EQ(text(), "save");
}

TEST_F(UrlCommandsTest, NothingElseIsACommand) {
    for (const char* url :
         {"tarvix://OpenTheInput", "Tarvix://openTheInput", "TARVIX://toggleTheInput", "tarvix:openTheInput",
          "tarvix:///openTheInput", "tarvix://", "tarvix://toggle", "tarvix://toggleTheInpu", "http://openTheInput",
          "xtarvix://openTheInput", "tarvix://x?openTheInput", "", "openTheInput"})
        expectNoEffect(url);
}

// --- The query

TEST_F(UrlCommandsTest, OnlyTheFirstItemNamedWithCounts) {
    open("tarvix://openTheInput?x=1&with=save&with=send");
    EXPECT_EQ(text(), "save");
}

TEST_F(UrlCommandsTest, TheNameIsComparedToTheLetter) {
    open("tarvix://openTheInput?With=save&WITH=save&within=save&wit=save");
    EXPECT_TRUE(isUp());
    EXPECT_EQ(text(), "");
}

TEST_F(UrlCommandsTest, AnEmptyValueEmptiesTheTextAndAMissingOneLeavesItAlone) {
    desk.userDefaults.set("dontFlushTheInput", true);
    open("tarvix://toggleTheInput?with=save");
    open("tarvix://closeTheInput");
    open("tarvix://toggleTheInput?with");
    EXPECT_EQ(text(), "save");
    open("tarvix://toggleTheInput?with&with=send");
    EXPECT_EQ(text(), "save") << "the first item of the name is the one without a value";
    open("tarvix://toggleTheInput?with=");
    EXPECT_TRUE(isUp());
    EXPECT_EQ(text(), "");
}

TEST_F(UrlCommandsTest, TheTextIsTakenAsItStands) {
    open("tarvix://openTheInput?with=%20save+%C3%A4%26%3D%25%20");
    EXPECT_EQ(text(), " save+\u00E4&=% ");
}

TEST_F(UrlCommandsTest, TheTextThatIsSetForgetsWhatTheLastSearchWasAbout) {
    open("tarvix://openTheInput?with=send");
    ASSERT_THAT(targets(), ElementsAre("Send"));
    open("tarvix://closeTheInput");
    open("tarvix://openTheInput?with=save");
    EXPECT_FALSE(core.tarvixEngine().primaryTarget()) << "Return would click it before the reading is over";
}

// --- When there is nothing to do

TEST_F(UrlCommandsTest, OfSeveralAddressesTheFirstAloneCounts) {
    open(Texts{"tarvix://openTheInput?with=save", "tarvix://closeTheInput", "tarvix://toggleTheInput?with=send"});
    EXPECT_TRUE(isUp());
    EXPECT_EQ(text(), "save");
    open(Texts{"https://example.org", "tarvix://closeTheInput"});
    EXPECT_TRUE(isUp());
}

TEST_F(UrlCommandsTest, NoAddressAtAllDoesNothing) {
    open(Texts{});
    EXPECT_THAT(desk.journal(), IsEmpty());
}

TEST(UrlCommands, BeforeTheStartAddressesAreDroppedAndNotKept) {
    SimulatedDesktop desk;
    desk.window("Mail");
    AppCore core(desk.platform());
    handleURLs(Texts{"tarvix://openTheInput?with=save"}, core);
    EXPECT_THAT(desk.journal(), IsEmpty());
    core.start();
    desk.settle();
    EXPECT_FALSE(desk.panels.input().isVisible());
    EXPECT_EQ(core.theInput().value(), "");
}

// --- What nobody means

TEST_F(UrlCommandsTest, AnAddressThatIsTooLongChangesNothing) {
    const std::string command = "tarvix://toggleTheInput?with=";
    expectNoEffect(command + std::string(kLongestUrl + 1 - command.size(), 'a'));
    expectNoEffect(command + std::string(8U << 20U, 'a'));
    expectNoEffect("tarvix://closeTheInput" + std::string(8U << 20U, '%'));
    open(command + std::string(kLongestUrl - command.size(), 'a'));
    EXPECT_TRUE(isUp());
    EXPECT_EQ(text().size(), kLongestUrl - command.size());
}

TEST_F(UrlCommandsTest, WhatIsNoAddressChangesNothingHoweverWellItBegins) {
    for (const char* end : {"?with=%", "?with=%4", "?with=%zz", "?with=100%&x", " ?with=save", "?with=save as",
                            "?with=a\tb", "?with=a\nb", "?with=a\x7F", "?with=\"save\"", "?with=<save>", "?with=\xFF",
                            "?with=\xC0\xAF", "?with=%FF", "?with=%C0%AF", "?with=%ED%A0%80", "?with=%F5%80%80%80"})
        for (const char* command : {"tarvix://openTheInput", "tarvix://closeTheInput", "tarvix://toggleTheInput"})
            expectNoEffect(std::string(command) + end);
}

TEST_F(UrlCommandsTest, ControlCharactersBehindPercentSignsChangeNothing) {
    for (const char* code : {"%00", "%01", "%09", "%0A", "%0d", "%1B", "%7F", "%C2%85", "%E2%80%A8"}) {
        expectNoEffect(std::string("tarvix://toggleTheInput?with=save") + code);
        expectNoEffect(std::string("tarvix://openTheInput?with=") + code + "save");
        expectNoEffect(std::string("tarvix://toggleTheInput?with=save&x=") + code);
    }
}

TEST_F(UrlCommandsTest, ABinaryZeroEndsNothingEarly) {
    expectNoEffect(std::string("tarvix://openTheInput\0?with=save", 33));
    expectNoEffect(std::string("tarvix://toggleTheInput?with=save\0", 34));
}

// The same bytes at each run: a linear congruential generator.
TEST_F(UrlCommandsTest, NoiseAfterACommandOpensOrClosesItOrDoesNothingAndNeverPutsNoiseIntoTheText) {
    std::uint32_t state = 20;
    const auto next = [&state](std::uint32_t below) {
        state = state * 1664525U + 1013904223U;
        return (state >> 8U) % below;
    };
    const std::string likely = "%0123456789ABCDEFabcdef?&=#+with/:;";
    int accepted = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string url = next(2) == 0 ? "tarvix://toggleTheInput" : "tarvix://openTheInput?with=";
        for (std::uint32_t length = next(24); length > 0; --length)
            url.push_back(next(3) > 0 ? likely[next(static_cast<std::uint32_t>(likely.size()))]
                                      : static_cast<char>(next(256)));
        const bool wasUp = isUp();
        const std::string before = text();
        open(url);
        accepted += isUp() != wasUp ? 1 : 0;
        if (isUp() == wasUp) {
            ASSERT_EQ(text(), before) << url;
        }
        for (const char c : text()) ASSERT_GE(static_cast<unsigned char>(c), 0x20) << url;
        ASSERT_TRUE(encodedForQuery(text())) << "not UTF-8: " << url;
        if (isUp()) core.toggleTheInput();
    }
    EXPECT_GT(accepted, 500);
    EXPECT_LT(accepted, 19500);
}

}  // namespace
}  // namespace tarvix
