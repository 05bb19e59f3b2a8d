#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "search/SearchEngine.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

struct Texts {
    std::string roleDescription = {};
    std::optional<std::string> label = {}, title = {}, help = {}, value = {};
};

AccessibilityElement element(const Texts& texts, double x = 0) {
    AccessibilityElement made;
    made.position = {x, 0};
    made.roleDescription = texts.roleDescription;
    made.label = texts.label;
    made.title = texts.title;
    made.help = texts.help;
    made.value = texts.value;
    return made;
}

AccessibilityElement titled(const std::string& title) { return element({.title = title}); }

class Matching : public testing::Test {
protected:
    void setFlavor(const std::string& flavor) { desk_.userDefaults.set("fuzzyMatchingFlavor", flavor); }
    std::vector<double> filtered(std::string_view query) {
        std::vector<double> places;
        for (const AccessibilityElement& each : engine_.filteredElements(candidates_, query))
            places.push_back(each.position.x);
        return places;
    }

    SimulatedDesktop desk_;
    SearchEngine engine_{desk_.platform()};
    OrderedSet<AccessibilityElement> candidates_ = {
        element({.title = "hello friend"}, 0),
        element({}, 1),
        element({.roleDescription = "button", .title = "friend"}, 2),
    };
};

using Places = std::vector<double>;

TEST_F(Matching, AnEmptyQueryYieldsNothing) {
    for (const char* flavor : {"tarvixClassic", "tarvixExtended"}) {
        setFlavor(flavor);
        EXPECT_EQ(filtered(""), Places());
    }
}

TEST_F(Matching, AStarYieldsEveryCandidateInEitherFlavor) {
    for (const char* flavor : {"tarvixClassic", "tarvixExtended"}) {
        setFlavor(flavor);
        EXPECT_EQ(filtered("*"), (Places{0, 1, 2}));
        const OrderedSet<AccessibilityElement> textless = {element({}, 5)};
        EXPECT_EQ(engine_.filteredElements(textless, "*"), textless);
    }
}

TEST_F(Matching, AStarAmongOtherCharactersIsAnOrdinaryCharacter) {
    EXPECT_EQ(filtered("* "), Places());
    EXPECT_EQ(filtered("**"), Places());
    EXPECT_TRUE(matchesClassic(titled("5 * 3"), "* "));
}

TEST_F(Matching, AQueryOfSpacesOnlyYieldsEveryCandidate) {
    for (const char* flavor : {"tarvixClassic", "tarvixExtended"}) {
        setFlavor(flavor);
        EXPECT_EQ(filtered(" "), (Places{0, 1, 2}));
        EXPECT_EQ(filtered("   "), (Places{0, 1, 2}));
    }
}

TEST_F(Matching, NoCandidatesYieldNothing) {
    candidates_.clear();
    EXPECT_EQ(filtered("a"), Places());
    EXPECT_EQ(filtered("*"), Places());
    EXPECT_EQ(filtered(" "), Places());
}

TEST(MatchingClassic, EveryTermMustOccurSomewhereInAnyOrder) {
    const AccessibilityElement button = element({.roleDescription = "button", .title = "hello friend"});
    for (const char* query : {"h f bu", "b fr hel", "hell", "hel ell", "  hell  ", "friend hello button"})
        EXPECT_TRUE(matchesClassic(button, query)) << query;
    for (const char* query : {"h f bux", "hello  friends", "hf"}) EXPECT_FALSE(matchesClassic(button, query)) << query;
}

TEST(MatchingClassic, CaseAndAccentsDoNotCount) {
    EXPECT_TRUE(matchesClassic(titled("Café"), "CAFE"));
    EXPECT_TRUE(matchesClassic(titled("CAFE"), "café"));
    EXPECT_TRUE(matchesClassic(titled("Cafe\u0301"), "CAFÉ"));
}

TEST(MatchingClassic, ATermOfMarksAloneMatchesEverything) {
    EXPECT_TRUE(matchesClassic(titled("x"), "\u0301"));
    EXPECT_TRUE(matchesClassic(element({}), "\u0301"));
    EXPECT_FALSE(matchesClassic(titled("x"), "\u0301 y"));
}

TEST(MatchingClassic, ATabDoesNotSeparateTerms) {
    EXPECT_FALSE(matchesClassic(titled("hello friend"), "hello\tfriend"));
    EXPECT_TRUE(matchesClassic(titled("hello\tfriend"), "hello\tfriend"));
}

TEST(MatchingClassic, ATermDoesNotReachAcrossFields) {
    EXPECT_FALSE(matchesClassic(element({.label = "hel", .title = "lo"}), "hello"));
    EXPECT_TRUE(matchesClassic(element({.label = "hel", .title = "lo"}), "hel lo"));
}

TEST(MatchingClassic, TheSubroleMatchesInItsRawForm) {
    AccessibilityElement button = titled("");
    button.subrole = "AXCloseButton";
    EXPECT_TRUE(matchesClassic(button, "close"));
    EXPECT_TRUE(matchesClassic(button, "axc"));
}

TEST(MatchingClassic, RoleUrlAndIdentifierTakeNoPart) {
    AccessibilityElement button = titled("x");
    button.role = AccessibilityElementRole::button;
    button.url = Url{"https://example.org/"};
    button.identifier = "identifier";
    for (const char* query : {"button", "example", "identifier"}) EXPECT_FALSE(matchesClassic(button, query)) << query;
}

