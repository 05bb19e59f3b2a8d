#include "shell/CommandLine.h"

#include <algorithm>
#include <cctype>

#include "base/Unicode.h"

namespace tarvix {

namespace {

constexpr std::size_t kWidth = 100;
constexpr std::string_view kScheme = "tarvix:";

// Schemes are the same in any case; what follows is its reader's business.
bool isAddress(std::string_view argument) {
    return argument.size() >= kScheme.size() &&
           std::equal(kScheme.begin(), kScheme.end(), argument.begin(),
                      [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
}

bool isUtf8(std::string_view text) {
    std::string again;
    toUtf16(text).toUTF8String(again);
    return again == text;
}

// An argument as it can be shown on a terminal, whoever made it up.
std::string quoted(std::string_view argument) {
    constexpr std::size_t most = 60;
    std::string shown = "'";
    for (const char c : argument.substr(0, most)) {
        const auto byte = static_cast<unsigned char>(c);
        shown += byte >= 0x20 && byte < 0x7f ? c : '?';
    }
    return shown + (argument.size() > most ? "...'" : "'");
}

Command wrongUse(std::string complaint) { return command::WrongUse{std::move(complaint)}; }

Command parseStart(std::span<const std::string_view> arguments) {
    command::Start start;
    for (const std::string_view argument : arguments) {
        if (!isAddress(argument)) return wrongUse("unknown argument " + quoted(argument));
        if (!isUtf8(argument)) return wrongUse("the address " + quoted(argument) + " is not valid UTF-8");
        start.addresses.emplace_back(argument);
    }
    return start;
}

// Words in lines, each of them indented.
std::string inLines(std::string_view text, std::size_t indent) {
    std::string lines, line;
    const auto end = [&] {
        if (!line.empty()) lines += std::string(indent, ' ') + line + "\n";
        line.clear();
    };
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(text.size(), word.size() + 1));
        if (indent + line.size() + 1 + word.size() > kWidth) end();
        if (!line.empty()) line += ' ';
        line += word;
    }
    end();
    return lines;
}

}  // namespace

Command parseCommandLine(std::span<const std::string_view> arguments) {
    if (arguments.empty()) return command::Start{};
    const std::string_view first = arguments.front();
    const auto rest = arguments.subspan(1);
    const auto alone = [&](const Command& command) {
        return rest.empty() ? command : wrongUse(quoted(first) + " takes no further argument");
    };
    if (first == "--help") return alone(command::Help{});
    if (first == "--version") return alone(command::Version{});
    if (first == "--quit") return alone(command::Quit{});
    if (first == "--dbus-service") return alone(command::Start{.addresses = {}, .isService = true});
    if (first != "doctor") return parseStart(arguments);
    if (rest.empty()) return command::Doctor{};
    if (rest.size() == 1 && rest.front() == "--undo") return command::Doctor{.undoes = true};
    return wrongUse("'doctor' takes --undo and nothing else");
}

std::string usageText() {
    std::string text = "Usage:\n";
    for (const auto& [form, help] : commandHelp) text += "  " + std::string(form) + "\n" + inLines(help, 6);
    text +=
        "\nTarvix reaches and operates any visible control of the frontmost application from the keyboard.\n"
        "It stays in the background; Shift+Super+Space brings up The Input.\n"
        "\nExit status:\n";
    for (const auto& [status, meaning] : exitStatusHelp)
        text += "  " + std::to_string(static_cast<int>(status)) + "\n" + inLines(meaning, 6);
    text +=
        "\nEnvironment:\n"
        "  TARVIX_MILESTONES\n"
        "      a file that gets a line with the time of each moment of a search\n";
    return text;
}

}  // namespace tarvix
