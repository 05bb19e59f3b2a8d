#include "linux/x11/ProcessFiles.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
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

}  // namespace

bool processIsAlive(std::int32_t pid) {
    std::error_code failure;
    return pid > 0 && std::filesystem::exists(pathOf(pid, ""), failure);
}

std::string programName(std::int32_t pid) {
    std::error_code failure;
    std::string name = std::filesystem::read_symlink(pathOf(pid, "exe"), failure).filename().string();
    constexpr std::string_view replaced = " (deleted)";  // the program was updated while it runs
    if (name.ends_with(replaced)) name.resize(name.size() - replaced.size());
    if (!name.empty()) return name;
    std::string command = contentOf(pathOf(pid, "comm"));
    return command.substr(0, command.find('\n'));
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

}  // namespace tarvix
