// Matching as it is told, one element and one query at a time with nothing kept: what every faster way must agree with.
#pragma once

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ax/AccessibilityElement.h"
#include "base/OrderedSet.h"
#include "base/Text.h"
#include "shell/SettingEnumerations.h"

namespace tarvix::naive {

inline bool matchesClassic(const AccessibilityElement& element, std::string_view query) {
    std::size_t start = 0;
    while (start <= query.size()) {
        const std::size_t end = std::min(query.find(' ', start), query.size());
        if (const std::string_view term = query.substr(start, end - start); !term.empty())
            if (normalForm(element.searchableText()).find(normalForm(term)) == std::string::npos) return false;
        start = end + 1;
    }
    return true;
}

inline icu::UnicodeString utf16(std::string_view text) {
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

inline icu::UnicodeString escapedPattern(const icu::UnicodeString& literal) {
    static const icu::UnicodeString special("*?+[(){}^$|\\./");
    icu::UnicodeString escaped;
    for (std::int32_t i = 0; i < literal.length(); ++i) {
        if (special.indexOf(literal[i]) >= 0) escaped.append(u'\\');
        escaped.append(literal[i]);
    }
    return escaped;
}

inline icu::UnicodeString firstLettersPattern(std::string_view query) {
    icu::UnicodeString pattern;
    for (const std::string_view character : graphemes(query))
        pattern.append(u"\\b", 2).append(escapedPattern(utf16(character))).append(u"(\\S* *)", 7);
    return pattern;
}

inline bool matchesExtended(const AccessibilityElement& element, std::string_view query) {
    if (naive::matchesClassic(element, query)) return true;
    UErrorCode status = U_ZERO_ERROR;
    icu::RegexMatcher matcher(firstLettersPattern(query), 0, status);
    if (U_FAILURE(status)) return false;
    const std::string folded = foldDiacritics(element.fuzzySearchableText());
    const icu::UnicodeString text = utf16(lower(folded));
    const auto length = std::min(static_cast<std::int64_t>(utf16(folded).length()), std::int64_t{text.length()});
    matcher.reset(text);
    matcher.region(0, length, status);
    return matcher.find(status) && U_SUCCESS(status);
}

inline OrderedSet<AccessibilityElement> filteredElements(const OrderedSet<AccessibilityElement>& candidates,
                                                         std::string_view query, FuzzyMatchingFlavor flavor) {
    if (query.empty()) return {};
    if (query == "*") return candidates;
    OrderedSet<AccessibilityElement> result;
    for (const AccessibilityElement& element : candidates)
        if (flavor == FuzzyMatchingFlavor::tarvixClassic ? naive::matchesClassic(element, query)
                                                         : naive::matchesExtended(element, query))
            result.insert(element);
    return result;
}

}  // namespace tarvix::naive
