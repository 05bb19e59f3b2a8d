// What the user is told about the keys.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "core/KeyHelp.h"
#include "core/KeyRouting.h"
#include "tests/MarkdownTable.h"

namespace tarvix {
namespace {

using testing::ElementsAreArray;

TEST(KeyName, HasTheModifiersInTheOrderOfTheirLabels) {
    EXPECT_EQ(keyName({Key::pageDown}), "Page Down");
    EXPECT_EQ(keyName({Key::comma, {.command = true}}), "Super+Comma");
    EXPECT_EQ(keyName({Key::return_, {.control = true, .option = true, .shift = true, .command = true}}),
              "Ctrl+Alt+Shift+Super+Return");
}

TEST(KeyHelp, HasARowForEachActionWithAllItsKeys) {
    const std::vector<KeyHelpRow> rows = keyHelp();
    ASSERT_EQ(rows.size(), keyActions.size());
    EXPECT_EQ(rows.front().keys, "Down, Tab, Ctrl+N");
    EXPECT_EQ(rows.front().help, keyActions.front().help);
    std::ptrdiff_t keys = 0;
    for (const KeyHelpRow& row : rows) keys += std::count(row.keys.begin(), row.keys.end(), ',') + 1;
    EXPECT_EQ(keys, static_cast<std::ptrdiff_t>(keyRoutes.size()));
}

TEST(Readme, ListsEveryKeyOfTheTableWithItsHelpAndBesidesOnlyWhatIsTheTextFields) {
    std::vector<std::string> expected;
    for (const KeyHelpRow& row : keyHelp()) expected.push_back("| " + row.keys + " | " + std::string(row.help) + " |");
    std::vector<std::string> rows = rowsBelow(TARVIX_README, "| key ");
    EXPECT_EQ(std::erase_if(rows,
                            [](const std::string& row) {
                                return row.starts_with("| letters |") || row.starts_with("| `*` |") ||
                                       row.starts_with("| Escape |");
                            }),
              3u);
    EXPECT_THAT(rows, ElementsAreArray(expected));
}

}  // namespace
}  // namespace tarvix
