#include <gtest/gtest.h>

#include <string>

#include "linux/atspi/TableNumbering.h"

namespace tarvix::atspi {
namespace {

TEST(TableNumbering, TheNumberOfChildrenTellsWhichHeadersThereAre) {
    EXPECT_EQ(numberingOf(10'000, 6, 60'000), (Numbering{6, 0, 0}));
    EXPECT_EQ(numberingOf(10'000, 4, 40'004), (Numbering{4, 1, 0}));  // GTK 3
    EXPECT_EQ(numberingOf(10'000, 6, 70'000), (Numbering{6, 0, 1}));
    EXPECT_EQ(numberingOf(10'000, 6, 70'007), (Numbering{6, 1, 1}));  // Qt
    EXPECT_EQ(numberingOf(10'000, 6, 123), (Numbering{6, 0, 0}));
    EXPECT_EQ(numberingOf(1 << 20, 1 << 14, 2147483647), (Numbering{1 << 14, 0, 0}));  // a sheet's overflows
}

TEST(TableNumbering, HeadersComeFirst) {
    const Numbering both{6, 1, 1};
    EXPECT_EQ(both.index(-1, -1), 0);  // the corner
    EXPECT_EQ(both.index(-1, 0), 1);
    EXPECT_EQ(both.index(0, -1), 7);
    EXPECT_EQ(both.index(0, 0), 8);
    EXPECT_EQ(both.row(0), -1);
    EXPECT_EQ(both.column(7), -1);
}

TEST(TableNumbering, AnIndexIsThePlaceItCameFrom) {
    for (const Numbering numbering : {Numbering{6, 0, 0}, Numbering{6, 1, 0}, Numbering{6, 0, 1}, Numbering{6, 1, 1}})
        for (std::int64_t row = -numbering.columnHeaders; row < 3; ++row)
            for (std::int64_t column = -numbering.rowHeaders; column < 6; ++column) {
                EXPECT_EQ(numbering.row(numbering.index(row, column)), row);
                EXPECT_EQ(numbering.column(numbering.index(row, column)), column);
            }
}

TEST(TableNumbering, ACellIsNamedByLettersAndANumber) {
    EXPECT_EQ(parseCellName("A1"), (CellName{0, 0}));
    EXPECT_EQ(parseCellName("Z9"), (CellName{8, 25}));
    EXPECT_EQ(parseCellName("AB12"), (CellName{11, 27}));
    EXPECT_EQ(parseCellName("XFD1048576"), (CellName{1'048'575, 16'383}));
}

TEST(TableNumbering, AnythingElseIsNoNameOfACell) {
    for (const char* name : {"", "A", "12", "a1", "A1b", "A 1", "ABCD1", "A-1", "A12345678901", "Ä1"})
        EXPECT_EQ(parseCellName(name), std::nullopt) << name;
}

}  // namespace
}  // namespace tarvix::atspi
