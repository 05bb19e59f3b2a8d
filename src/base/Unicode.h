// The bridge between our texts and ICU's.
#pragma once

#include <unicode/unistr.h>

#include <algorithm>
#include <string_view>

namespace tarvix {

// Bytes that aren't UTF-8 become U+FFFD.
inline icu::UnicodeString toUtf16(std::string_view text) {
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

// Most texts are, and need none of Unicode's tables then.
inline bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80U; });
}

}  // namespace tarvix
