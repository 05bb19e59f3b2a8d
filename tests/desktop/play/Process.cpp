#include "tests/desktop/play/Process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "tests/desktop/play/Await.h"

namespace tarvix {

namespace {

int exitStatus(int waited) { return WIFEXITED(waited) ? WEXITSTATUS(waited) : 128 + WTERMSIG(waited); }

[[noreturn]] void become(const std::vector<std::string>& command, const Process::Environment& changes, int output) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    dup2(output, STDOUT_FILENO);
    for (const auto& [name, value] : changes) {
        if (value) {
            setenv(name.c_str(), value->c_str(), 1);
        } else {
            unsetenv(name.c_str());
        }
    }
    std::vector<char*> arguments;
    for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

}  // namespace

Process::Process(const std::vector<std::string>& command, const Environment& changes) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    pid_ = fork();
    if (pid_ == 0) become(command, changes, nowhere);
    close(nowhere);
}

Process::~Process() {
    if (!isRunning()) return;
    send(SIGTERM);
    send(SIGCONT);
    if (waitForEnd(std::chrono::seconds(3))) return;
    send(SIGKILL);
    int waited = 0;
    waitpid(pid_, &waited, 0);
}

void Process::send(int signal) const {
    if (!status_ && pid_ > 0) kill(pid_, signal);
}

std::optional<int> Process::waitForEnd(std::chrono::milliseconds limit) {
    await(limit, [this] { return status_ || look(); });
    return status_;
}

bool Process::look() {
    int waited = 0;
    if (waitpid(pid_, &waited, WNOHANG) == pid_) status_ = exitStatus(waited);
    return status_.has_value();
}

std::optional<std::string> outputOf(const std::vector<std::string>& command) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
    const pid_t pid = fork();
    if (pid == 0) become(command, {}, ends[1]);
    close(ends[1]);
    std::string text;
    char buffer[4096];
    for (ssize_t count = 0; (count = read(ends[0], buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(count));
    close(ends[0]);
    int waited = 0;
    if (waitpid(pid, &waited, 0) != pid || exitStatus(waited) != 0) return std::nullopt;
    return text;
}

}  // namespace tarvix
