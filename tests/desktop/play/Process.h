// A program started by a test or a player, which ends with it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tarvix {

class Process {
public:
    using Environment = std::map<std::string, std::optional<std::string>>;  // absent: unset

    // Starts a program, its standard output going to /dev/null. A program that can't be started ends with status 127.
    explicit Process(const std::vector<std::string>& command, const Environment& changes = {});
    // Asks it to end, and kills it if it doesn't within three seconds; stopped or not.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    pid_t pid() const { return pid_; }
    bool isRunning() { return !status_ && !look(); }
    void send(int signal) const;
    // The exit status, 128 and more for the number of a signal; nothing while it runs on after the limit.
    std::optional<int> waitForEnd(std::chrono::milliseconds limit);

private:
    bool look();

    pid_t pid_ = -1;
    std::optional<int> status_;
};

// Runs a program and gives what it wrote to its standard output; nothing when its status isn't 0.
std::optional<std::string> outputOf(const std::vector<std::string>& command);

}  // namespace tarvix
