// The index against the plain procedure, over random texts and queries of the awkward kinds.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "base/Text.h"
#include "search/SearchEngine.h"
#include "simulated/SimulatedDesktop.h"
#include "tests/search/NaiveMatching.h"

namespace tarvix {
namespace {

// Short pieces, so that texts and queries often have something in common.
const std::vector<std::string> pieces = {
    "a",
    "b",
    "f",
    "h",
    "e",
    "A",
    "B",
    "F",
    "I",
    "s",
    "S",
    "1",
    "_",
    "hello",
    "friend",
    "Button",
    "ab",
    "ss",
    " ",
    " ",
    " ",
    "  ",
    "\t",
    "\n",
    "\r\n",
    "\u00a0",
    "\u2003",
    "\u3000",
    "\u2028",
    "\u0085",
    "\v",
    "-",
    "/",
    ".",
    "'",
    "\u2019",
    ",",
    "&",
    "#",
    "]",
    "}",
    "@",
    "\"",
    "*",
    "+",
    "?",
    "(",
    ")",
    "[",
    "{",
    "^",
    "$",
    "|",
    "\\",
    "\\b",
    "\\S",
    "c++",
    "(a",
    "é",
    "É",
    "e\u0301",
    "Å",
    "A\u030a",
    "\u212b",
    "ñ",
    "ü",
    "ǖ",
    "ạ̈",
    "\u0301",
    "\u0308",
    "\u0300\u0301",
    "İ",
    "ı",
    "i\u0307",
    "I\u0307",
    "ß",
    "ẞ",
    "ﬁ",
    "ﬀ",
    "Ǆ",
    "ǅ",
    "ø",
    "Ł",
    "æ",
    "Σ",
    "σ",
    "ς",
    "ΟΔΟΣ",
    "ΑΣ ",
    "Ж",
    "й",
    "И\u0306",
    "ё",
    "한",
    "\u1112\u1161\u11ab",
    "が",
    "か\u3099",
    "日本",
    "ไทย",
    "नि",
    "\u0915\u094d\u0937",
    "שָ",
    "ع",
    "עַ",
    "\U0001f44d",
    "\U0001f44d\U0001f3fd",
    "\U0001f469\u200d\U0001f4bb",
    "\U0001f1e9\U0001f1ea",
    "\u2764\ufe0f",
    "\u200d",
    "\u200b",
    "\u00ad",
    "\ufeff",
    "\U00010400",
    "\U00010428",
    "\u20dd",
    "\u0903",
    "K",
    "Ω",
    "½",
    "²",
    "①",
    "Ⅷ",
    "ⅷ",
    std::string(1, '\0'),
    "\ufffd",
};
const std::vector<std::string> brokenPieces = {"\xff", "\xc3", "\xe2\x82", "\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80"};

class RandomTexts {
public:
    explicit RandomTexts(std::uint32_t seed) : random_(seed) {}

    std::size_t below(std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_); }

    std::string text(std::size_t most, bool plain) {
        std::string made;
        for (std::size_t left = below(most + 1); left > 0; --left) made += piece(plain);
        return made;
    }
    std::optional<std::string> field(bool plain) {
        const std::size_t kind = below(4);
        if (kind == 0) return std::nullopt;
        return kind == 1 ? "" : text(6, plain);
    }
    AccessibilityElement element(double x) {
        const bool plain = below(2) == 0;
        AccessibilityElement made;
        made.position = {x, 0};
        made.roleDescription = text(2, plain);
        made.subrole = field(plain);
        made.label = field(plain);
        made.title = field(plain);
        made.help = field(plain);
        made.value = field(plain);
        made.valueDescription = field(plain);
        made.placeholder = field(plain);
        return made;
    }
    // A query that stands a chance: a piece of a candidate's text, the first letters of its words, or anything.
    std::string query(const AccessibilityElement& element) {
        const std::size_t kind = below(5);
        if (kind == 0) return text(4, below(2) == 0);
        const auto characters = graphemes(source(element));
        if (characters.empty()) return " ";
        std::string made;
        if (kind == 1) {
            const std::size_t start = below(characters.size());
            const std::size_t count = 1 + below(6);
            for (std::size_t i = start; i < characters.size() && i < start + count; ++i) made += characters[i];
        } else {
            buffer_ = kind == 2 ? source(element) : normalForm(element.fuzzySearchableText());
            made = initials(graphemes(buffer_));
        }
        if (below(20) == 0) made = made.substr(0, made.size() / 2);  // cuts characters too
        return made;
    }

private:
    // Of two to four words that follow one another, now and then with a fault.
    std::string initials(const std::vector<std::string_view>& characters) {
        std::string made;
        std::size_t skipped = below(4);
        std::size_t left = 2 + below(3);
        bool begins = true;
        for (const std::string_view character : characters) {
            const bool separates = character == " " || character == "-" || character == ".";
            const bool isInitial = begins && !separates;
            begins = separates;
            if (isInitial && skipped > 0) {
                --skipped;
            } else if ((isInitial && below(20) != 0) || below(40) == 0) {
                made += character;
                if (--left == 0) break;
            }
        }
        return made;
    }
    std::string piece(bool plain) {
        if (plain) return pieces[below(24)];
        if (below(40) == 0) return brokenPieces[below(brokenPieces.size())];
        return pieces[below(pieces.size())];
    }
    const std::string& source(const AccessibilityElement& element) {
        text_ = below(4) == 0 ? element.searchableText() : element.fuzzySearchableText();
        return text_;
    }

