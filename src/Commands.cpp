#include "Commands.h"

#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <string>
#include <string_view>

#include "core/KeyHelp.h"
#include "linux/doctor/Survey.h"
#include "linux/doctor/UserEntryFiles.h"
#include "linux/x11/DesktopEntries.h"
#include "linux/x11/X11Windows.h"
#include "shell/Doctor.h"

namespace tarvix {

namespace {

constexpr int kMostTries = 10;  // each of them has found a running program, which then ended

int status(ExitStatus of) { return static_cast<int>(of); }

int fail(const std::string& why) {
    std::fprintf(stderr, "tarvix: %s\n", why.c_str());
    return status(ExitStatus::failure);
}

bool askAtTerminal(std::string_view question) {
    std::cout << question << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

Asked handOver(const command::Start& start) {
    return start.addresses.empty() ? askToActivate() : askToOpen(start.addresses);
}

}  // namespace

int printHelp() {
    std::fputs(usageText().c_str(), stdout);
    std::puts("\nKeys while The Input is up:");
    for (const auto& [keys, help] : keyHelp())
        std::printf("  %s\n      %.*s\n", keys.c_str(), static_cast<int>(help.size()), help.data());
    return status(ExitStatus::success);
}

int printVersion() {
    std::puts("tarvix " TARVIX_VERSION);
    return status(ExitStatus::success);
}

int consultDoctor(const command::Doctor& asked) {
    Consultation consultation{[](std::string_view line) { std::cout << line << std::endl; }, nullptr};
    if (isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0) consultation.ask = askAtTerminal;
    UserEntryFiles files(DesktopEntries::standardFolders());
    if (asked.undoes) return static_cast<int>(undo(files, consultation));
    auto windows = X11Windows::open();
    if (!windows) return fail(windows.reason());
    return static_cast<int>(examine(surveyPrograms(*windows.value()), files, consultation));
}

int quitRunning() {
    if (askToQuit() == Asked::isSilent) return fail("the running Tarvix doesn't end");
    return status(ExitStatus::success);
}

int complain(const command::WrongUse& wrong) {
    std::fprintf(stderr, "tarvix: %s; try 'tarvix --help'\n", wrong.complaint.c_str());
    return status(ExitStatus::wrongUse);
}

std::variant<std::unique_ptr<RunningInstance>, int> becomeInstance(const command::Start& start) {
    for (int i = 0; i < kMostTries; ++i) {
        if (auto instance = RunningInstance::claim()) return instance;
        if (start.isService) return status(ExitStatus::success);  // who called it is answered by the one that runs
        switch (handOver(start)) {
            case Asked::answered:
                return status(ExitStatus::success);
            case Asked::isSilent:
                return fail("Tarvix runs already, but doesn't answer");
            case Asked::nobodyRuns:
                break;
        }
    }
    return fail("Tarvix runs already, but ends again and again");
}

}  // namespace tarvix
