#include "search/MatchIndex.h"

#include <unicode/regex.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "base/Text.h"
#include "base/Unicode.h"

namespace tarvix {

namespace {

constexpr char kSeparator = '\xFF';  // in no UTF-8 text

bool isAsciiWord(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// Where the regular expressions' \b holds in a text, by UTF-16 offset; the end of the text not counted.
std::vector<bool> wordBoundaries(const icu::UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    thread_local const std::unique_ptr<icu::RegexMatcher> matcher = [] {
        UErrorCode made = U_ZERO_ERROR;
        return std::make_unique<icu::RegexMatcher>(icu::UnicodeString("\\b"), 0, made);
    }();
    std::vector<bool> boundaries(static_cast<std::size_t>(text.length()) + 1);
    matcher->reset(text);
    while (matcher->find(status) && U_SUCCESS(status))
        boundaries[static_cast<std::size_t>(matcher->start(status))] = true;
    return boundaries;
}

// The terms of a query, in normal form: pieces between blanks, empty ones left out.
std::vector<std::string> termsOf(std::string_view query) {
    std::vector<std::string> terms;
    while (!query.empty()) {
        const std::size_t blank = std::min(query.find(' '), query.size());
        if (blank > 0) terms.push_back(normalForm(query.substr(0, blank)));
        query.remove_prefix(std::min(blank + 1, query.size()));
    }
    return terms;
}

std::vector<std::u32string> unitsOf(std::string_view query) {
    std::vector<std::u32string> units;
    for (const std::string_view character : graphemes(query)) {
        const icu::UnicodeString utf16 = toUtf16(character);
        std::u32string& unit = units.emplace_back();
        for (std::int32_t i = 0; i < utf16.length(); i = utf16.moveIndex32(i, 1))
            unit.push_back(static_cast<char32_t>(utf16.char32At(i)));
    }
    return units;
}

std::vector<std::uint32_t> all(std::size_t count) {
    std::vector<std::uint32_t> places(count);
    for (std::size_t i = 0; i < count; ++i) places[i] = static_cast<std::uint32_t>(i);
    return places;
}

}  // namespace

MatchIndex::MatchIndex(const OrderedSet<AccessibilityElement>& candidates) {
    for (const AccessibilityElement& element : candidates) {
        addText(element);
        addLetters(element);
    }
}

void MatchIndex::addText(const AccessibilityElement& element) {
    texts_ += normalForm(element.searchableText());
    textEnds_.push_back(texts_.size());
    texts_ += kSeparator;
}

void MatchIndex::addLetters(const AccessibilityElement& element) {
    const std::string folded = foldDiacritics(element.fuzzySearchableText());
    const std::string lowered = lower(folded);
    if (isAscii(lowered) && folded.size() == lowered.size()) {
        bool word = false;
        for (const char c : lowered) {
            const bool isWord = isAsciiWord(c);
            letters_.push_back(
                {static_cast<char32_t>(c), isWord != word, c == ' ', u_hasBinaryProperty(c, UCHAR_WHITE_SPACE) != 0});
            word = isWord;
        }
    } else {
        // The search ends where the text ended before it was lower-cased, in UTF-16 units.
        icu::UnicodeString text = toUtf16(lowered);
        text.truncate(static_cast<std::int32_t>(
            std::min<std::size_t>(utf16Length(folded), static_cast<std::size_t>(text.length()))));
        const std::vector<bool> boundaries = wordBoundaries(text);
        for (std::int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
            const UChar32 c = text.char32At(i);
            letters_.push_back({static_cast<char32_t>(c), boundaries[static_cast<std::size_t>(i)], c == ' ',
                                u_hasBinaryProperty(c, UCHAR_WHITE_SPACE) != 0});
        }
    }
    for (std::size_t i = letterEnds_.empty() ? 0 : letterEnds_.back(); i < letters_.size(); ++i)
        if (letters_[i].beginsOrEndsWord) initials_.push_back(letters_[i].codePoint);
    letterEnds_.push_back(letters_.size());
    initialEnds_.push_back(initials_.size());
}

std::string_view MatchIndex::textAt(std::size_t place) const {
    const std::size_t start = place == 0 ? 0 : textEnds_[place - 1] + 1;
    return std::string_view(texts_).substr(start, textEnds_[place] - start);
}

// One scan over all texts for the longest term, which mostly is the rarest; the others are looked for where it was
// found.
std::vector<std::uint32_t> MatchIndex::classic(std::string_view query) const {
    std::vector<std::string> terms = termsOf(query);
    if (terms.empty()) return all(textEnds_.size());
    const auto longest = std::max_element(
        terms.begin(), terms.end(), [](const std::string& a, const std::string& b) { return a.size() < b.size(); });
    std::iter_swap(terms.begin(), longest);
    const std::string& first = terms.front();
    std::vector<std::uint32_t> places;
    std::size_t place = 0;
    for (std::size_t at = 0; at < texts_.size();) {
        const void* found = memmem(texts_.data() + at, texts_.size() - at, first.data(), first.size());
        if (!found) break;
        const auto where = static_cast<std::size_t>(static_cast<const char*>(found) - texts_.data());
        while (textEnds_[place] < where) ++place;
        const std::string_view text = textAt(place);
        if (std::all_of(terms.begin() + 1, terms.end(),
                        [&](const std::string& term) { return text.find(term) != std::string_view::npos; }))
            places.push_back(static_cast<std::uint32_t>(place));
        at = textEnds_[place] + 1;
    }
    return places;
}

std::vector<std::uint32_t> MatchIndex::extended(std::string_view query) const {
    const std::vector<std::uint32_t> matching = classic(query);
    const std::vector<Unit> units = unitsOf(query);
    std::vector<std::uint32_t> places;
    auto next = matching.begin();
    for (std::size_t place = 0; place < textEnds_.size(); ++place) {
        const bool isMatching = next != matching.end() && *next == place;
        if (isMatching) ++next;
        if (isMatching || (mayMatch(place, units) && matchesFirstLetters(place, units)))
            places.push_back(static_cast<std::uint32_t>(place));
    }
    return places;
}

// Necessary and cheap: the units' first letters stand at word boundaries, in this order.
bool MatchIndex::mayMatch(std::size_t place, const std::vector<Unit>& units) const {
    std::size_t at = place == 0 ? 0 : initialEnds_[place - 1];
    for (const Unit& unit : units) {
        while (at < initialEnds_[place] && initials_[at] != unit.front()) ++at;
        if (at++ >= initialEnds_[place]) return false;
    }
    return true;
}

// What the pattern "\b" unit "(\S* *)" for each unit finds, without its backtracking, which a long text of many words
// would make endless. After a unit the next one may begin anywhere in what is left of the run of letters and in the
// blanks behind it; so what can be reached is a list of stretches, and each unit leads from one list to the next.
bool MatchIndex::matchesFirstLetters(std::size_t place, const std::vector<Unit>& units) const {
    struct Stretch {
        std::size_t first, last;  // both included
    };
    const std::size_t begin = place == 0 ? 0 : letterEnds_[place - 1];
    const std::size_t end = letterEnds_[place];
    const auto reach = [&](std::size_t from) {
        while (from < end && !letters_[from].isSpace) ++from;
        while (from < end && letters_[from].isBlank) ++from;
        return from;
    };
    const auto standsAt = [&](const Unit& unit, std::size_t at) {
        if (!letters_[at].beginsOrEndsWord || end - at < unit.size()) return false;
        for (std::size_t i = 0; i < unit.size(); ++i)
            if (letters_[at + i].codePoint != unit[i]) return false;
        return true;
    };
    std::vector<Stretch> reachable{{begin, end}};
    std::vector<Stretch> following;
    for (const Unit& unit : units) {
        following.clear();
        for (const Stretch& stretch : reachable) {
            for (std::size_t at = stretch.first; at <= stretch.last && at < end; ++at) {
                if (!standsAt(unit, at)) continue;
                const std::size_t from = at + unit.size();
                if (!following.empty() && from < following.back().last)
                    continue;  // reached already: what begins within a stretch ends with it
                following.push_back({from, reach(from)});
            }
        }
        if (following.empty()) return false;
        std::swap(reachable, following);
    }
    return true;
}

}  // namespace tarvix
