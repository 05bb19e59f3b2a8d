// What the program is asked for by its arguments, and what it says of that itself.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tarvix {

namespace command {

struct Help {};
struct Version {};
// Ends the running program.
struct Quit {};
struct Doctor {
    bool undoes = false;
};
// The program itself. Addresses are for the one that runs already, if any.
struct Start {
    std::vector<std::string> addresses;
    bool isService = false;  // the session bus starts it, for somebody who has called it by its name
};
struct WrongUse {
    std::string complaint;
};

}  // namespace command

using Command =
    std::variant<command::Start, command::Help, command::Version, command::Quit, command::Doctor, command::WrongUse>;

// The arguments without the program's own name. Addresses are valid UTF-8; all else about them is for their reader to
// judge. A complaint has one line and no control characters, whatever the arguments hold.
Command parseCommandLine(std::span<const std::string_view> arguments);

enum class ExitStatus : std::uint8_t { success = 0, failure = 1, wrongUse = 2 };

struct CommandHelpRow {
    std::string_view form, help;
};
inline constexpr std::array<CommandHelpRow, 7> commandHelp{{
    {"tarvix", "starts in the background; where Tarvix runs already, opens its settings"},
    {"tarvix tarvix://ADDRESS", "hands the address to the running Tarvix; where none runs, starts and drops it"},
    {"tarvix --quit", "ends the running Tarvix, and waits until it has ended"},
    {"tarvix doctor",
     "says which programs with a window show no controls, and why; offers a lasting remedy, a desktop "
     "file of your own, where there is one, and writes it on a yes only"},
    {"tarvix doctor --undo", "removes these files again"},
    {"tarvix --version", "prints the version"},
    {"tarvix --help", "prints this, and the keys"},
}};

struct ExitStatusRow {
    ExitStatus status;
    std::string_view meaning;
};
inline constexpr std::array<ExitStatusRow, 3> exitStatusHelp{{
    {ExitStatus::success,
     "done. --quit: none runs any more. doctor: all programs show their controls; --undo: no file is left"},
    {ExitStatus::failure,
     "not done, for the reason on the error output. --quit: it still runs. doctor: some programs don't show "
     "their controls, or accessibility is off or out of reach; --undo: a file is left, changed since or "
     "stuck"},
    {ExitStatus::wrongUse, "wrong use"},
}};

// What --help prints, but for the keys: all of the above in lines of at most 100 characters.
std::string usageText();

}  // namespace tarvix
