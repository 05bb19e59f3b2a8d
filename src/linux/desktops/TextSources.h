// Texts of files and programs that may be anything: read with limits.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace tarvix {

// The text of an ordinary file, at most a megabyte of it; absent for anything else, such as a pipe.
std::optional<std::string> textOfFile(const std::string& path);

// The file of the user's configuration, else that of the system's, by its name below their folders.
std::optional<std::string> userConfiguration(const std::string& name);
std::optional<std::string> systemConfiguration(const std::string& name);

// What a program writes to its standard output, at most a megabyte of it; empty when it can't be started, and what has
// come by then when it isn't through in time. It has ended when this returns.
std::string outputOfProgram(const std::vector<std::string>& command, std::chrono::milliseconds limit);

}  // namespace tarvix
