// The user's own copy of a desktop file by which a program always shows its controls.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/Outcome.h"

namespace tarvix {

// What has to be different when a program is started.
struct Remedy {
    std::vector<std::string> variables;  // "NAME=VALUE"
    std::vector<std::string> without;    // variables of its environment that it must not see
    std::vector<std::string> arguments;  // before its own
    friend bool operator==(const Remedy&, const Remedy&) = default;
};

// A command line of a desktop file with the remedy in it; the rest of it stays as it is, letter by letter. A fault for
// one that isn't a command line.
Outcome<std::string> commandWith(const Remedy& remedy, std::string_view command);

// A copy of a desktop file with the remedy in each of its command lines, those of its actions included, and with a mark
// by which authorshipOf() knows it. The desktop would not use the command lines of one that is started over D-Bus, so
// that the copy isn't. A fault for a text that is no desktop file of an application.
Outcome<std::string> overrideOf(std::string_view desktopFile, const Remedy& remedy);

enum class Authorship {
    ours,     // written by overrideOf() and not changed since
    changed,  // written by overrideOf() and changed by somebody
    other,
};
Authorship authorshipOf(std::string_view desktopFile);

}  // namespace tarvix
