#include "linux/atspi/TableNumbering.h"

namespace tarvix::atspi {

std::optional<CellName> parseCellName(const std::string& name) {
    CellName cell;
    std::size_t i = 0;
    for (; i < name.size() && i < 3 && name[i] >= 'A' && name[i] <= 'Z'; ++i)
        cell.column = cell.column * 26 + (name[i] - 'A' + 1);
    if (i == 0 || i == name.size() || name.size() > 10) return std::nullopt;
    for (; i < name.size(); ++i) {
        if (name[i] < '0' || name[i] > '9') return std::nullopt;
        cell.row = cell.row * 10 + (name[i] - '0');
    }
    return CellName{cell.row - 1, cell.column - 1};
}

Numbering numberingOf(std::int64_t rows, std::int64_t columns, std::int64_t children) {
    for (const std::int64_t columnHeaders : {0, 1})
        for (const std::int64_t rowHeaders : {0, 1})
            if ((rows + columnHeaders) * (columns + rowHeaders) == children)
                return {columns, columnHeaders, rowHeaders};
    return {columns, 0, 0};
}

}  // namespace tarvix::atspi
