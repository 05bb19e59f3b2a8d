// Looks at every program that shows a window, for the doctor.
#pragma once

#include "linux/x11/X11Windows.h"
#include "platform/ProgramSurvey.h"

namespace tarvix {

// Takes some milliseconds for each program, 0.3 seconds for one that doesn't answer and up to 2 for a browser that
// nobody has asked for its tree yet: asking makes it build one, as a search would.
ProgramSurvey surveyPrograms(X11Windows& windows);

}  // namespace tarvix
