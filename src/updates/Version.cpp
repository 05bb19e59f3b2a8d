#include "updates/Version.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace tarvix {

namespace {

constexpr std::size_t kLongest = 64;

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

enum class Kind { word, none, number };  // in this order: a word is less than nothing, and nothing less than a number

struct Part {
    Kind kind = Kind::none;
    std::string_view text;
};

// Takes the next part off the front.
Part takePart(std::string_view& rest) {
    const auto begin = std::ranges::find_if(rest, [](char c) { return isDigit(c) || isLetter(c); });
    rest.remove_prefix(static_cast<std::size_t>(begin - rest.begin()));
    if (rest.empty()) return {};
    const bool isNumber = isDigit(rest.front());
    const auto end = std::ranges::find_if_not(rest, isNumber ? isDigit : isLetter);
    const Part part{isNumber ? Kind::number : Kind::word, rest.substr(0, static_cast<std::size_t>(end - rest.begin()))};
    rest.remove_prefix(part.text.size());
    return part;
}

// Of any length, so that no number is too large to be compared.
std::weak_ordering compareNumbers(std::string_view left, std::string_view right) {
    const auto significant = [](std::string_view number) {
        return number.substr(std::min(number.find_first_not_of('0'), number.size()));
    };
    left = significant(left);
    right = significant(right);
    if (left.size() != right.size()) return left.size() <=> right.size();
    return left <=> right;
}

std::weak_ordering compareWords(std::string_view left, std::string_view right) {
    const auto lowerCase = [](char c) { return isLetter(c) ? static_cast<char>(c | 0x20) : c; };
    return std::lexicographical_compare_three_way(
        left.begin(), left.end(), right.begin(), right.end(),
        [&](char a, char b) -> std::weak_ordering { return lowerCase(a) <=> lowerCase(b); });
}

std::weak_ordering compareParts(const Part& left, const Part& right) {
    const auto isZero = [](const Part& part) {
        return part.kind == Kind::number && part.text.find_first_not_of('0') == std::string_view::npos;
    };
    if (left.kind == Kind::number && right.kind == Kind::number) return compareNumbers(left.text, right.text);
    if (left.kind == Kind::word && right.kind == Kind::word) return compareWords(left.text, right.text);
    // A zero that the other one lacks says nothing.
    if ((isZero(left) && right.kind == Kind::none) || (left.kind == Kind::none && isZero(right)))
        return std::weak_ordering::equivalent;
    return left.kind <=> right.kind;
}

}  // namespace

bool isVersion(std::string_view text) {
    return !text.empty() && text.size() <= kLongest && isDigit(text.front()) && std::ranges::all_of(text, [](char c) {
        return isDigit(c) || isLetter(c) || std::string_view(".-+~_").find(c) != std::string_view::npos;
    });
}

std::weak_ordering compareVersions(std::string_view left, std::string_view right) {
    for (;;) {
        const Part leftPart = takePart(left);
        const Part rightPart = takePart(right);
        if (leftPart.kind == Kind::none && rightPart.kind == Kind::none) return std::weak_ordering::equivalent;
        if (const auto order = compareParts(leftPart, rightPart); std::is_neq(order)) return order;
    }
}

}  // namespace tarvix
