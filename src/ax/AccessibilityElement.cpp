#include "ax/AccessibilityElement.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace tarvix {

namespace {

std::string_view textOr(const std::optional<std::string>& text) {
    return text ? std::string_view(*text) : std::string_view();
}

template <std::size_t count>
std::string joined(const std::array<std::string_view, count>& texts) {
    std::size_t length = count - 1;
    for (const std::string_view text : texts) length += text.size();
    std::string all;
    all.reserve(length);
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) all += ' ';
        all += texts[i];
    }
    return all;
}

std::string literal(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

std::string optionalForm(const std::optional<std::string>& text) {
    return text ? "Optional(" + literal(*text) + ")" : "nil";
}

// The fewest digits that read back as the same number, never with an exponent, so that there is always room for the
// fractional part.
std::string decimal(double number) {
    std::array<char, 400> digits;  // the smallest number has 324 digits before its own
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed).ptr;
    std::string text(digits.data(), end);
    if (std::isfinite(number) && text.find('.') == std::string::npos) text += ".0";
    return text;
}

}  // namespace

std::string AccessibilityElement::searchableText() const {
    return joined<8>({roleDescription, textOr(subrole), textOr(label), textOr(title), textOr(help), textOr(value),
                      textOr(valueDescription), textOr(placeholder)});
}

std::string AccessibilityElement::fuzzySearchableText() const {
    return joined<6>(
        {textOr(label), textOr(title), textOr(help), textOr(value), textOr(valueDescription), textOr(placeholder)});
}

std::string AccessibilityElement::metadataDump() const {
    std::string dump = "AccessibilityElement(\n    role: .";
    dump += caseName(role);
    dump += ",\n    roleDescription: \"" + roleDescription + "\"";
    dump += ",\n    subrole: " + optionalForm(subrole);
    dump += ",\n    label: " + optionalForm(label);
    dump += ",\n    title: " + optionalForm(title);
    dump += ",\n    help: " + optionalForm(help);
    dump += ",\n    position: CGPoint(x: " + decimal(position.x) + ", y: " + decimal(position.y) + ")";
    dump += ",\n    size: CGSize(width: " + decimal(size.width) + ", height: " + decimal(size.height) + ")";
    dump += ",\n    value: " + optionalForm(value);
    dump += ",\n    valueDescription: " + optionalForm(valueDescription);
    dump += ",\n    placeholder: " + optionalForm(placeholder);
    dump += ",\n    url: " + (url ? "URL(string: \"" + url->absolute + "\")" : "nil");
    dump += "\n),\n";
    return dump;
}

}  // namespace tarvix

std::size_t std::hash<tarvix::AccessibilityElement>::operator()(const tarvix::AccessibilityElement& element) const {
    std::uint64_t mixed = std::hash<tarvix::AccessibilityElementRole>{}(element.role);
    for (const double number : {element.position.x, element.position.y, element.size.width, element.size.height}) {
        const auto bits = number == 0 ? 0 : std::bit_cast<std::uint64_t>(number);  // both zeros are equal
        // Multiplying carries differences upwards only, and small whole numbers differ in their upper bits alone; the
        // shift brings them down to the bits that a table looks at.
        mixed = (mixed ^ bits) * 0x9e3779b97f4a7c15U;
        mixed ^= mixed >> 32;
    }
    return mixed;
}
