// What the kernel tells of a process.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarvix {

// Any thread. Absent or empty when the process has gone or belongs to somebody else.
bool processIsAlive(std::int32_t pid);
// The base name of its program.
std::string programName(std::int32_t pid);
// A variable of the environment that it was started with.
std::optional<std::string> environmentVariable(std::int32_t pid, std::string_view name);
// The application id that a Flatpak sandbox gives it.
std::optional<std::string> flatpakId(std::int32_t pid);

}  // namespace tarvix
