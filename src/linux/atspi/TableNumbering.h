// Where in a table a cell stands, by its index among the table's children or by its name.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarvix::atspi {

// "AB12" is column 27, row 11. A spreadsheet's index in its parent overflows beyond row 131,071; its cells' names
// don't.
struct CellName {
    std::int64_t row = 0, column = 0;
    friend bool operator==(CellName, CellName) = default;
};
// Absent when it isn't the name of a cell.
std::optional<CellName> parseCellName(const std::string& name);

// How a table's children are numbered: a corner and column headers first, then each row, with its header before its
// cells.
struct Numbering {
    std::int64_t columns = 0;
    std::int64_t columnHeaders = 0;  // 0 or 1 row of them
    std::int64_t rowHeaders = 0;     // 0 or 1 column of them
    std::int64_t stride() const { return columns + rowHeaders; }
    // A header's row or column is -1.
    std::int64_t row(std::int64_t index) const { return index / stride() - columnHeaders; }
    std::int64_t column(std::int64_t index) const { return index % stride() - rowHeaders; }
    std::int64_t index(std::int64_t row, std::int64_t column) const {
        return (row + columnHeaders) * stride() + column + rowHeaders;
    }
    friend bool operator==(Numbering, Numbering) = default;
};

// The headers follow from how many children there are beyond the cells; without an explanation there are none.
Numbering numberingOf(std::int64_t rows, std::int64_t columns, std::int64_t children);

}  // namespace tarvix::atspi
