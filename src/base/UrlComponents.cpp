#include "base/UrlComponents.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>

namespace tarvix {

namespace {

constexpr std::string_view kUnreserved = "-._~";
constexpr std::string_view kInQuery = "!$&'()*+,;=:@/?";
constexpr std::string_view kElsewhere = "#[]";  // delimiters that don't stand in a query

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isOfOtherScript(char c) { return (static_cast<unsigned char>(c) & 0x80) != 0; }

bool mayStandInQuery(char c) {
    return isLetter(c) || isDigit(c) || kUnreserved.find(c) != std::string_view::npos ||
           kInQuery.find(c) != std::string_view::npos;
}

bool mayStandInAddress(char c) {
    return isOfOtherScript(c) || mayStandInQuery(c) || c == '%' || kElsewhere.find(c) != std::string_view::npos;
}

std::optional<int> hexadecimal(char c) {
    if (isDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return std::nullopt;
}

// Nothing when a percent sign stands for no byte.
std::optional<std::string> decoded(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            bytes.push_back(text[i]);
            continue;
        }
        const auto high = i + 2 < text.size() ? hexadecimal(text[i + 1]) : std::nullopt;
        const auto low = high ? hexadecimal(text[i + 2]) : std::nullopt;
        if (!low) return std::nullopt;
        bytes.push_back(static_cast<char>(*high * 16 + *low));
        i += 2;
    }
    return bytes;
}

constexpr bool isControl(UChar32 c) { return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029; }

template <class Predicate>
bool everyCharacter(std::string_view text, Predicate isFine) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto length = static_cast<std::int64_t>(text.size());
    std::int64_t i = 0;
    while (i < length) {
        UChar32 c = U_SENTINEL;
        U8_NEXT(bytes, i, length, c);
        if (c < 0 || !isFine(c)) return false;
    }
    return true;
}

bool isUtf8(std::string_view text) {
    return everyCharacter(text, [](UChar32) { return true; });
}

bool hasScheme(std::string_view text) {
    const auto end = text.find(':');
    if (end == std::string_view::npos || end == 0 || !isLetter(text.front())) return false;
    return std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end),
                       [](char c) { return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.'; });
}

std::string_view queryOf(std::string_view text) {
    const std::string_view withoutFragment = text.substr(0, text.find('#'));
    const auto mark = withoutFragment.find('?');
    return mark == std::string_view::npos ? std::string_view{} : withoutFragment.substr(mark + 1);
}

// What is given has been looked through as a whole.
QueryItem queryItem(std::string_view text) {
    const auto equals = text.find('=');
    QueryItem item{decoded(text.substr(0, equals)).value_or(""), std::nullopt};
    if (equals != std::string_view::npos) item.value = decoded(text.substr(equals + 1));
    return item;
}

}  // namespace

std::optional<UrlComponents> UrlComponents::parse(std::string_view text) {
    if (!hasScheme(text) || !std::all_of(text.begin(), text.end(), mayStandInAddress)) return std::nullopt;
    const auto meant = decoded(text);
    const bool isMeantForPeople = meant && everyCharacter(*meant, [](UChar32 c) { return !isControl(c); });
    if (!isUtf8(text) || !isMeantForPeople) return std::nullopt;
    UrlComponents components;
    std::string_view rest = queryOf(text);
    while (!rest.empty()) {
        const auto end = rest.find('&');
        components.queryItems_.push_back(queryItem(rest.substr(0, end)));
        rest = end == std::string_view::npos ? std::string_view{} : rest.substr(end + 1);
    }
    return components;
}

std::optional<std::string> encodedForQuery(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    if (!isUtf8(text)) return std::nullopt;
    std::string encoded;
    for (const char c : text) {
        if (mayStandInQuery(c)) {
            encoded.push_back(c);
        } else {
            const auto byte = static_cast<unsigned char>(c);
            encoded.append({'%', digits[byte / 16], digits[byte % 16]});
        }
    }
    return encoded;
}

}  // namespace tarvix
