// What the kernel tells of a process.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvix {

// Any thread. Absent or empty when the process has gone or belongs to somebody else.
bool processIsAlive(std::int32_t pid);
// Whether it is held by somebody, as a debugger or a shell does, so that it can't answer.
bool isStopped(std::int32_t pid);
// The base name of its program.
std::string programName(std::int32_t pid);
// The same of a script that it runs, where its program only interprets scripts.
std::string programOrScriptName(std::int32_t pid);
// The whole path of its program, as the kernel knows it.
std::string programPath(std::int32_t pid);
// A variable of the environment that it was started with.
std::optional<std::string> environmentVariable(std::int32_t pid, std::string_view name);
// The application id that a Flatpak sandbox gives it.
std::optional<std::string> flatpakId(std::int32_t pid);
// The Snap that its program is a part of.
std::optional<std::string> snapOfProgram(std::int32_t pid);
// The Snap that it was started in, or one of those that started it: a Snap's terminal hands its name on to everything.
std::optional<std::string> snapOfEnvironment(std::int32_t pid);
// The folder where the AppImage is unpacked that its program is a part of.
std::optional<std::string> appImageFolder(std::int32_t pid);

// The same of texts.
// Of a program's name and the arguments of its command line, the first of which is its own name.
std::string programOrScript(std::string_view program, const std::vector<std::string>& arguments);
std::optional<std::string> snapOfPath(std::string_view program);
std::optional<std::string> snapOfControlGroup(std::string_view cgroup);
std::optional<std::string> appImageFolderOfPath(std::string_view program);

}  // namespace tarvix
