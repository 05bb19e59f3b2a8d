#include "linux/x11/ProcessFiles.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

namespace tarvix {

namespace {

std::string pathOf(std::int32_t pid, std::string_view file) {
    return "/proc/" + std::to_string(pid) + "/" + std::string(file);
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// By their names, which a version may follow.
constexpr auto kInterpreters =
    std::to_array<std::string_view>({"python", "perl", "ruby", "gjs-console", "gjs", "node", "php", "lua", "java",
                                     "mono", "wish", "bash", "dash", "sh"});

bool isInterpreter(std::string_view program) {
    return std::ranges::any_of(kInterpreters, [program](std::string_view name) {
        return program.starts_with(name) &&
               program.find_first_not_of("0123456789.-", name.size()) == std::string_view::npos;
    });
}

}  // namespace

bool processIsAlive(std::int32_t pid) {
    std::error_code failure;
    return pid > 0 && std::filesystem::exists(pathOf(pid, ""), failure);
}

bool isStopped(std::int32_t pid) {
    const std::string stat = contentOf(pathOf(pid, "stat"));
    // After the program's name, which is in brackets and may hold some itself.
    const std::size_t state = stat.rfind(") ");
    return state != std::string::npos && (stat[state + 2] == 'T' || stat[state + 2] == 't');
}

std::string programPath(std::int32_t pid) {
    std::error_code failure;
    std::string path = std::filesystem::read_symlink(pathOf(pid, "exe"), failure).string();
    constexpr std::string_view replaced = " (deleted)";  // the program was updated while it runs
    if (path.ends_with(replaced)) path.resize(path.size() - replaced.size());
    return path;
}

std::string programName(std::int32_t pid) {
    std::string name = std::filesystem::path(programPath(pid)).filename().string();
    if (!name.empty()) return name;
    std::string command = contentOf(pathOf(pid, "comm"));
    return command.substr(0, command.find('\n'));
}

std::string programOrScript(std::string_view program, const std::vector<std::string>& arguments) {
    if (!isInterpreter(program)) return std::string(program);
    for (std::size_t i = 1; i < arguments.size(); ++i)
        if (!arguments[i].starts_with('-')) return std::filesystem::path(arguments[i]).filename().string();
    return {};
}

std::string programOrScriptName(std::int32_t pid) {
    std::istringstream line(contentOf(pathOf(pid, "cmdline")));
    std::vector<std::string> arguments;
    for (std::string argument; std::getline(line, argument, '\0');) arguments.push_back(argument);
    return programOrScript(programName(pid), arguments);
}

std::optional<std::string> environmentVariable(std::int32_t pid, std::string_view name) {
    const std::string all = contentOf(pathOf(pid, "environ"));
    for (std::size_t start = 0; start < all.size();) {
        const std::size_t end = std::min(all.find('\0', start), all.size());
        const std::string_view entry = std::string_view(all).substr(start, end - start);
        if (entry.starts_with(name) && entry.substr(name.size()).starts_with('='))
            return std::string(entry.substr(name.size() + 1));
        start = end + 1;
    }
    return std::nullopt;
}

std::optional<std::string> flatpakId(std::int32_t pid) {
    std::ifstream file(pathOf(pid, "root/.flatpak-info"));
    std::string line;
    bool inApplication = false;
    while (std::getline(file, line)) {
        if (line.starts_with('[')) inApplication = line == "[Application]";
        constexpr std::string_view key = "name=";
        if (inApplication && line.starts_with(key)) return line.substr(key.size());
    }
    return std::nullopt;
}

std::optional<std::string> snapOfPath(std::string_view program) {
    for (const std::string_view mounts : {"/snap/", "/var/lib/snapd/snap/"}) {
        if (!program.starts_with(mounts)) continue;
        const std::string_view rest = program.substr(mounts.size());
        const std::size_t end = rest.find('/');
        if (end != std::string_view::npos && end > 0 && rest.substr(0, end) != "bin")
            return std::string(rest.substr(0, end));
    }
    return std::nullopt;
}

// The group's last part is "snap.NAME.APPLICATION-UUID.scope".
std::optional<std::string> snapOfControlGroup(std::string_view cgroup) {
    constexpr std::string_view prefix = "/snap.";
    const std::size_t start = cgroup.find(prefix);
    if (start == std::string_view::npos) return std::nullopt;
    const std::string_view rest = cgroup.substr(start + prefix.size());
    const std::size_t end = rest.find_first_of(".\n");
    if (end == std::string_view::npos || end == 0 || rest[end] != '.') return std::nullopt;
    return std::string(rest.substr(0, end));
}

std::optional<std::string> appImageFolderOfPath(std::string_view program) {
    for (const std::string_view mark : {"/.mount_", "/appimage_extracted_"}) {
        const std::size_t start = program.find(mark);
        if (start == std::string_view::npos) continue;
        const std::size_t end = program.find('/', start + 1);
        if (end != std::string_view::npos) return std::string(program.substr(0, end));
    }
    return std::nullopt;
}

std::optional<std::string> snapOfProgram(std::int32_t pid) { return snapOfPath(programPath(pid)); }

std::optional<std::string> snapOfEnvironment(std::int32_t pid) {
    if (auto name = environmentVariable(pid, "SNAP_INSTANCE_NAME")) return name;
    return snapOfControlGroup(contentOf(pathOf(pid, "cgroup")));
}

std::optional<std::string> appImageFolder(std::int32_t pid) { return appImageFolderOfPath(programPath(pid)); }

}  // namespace tarvix
