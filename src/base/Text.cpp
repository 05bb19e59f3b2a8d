#include "base/Text.h"

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <memory>

#include "base/Unicode.h"

namespace tarvix {

namespace {

std::string toUtf8(const icu::UnicodeString& text) {
    std::string result;
    return text.toUTF8String(result);
}

bool isWhitespace(UChar32 c) { return c == '\t' || u_charType(c) == U_SPACE_SEPARATOR; }

// A text's characters are found with one iterator for each thread: making one costs more than a search.
icu::BreakIterator& characterIterator() {
    thread_local const std::unique_ptr<icu::BreakIterator> iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        return std::unique_ptr<icu::BreakIterator>(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    }();
    return *iterator;
}

}  // namespace

std::string foldDiacritics(std::string_view text) {
    if (isAscii(text)) return std::string(text);
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* decompose = icu::Normalizer2::getNFDInstance(status);
    const icu::Normalizer2* compose = icu::Normalizer2::getNFCInstance(status);
    const icu::UnicodeString decomposed = decompose->normalize(toUtf16(text), status);
    icu::UnicodeString bare;
    for (std::int32_t i = 0; i < decomposed.length(); i = decomposed.moveIndex32(i, 1)) {
        const UChar32 c = decomposed.char32At(i);
        if (u_charType(c) != U_NON_SPACING_MARK) bare.append(c);
    }
    const icu::UnicodeString folded = compose->normalize(bare, status);
    return U_SUCCESS(status) ? toUtf8(folded) : std::string(text);
}

std::string lower(std::string_view text) {
    if (isAscii(text)) {
        std::string result(text);
        for (char& c : result)
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        return result;
    }
    return toUtf8(toUtf16(text).toLower(icu::Locale::getRoot()));
}

std::string capitalized(std::string_view text) {
    return toUtf8(toUtf16(text).toTitle(nullptr, icu::Locale::getRoot()));
}

std::string normalForm(std::string_view text) { return lower(foldDiacritics(text)); }

std::string_view trimWhitespaces(std::string_view text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    std::int32_t start = 0;
    auto end = static_cast<std::int32_t>(text.size());
    while (start < end) {
        std::int32_t next = start;
        UChar32 c = 0;
        U8_NEXT(bytes, next, end, c);
        if (c < 0 || !isWhitespace(c)) break;
        start = next;
    }
    while (start < end) {
        std::int32_t previous = end;
        UChar32 c = 0;
        U8_PREV(bytes, start, previous, c);
        if (c < 0 || !isWhitespace(c)) break;
        end = previous;
    }
    return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
}

std::vector<std::string_view> graphemes(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    UText opened = UTEXT_INITIALIZER;
    utext_openUTF8(&opened, text.data(), static_cast<std::int64_t>(text.size()), &status);
    icu::BreakIterator& iterator = characterIterator();
    iterator.setText(&opened, status);
    std::vector<std::string_view> result;
    std::int32_t start = iterator.first();
    for (std::int32_t end = iterator.next(); end != icu::BreakIterator::DONE; start = end, end = iterator.next())
        result.push_back(text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)));
    utext_close(&opened);
    return result;
}

std::size_t utf16Length(std::string_view text) { return static_cast<std::size_t>(toUtf16(text).length()); }

}  // namespace tarvix
