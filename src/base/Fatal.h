// The end of a process that can't go on: a fault of this program, or a desktop without what there is no program
// without.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace tarvix {

// Says what is wrong on the error output. Any thread.
[[noreturn]] inline void fatal(std::string_view issue) {
    std::fprintf(stderr, "tarvix: big issue: %.*s\n", static_cast<int>(issue.size()), issue.data());
    std::abort();
}

}  // namespace tarvix
