// The candidates of a search in the form in which queries are matched against them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ax/AccessibilityElement.h"
#include "base/OrderedSet.h"

namespace tarvix {

// Made once for a list of candidates; immutable afterwards, so that any thread may use it.
class MatchIndex {
public:
    explicit MatchIndex(const OrderedSet<AccessibilityElement>& candidates);

    // The places of the candidates that match, rising. The query is not empty.
    std::vector<std::uint32_t> classic(std::string_view query) const;
    // Those that match so or by the first letters of successive words.
    std::vector<std::uint32_t> extended(std::string_view query) const;

    // The bytes that a classic search runs over, candidates one after another; for the benchmark's floor.
    std::string_view bytes() const { return texts_; }

private:
    // The text of a first-letters search: folded, lower-cased code points, each with what the search asks of it.
    struct Letter {
        char32_t codePoint;
        bool beginsOrEndsWord;  // a word boundary stands before it
        bool isBlank;           // U+0020
        bool isSpace;           // any white space
    };
    // One character of a query, which may be several code points.
    using Unit = std::u32string;

    void addText(const AccessibilityElement& element);
    void addLetters(const AccessibilityElement& element);
    std::string_view textAt(std::size_t place) const;
    bool mayMatch(std::size_t place, const std::vector<Unit>& units) const;
    bool matchesFirstLetters(std::size_t place, const std::vector<Unit>& units) const;

    std::string texts_;                  // normal forms of the searchable texts, a separator behind each
    std::vector<std::size_t> textEnds_;  // of each, without its separator
    std::vector<Letter> letters_;        // of the fuzzy searchable texts, without separators
    std::vector<std::size_t> letterEnds_;
    std::u32string initials_;  // the letters at word boundaries alone
    std::vector<std::size_t> initialEnds_;
};

}  // namespace tarvix
