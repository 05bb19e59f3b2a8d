// Tables of the documents that tests hold against tables of the code.
#pragma once

#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace tarvix {

// The rows of a page's tables whose head begins so, as they stand.
inline std::vector<std::string> rowsBelow(const char* page, std::string_view head) {
    std::ifstream lines(page);
    std::vector<std::string> rows;
    bool inTable = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(head))
            inTable = true;
        else if (!line.starts_with('|'))
            inTable = false;
        else if (inTable && !line.starts_with("|---"))
            rows.push_back(line);
    }
    return rows;
}

}  // namespace tarvix
