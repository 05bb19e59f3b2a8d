#include "linux/atspi/Sandbox.h"

#include <fstream>
#include <iterator>

namespace tarvix::atspi {

std::optional<std::string> flatpakInstanceIn(std::string_view description) {
    bool inInstance = false;
    while (!description.empty()) {
        const std::size_t end = description.find('\n');
        const std::string_view line = description.substr(0, end);
        description.remove_prefix(end == std::string_view::npos ? description.size() : end + 1);
        if (line.starts_with('[')) inInstance = line == "[Instance]";
        constexpr std::string_view key = "instance-id=";
        if (inInstance && line.starts_with(key) && line.size() > key.size())
            return std::string(line.substr(key.size()));
    }
    return std::nullopt;
}

std::optional<std::string> flatpakInstance(std::int32_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/root/.flatpak-info");
    return flatpakInstanceIn(std::string(std::istreambuf_iterator<char>(file), {}));
}

}  // namespace tarvix::atspi
