// The reference page of the settings, against their table.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <charconv>
#include <string>
#include <vector>

#include "shell/SettingsTable.h"
#include "shell/TheInputMakeup.h"
#include "tests/MarkdownTable.h"

namespace tarvix {
namespace {

using testing::ElementsAreArray;
using Rows = std::vector<std::string>;

std::string number(double value) {
    char digits[32];
    return {digits, std::to_chars(digits, std::end(digits), value).ptr};
}

// As it stands in the file.
std::string json(const SettingValue& value) {
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
    if (const auto* real = std::get_if<double>(&value)) return number(*real);
    return '"' + std::string(std::get<std::string_view>(value)) + '"';
}

std::string values(const SettingRow& row) {
    if (row.range) return "number, " + number(row.range->least) + " to " + number(row.range->most);
    if (row.cases.empty()) return "`true` or `false`";
    std::string all = "text:";
    for (const SettingCase& each : row.cases)
        all += (&each == &row.cases.front() ? " `" : ", `") + json(each.rawValue) + "`";
    return all;
}

std::string cell(const std::string& text) { return " " + text + " |"; }

std::string pageRow(const SettingRow& row) {
    return "|" + cell("`" + std::string(row.key) + "`") + cell(std::string(row.meaning)) + cell(values(row)) +
           cell("`" + json(row.defaultValue) + "`") +
           cell("`\"" + std::string(row.key) + "\": " + json(row.example) + "`");
}

// The rows of the page's tables whose head begins so.
Rows pageRows(std::string_view head) { return rowsBelow(TARVIX_SETTINGS_PAGE, head); }

TEST(SettingsPage, ListsTheSettingsWithAnExampleOfEach) {
    Rows expected;
    for (const SettingRow& row : settingRows) expected.push_back(pageRow(row));
    EXPECT_THAT(pageRows("| setting "), ElementsAreArray(expected));
}

TEST(SettingsPage, TellsTheValuesOfThePresets) {
    const auto row = [](InputPreset preset, const InputPresetDefaults& look) {
        return "|" + cell("`\"" + std::string(rawValue(preset)) + "\"`") + cell(number(look.textSize)) +
               cell(number(look.backgroundOpacity)) + cell(number(look.cornerRadius)) +
               cell(number(look.borderThickness));
    };
    EXPECT_THAT(pageRows("| preset "),
                ElementsAreArray({row(InputPreset::tarvix, {16, 0.9, 6, 2}),
                                  row(InputPreset::spotlight, TheInputMakeup::spotlightInputDefaults),
                                  row(InputPreset::alfred, TheInputMakeup::alfredInputDefaults),
                                  row(InputPreset::invisibleMan, TheInputMakeup::invisibleManInputDefaults)}));
}

}  // namespace
}  // namespace tarvix