TEST(MatchingExtended, TheFirstLettersOfSuccessiveWords) {
    for (const char* title : {"hello friend", "say hello friend", "hello   friend", "hello-friend", "hello, friend"})
        EXPECT_TRUE(matchesExtended(titled(title), "hf")) << title;
    for (const char* title : {"hello big friend", "half", "hello\tfriend", "friend hello", "hello\u00a0friend"})
        EXPECT_FALSE(matchesExtended(titled(title), "hf")) << title;
}

TEST(MatchingExtended, SuccessiveWordsMayLieInTwoFields) {
    EXPECT_TRUE(matchesExtended(element({.label = "say hello", .title = "friend of mine"}), "hf"));
    EXPECT_TRUE(matchesExtended(element({.label = "hello", .value = "friend"}), "hf"));
}

TEST(MatchingExtended, TheWordsOfAHyphenatedRunCount) { EXPECT_TRUE(matchesExtended(titled("a-b"), "ab")); }

TEST(MatchingExtended, ALetterInsideAWordIsNoFirstLetter) {
    EXPECT_FALSE(matchesExtended(titled("hello friend"), "hfr"));
    EXPECT_FALSE(matchesExtended(titled("hello friend"), "ef"));
}

TEST(MatchingExtended, UpperCaseLettersTakeNoPartInTheFirstLettersTest) {
    EXPECT_FALSE(matchesExtended(titled("hello friend"), "HF"));
    EXPECT_FALSE(matchesExtended(titled("Hello Friend"), "HF"));
    EXPECT_TRUE(matchesExtended(titled("Hello Friend"), "hf"));
    EXPECT_TRUE(matchesExtended(titled("hello friend"), "h"));
    EXPECT_TRUE(matchesExtended(titled("hello friend"), "H"));
}

TEST(MatchingExtended, AccentedLettersTakeNoPartInTheFirstLettersTest) {
    EXPECT_FALSE(matchesExtended(titled("état neuf"), "én"));
    EXPECT_TRUE(matchesExtended(titled("état neuf"), "en"));
}

TEST(MatchingExtended, SpacesOfTheQueryAreUnitsOfThePattern) {
    EXPECT_FALSE(matchesClassic(titled("hello friend x"), "hf x"));
    EXPECT_TRUE(matchesExtended(titled("hello friend x"), "hf x"));
}

TEST(MatchingExtended, RegularExpressionCharactersAreOrdinary) {
    for (const char* query : {"c++", "(a", "[", "a|b", ".", "\\", "{2}", "^$", "a*", "\\b", "]", "}"}) {
        EXPECT_FALSE(matchesExtended(titled("hello friend"), query)) << query;
        EXPECT_TRUE(matchesExtended(titled(std::string("say ") + query), query)) << query;
    }
    EXPECT_FALSE(matchesExtended(titled("hello friend"), "h."));
}

TEST(MatchingExtended, TheFirstLettersTestDoesNotSeeTheRole) {
    const AccessibilityElement button = element({.roleDescription = "button", .title = "friend"});
    EXPECT_TRUE(matchesClassic(button, "bu"));
    EXPECT_TRUE(matchesExtended(button, "bu"));
    EXPECT_FALSE(matchesExtended(button, "bf"));
}

// A pattern with backtracking would try every way to place the letters.
TEST(MatchingExtended, ALongTextOfManyWordsIsNoTrap) {
    std::string title;
    for (int i = 0; i < 2000; ++i) title += "a-";
    EXPECT_FALSE(matchesExtended(titled(title), "aaaaaaaaaaaaaaaaaaaaaaaaab"));
    EXPECT_TRUE(matchesExtended(titled(title + "b"), "aaaaaaaaaaaaaaaaaaaaaaaaab"));
}

TEST_F(Matching, TheOrderOfTheResultIsThatOfTheCandidates) {
    candidates_ = {element({.help = "press to save"}, 3), element({.title = "Save"}, 1),
                   element({.title = "saved"}, 2)};
    for (const char* flavor : {"tarvixClassic", "tarvixExtended"}) {
        setFlavor(flavor);
        EXPECT_EQ(filtered("save"), (Places{3, 1, 2}));
    }
}

TEST_F(Matching, TheFlavorIsReadAtEachQuery) {
    EXPECT_EQ(filtered("hf"), Places());
    setFlavor("tarvixExtended");
    EXPECT_EQ(filtered("hf"), Places{0});
    setFlavor("tarvixClassic");
    EXPECT_EQ(filtered("hf"), Places());
}

TEST_F(Matching, AnUnusableFlavorReadsAsClassic) {
    setFlavor("tarvixBaroque");
    EXPECT_EQ(filtered("hf"), Places());
    desk_.userDefaults.set("fuzzyMatchingFlavor", 1.0);
    EXPECT_EQ(filtered("hf"), Places());
    EXPECT_EQ(filtered("hel"), Places{0});
}

TEST_F(Matching, APreparedListIsTheOneThatIsSearched) {
    engine_.prepare(candidates_);
    EXPECT_EQ(filtered("friend"), (Places{0, 2}));
    candidates_.insert(element({.title = "another friend"}, 3));
    EXPECT_EQ(filtered("friend"), (Places{0, 2, 3}));
    engine_.prepare({element({.title = "foe"}, 9)});
    EXPECT_EQ(filtered("friend"), (Places{0, 2, 3}));
}

}  // namespace
}  // namespace tarvix
