// "tarvix doctor": which programs show no controls, why, and what helps for good.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/DesktopEntryFiles.h"
#include "platform/ProgramSurvey.h"
#include "shell/DoctorOverride.h"

namespace tarvix {

// One program that shows no controls, or none to speak of.
struct Finding {
    std::string line;  // which and why
    std::optional<Remedy> remedy;
};

// Absent when the program shows its controls.
std::optional<Finding> findingOf(const SurveyedProgram& program, const ProgramSurvey& survey);

// Where the doctor speaks. `ask` gives whether the answer was a yes; null where nobody can be asked.
struct Consultation {
    std::function<void(std::string_view line)> say;
    std::function<bool(std::string_view question)> ask;
};

// The exit statuses. Of undoing: whether nothing that was written is left.
enum class Diagnosis { well = 0, somethingIsWrong = 1 };

// Says a line for each program that shows no controls, and offers the remedies. A remedy is written on a yes only, and
// never in the place of a file that the user has. The diagnosis is that of before the remedies.
Diagnosis examine(const ProgramSurvey& survey, DesktopEntryFiles& files, const Consultation& consultation);

// Removes all that examine() has written, but for what somebody has changed since.
Diagnosis undo(DesktopEntryFiles& files, const Consultation& consultation);

}  // namespace tarvix
