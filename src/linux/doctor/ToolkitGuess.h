// What a program is made with, by what it has loaded.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ProgramSurvey.h"

namespace tarvix {

struct ToolkitGuess {
    ProgramToolkit toolkit = ProgramToolkit::unknown;
    std::string name;
    friend bool operator==(const ToolkitGuess&, const ToolkitGuess&) = default;
};

// By the memory map of a process, as the kernel writes it, and the names of the files beside its program, "resources/"
// with what is in there.
ToolkitGuess guessToolkit(std::string_view maps, const std::vector<std::string>& beside);

// The same of a process; unknown when it can't be looked at.
ToolkitGuess guessToolkit(std::int32_t pid);

}  // namespace tarvix