    std::mt19937 random_;
    std::string text_, buffer_;
};

std::string escaped(std::string_view text) {
    std::string shown;
    for (const char c : text) {
        if (c >= ' ' && c < 0x7f) {
            shown += c;
        } else {
            constexpr std::string_view digits = "0123456789abcdef";
            const auto byte = static_cast<unsigned char>(c);
            shown += {'\\', 'x', digits[byte >> 4U], digits[byte & 15U]};
        }
    }
    return shown;
}

std::vector<double> placesOf(const OrderedSet<AccessibilityElement>& elements) {
    std::vector<double> places;
    for (const AccessibilityElement& element : elements) places.push_back(element.position.x);
    return places;
}

class MatchingProperty : public testing::Test {
protected:
    void filterAll(std::uint32_t seed, FuzzyMatchingFlavor flavor, const std::vector<std::string>& queries,
                   const OrderedSet<AccessibilityElement>& candidates) {
        desk_.userDefaults.set("fuzzyMatchingFlavor", std::string(rawValue(flavor)));
        for (const std::string& query : queries) {
            const auto fast = placesOf(engine_.filteredElements(candidates, query));
            const auto naive = placesOf(naive::filteredElements(candidates, query, flavor));
            matches_ += naive.size();
            if (fast == naive) continue;
            for (const AccessibilityElement& element : candidates) {
                const double x = element.position.x;
                const bool isFast = std::find(fast.begin(), fast.end(), x) != fast.end();
                const bool isNaive = std::find(naive.begin(), naive.end(), x) != naive.end();
                if (isFast != isNaive)
                    ADD_FAILURE() << "seed " << seed << ", " << rawValue(flavor) << ", query '" << escaped(query)
                                  << "' " << (isFast ? "finds" : "misses") << " '" << escaped(element.searchableText())
                                  << "'";
            }
        }
    }

    SimulatedDesktop desk_;
    SearchEngine engine_{desk_.platform()};
    std::size_t matches_ = 0;
};

TEST_F(MatchingProperty, TheIndexFindsWhatThePlainProcedureFinds) {
    constexpr std::uint32_t firstSeed = 471100;
    std::size_t extendedOnly = 0;
    for (std::uint32_t seed = firstSeed; seed < firstSeed + 250 && !HasFailure(); ++seed) {
        RandomTexts random(seed);
        OrderedSet<AccessibilityElement> candidates;
        for (int i = 0; i < 30; ++i) candidates.insert(random.element(i));
        std::vector<std::string> queries;
        for (int i = 0; i < 30; ++i) queries.push_back(random.query(candidates[random.below(candidates.size())]));
        const std::size_t before = matches_;
        filterAll(seed, FuzzyMatchingFlavor::tarvixClassic, queries, candidates);
        const std::size_t classic = matches_ - before;
        filterAll(seed, FuzzyMatchingFlavor::tarvixExtended, queries, candidates);
        extendedOnly += matches_ - before - 2 * classic;
    }
    // The texts must be such that both tests are put to use.
    EXPECT_GT(matches_, 20000u);
    EXPECT_GT(extendedOnly, 400u);
}

TEST_F(MatchingProperty, ThePredicatesForOneElementAgreeToo) {
    RandomTexts random(815);
    for (int i = 0; i < 3000; ++i) {
        const AccessibilityElement element = random.element(i);
        const std::string query = random.query(element);
        ASSERT_EQ(matchesClassic(element, query), naive::matchesClassic(element, query))
            << "case " << i << escaped(query);
        ASSERT_EQ(matchesExtended(element, query), naive::matchesExtended(element, query))
            << "case " << i << escaped(query);
    }
}

// A query that is longer than any machine word of flags, against a text of as many words.
TEST_F(MatchingProperty, LongQueriesAgreeToo) {
    std::string text, query;
    for (int i = 0; i < 200; ++i) {
        const char letter = static_cast<char>('a' + i * 7 % 26);
        text += std::string(1, letter) + "x ";
        query += letter;
    }
    AccessibilityElement element;
    element.title = text;
    EXPECT_TRUE(naive::matchesExtended(element, query));
    EXPECT_TRUE(matchesExtended(element, query));
    query.back() = '!';
    EXPECT_FALSE(naive::matchesExtended(element, query));
    EXPECT_FALSE(matchesExtended(element, query));
}

// Code points between words, since what is a word and what is a space decides the first-letters test. Words, marks,
// spaces and format characters lie thickest below U+3100, so these all, and every 61st above.
TEST_F(MatchingProperty, CodePointsSeparateOrJoinWordsAsInTheRegularExpressions) {
    OrderedSet<AccessibilityElement> candidates;
    for (std::uint32_t c = 1; c < 0x110000; c += c < 0x3100 ? 1 : 61) {
        if (c >= 0xd800 && c < 0xe000) continue;
        std::string between;
        icu::UnicodeString(static_cast<UChar32>(c)).toUTF8String(between);
        AccessibilityElement element;
        element.position = {static_cast<double>(c), 0};
        element.title = "ax" + between + "bx" + between + " cx";
        candidates.insert(element);
    }
    desk_.userDefaults.set("fuzzyMatchingFlavor", "tarvixExtended");
    for (const std::string query : {"ab", "ac", "bc"}) {
        UErrorCode status = U_ZERO_ERROR;
        icu::RegexMatcher matcher(naive::firstLettersPattern(query), 0, status);
        std::vector<double> expected;
        for (const AccessibilityElement& element : candidates) {
            const icu::UnicodeString text = naive::utf16(lower(foldDiacritics(element.fuzzySearchableText())));
            matcher.reset(text);
            if (naive::matchesClassic(element, query) || matcher.find(status)) expected.push_back(element.position.x);
        }
        ASSERT_TRUE(U_SUCCESS(status));
        EXPECT_FALSE(expected.empty());
        EXPECT_EQ(placesOf(engine_.filteredElements(candidates, query)), expected) << query;
    }
}

}  // namespace
}  // namespace tarvix
