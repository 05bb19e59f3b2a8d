#include "core/Copying.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <utility>

namespace tarvix {

namespace {

using Role = AccessibilityElementRole;
using Text = std::optional<std::string>;
using Field = Text (*)(const AccessibilityElement&);

Text label(const AccessibilityElement& element) { return element.label; }
Text title(const AccessibilityElement& element) { return element.title; }
Text value(const AccessibilityElement& element) { return element.value; }
Text url(const AccessibilityElement& element) { return element.url ? Text(element.url->absolute) : std::nullopt; }

constexpr std::array<Field, 3> kTitleLabelValue = {title, label, value};
constexpr std::array<Field, 3> kValueLabelTitle = {value, label, title};
constexpr std::array<Field, 3> kValueTitleLabel = {value, title, label};
constexpr std::array<Field, 1> kValue = {value};
constexpr std::array<Field, 1> kUrl = {url};

struct Row {
    Role role;
    std::span<const Field> fields;
};

constexpr std::array<Row, 4> kTextRows = {{
    {Role::button, kTitleLabelValue},
    {Role::checkBox, kTitleLabelValue},
    {Role::link, kTitleLabelValue},
    {Role::radioButton, kTitleLabelValue},
}};

constexpr std::array<Row, 3> kMetadataRows = {{
    {Role::checkBox, kValue},
    {Role::radioButton, kValue},
    {Role::link, kUrl},
}};

std::span<const Field> fieldsOf(Role role, std::span<const Row> rows, std::span<const Field> otherwise) {
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const Row& each) { return each.role == role; });
    return row == rows.end() ? otherwise : row->fields;
}

// The first of the fields that isn't empty; the last one as it is, absent or empty.
Text firstText(const AccessibilityElement& element, std::span<const Field> fields) {
    Text text;
    for (const Field field : fields) {
        text = field(element);
        if (text && !text->empty()) break;
    }
    return text;
}

void copyFirst(const AccessibilityElement& element, std::span<const Field> fields, Pasteboard& pasteboard) {
    if (Text text = firstText(element, fields)) copy(std::move(*text), pasteboard);
}

}  // namespace

void copyText(const AccessibilityElement& element, Pasteboard& pasteboard) {
    copyFirst(element, fieldsOf(element.role, kTextRows, kValueLabelTitle), pasteboard);
}

void copyMetadata(const AccessibilityElement& element, Pasteboard& pasteboard) {
    copyFirst(element, fieldsOf(element.role, kMetadataRows, kValueTitleLabel), pasteboard);
}

void copy(std::string text, Pasteboard& pasteboard) {
    pasteboard.clearContents();
    pasteboard.setString(std::move(text));
}

}  // namespace tarvix
