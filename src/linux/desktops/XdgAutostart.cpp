#include "linux/desktops/XdgAutostart.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <system_error>

#include "linux/desktops/AutostartEntry.h"
#include "linux/desktops/Draft.h"
#include "linux/desktops/TextSources.h"

namespace tarvix {

namespace fs = std::filesystem;

namespace {

const std::string kName = "org.tarvix.Tarvix.desktop";
constexpr const char* kProgram = "tarvix";

std::string variable(const char* name, const std::string& otherwise) {
    const char* value = std::getenv(name);
    return value && *value ? value : otherwise;
}

std::vector<std::string> parts(const std::string& list) {
    std::vector<std::string> found;
    std::istringstream in(list);
    for (std::string part; std::getline(in, part, ':');)
        if (!part.empty()) found.push_back(part);
    return found;
}

// A path that isn't absolute counts as none: desktops pass it over, wherever they were started.
fs::path configurationOfUser() {
    const fs::path named = variable("XDG_CONFIG_HOME", "");
    return named.is_absolute() ? named : fs::path(variable("HOME", "")) / ".config";
}

// By its name alone where that stands for the same file, so that the entry outlives a move of the program.
std::string ownProgram(const std::string& searchPath) {
    std::error_code failure;
    const fs::path own = fs::read_symlink("/proc/self/exe", failure);
    const std::string found = programPath(kProgram, searchPath);
    if (!found.empty() && fs::equivalent(found, "/proc/self/exe", failure)) return kProgram;
    return own.string();
}

std::string helperName(std::string_view identifier) { return std::string(identifier) + ".desktop"; }

std::string told(const fs::path& path, const std::string& reason) { return path.string() + ": " + reason; }

bool isThere(const fs::path& path) {
    std::error_code failure;
    return fs::exists(fs::symlink_status(path, failure));
}

// Why a file can't be changed that is no ordinary one: it isn't this program's.
std::optional<std::string> foreignness(const fs::path& path) {
    std::error_code failure;
    switch (fs::symlink_status(path, failure).type()) {
        case fs::file_type::not_found:
        case fs::file_type::regular:
            return std::nullopt;
        case fs::file_type::symlink:
            return told(path, "It is a symbolic link");
        case fs::file_type::directory:
            return told(path, "It is a folder");
        default:
            return told(path, failure ? failure.message() : "It is no ordinary file");
    }
}

}  // namespace

AutostartPlaces AutostartPlaces::standard() {
    AutostartPlaces places;
    places.userFolder = configurationOfUser() / "autostart";
    for (const fs::path folder : parts(variable("XDG_CONFIG_DIRS", "/etc/xdg")))
        if (folder.is_absolute()) places.systemFolders.push_back(folder / "autostart");
    places.desktops = parts(variable("XDG_CURRENT_DESKTOP", ""));
    places.searchPath = variable("PATH", "/usr/local/bin:/usr/bin:/bin");
    places.program = ownProgram(places.searchPath);
    return places;
}

bool XdgAutostart::isEnabled() {
    const auto entry = entryInForce(kName);
    return entry && isSwitchedOn(*entry, places_.desktops) && canBeStarted(*entry, places_.searchPath);
}

std::optional<std::string> XdgAutostart::enable() { return write(kName, autostartEntry(places_.program)); }

std::optional<std::string> XdgAutostart::disable() { return turnOff(kName); }

bool XdgAutostart::isHelperEnabled(std::string_view identifier) {
    const auto entry = entryInForce(helperName(identifier));
    return entry && isSwitchedOn(*entry, places_.desktops);
}

void XdgAutostart::removeHelper(std::string_view identifier) { turnOff(helperName(identifier)); }

std::optional<std::string> XdgAutostart::entryInForce(const std::string& name) const {
    if (isThere(ofUser(name))) return textOfFile(ofUser(name).string());
    return entryOfSystem(name);
}

std::optional<std::string> XdgAutostart::entryOfSystem(const std::string& name) const {
    for (const fs::path& folder : places_.systemFolders)
        if (isThere(folder / name)) return textOfFile((folder / name).string());
    return std::nullopt;
}

// Without an entry of the user's own the system's would be in force.
std::optional<std::string> XdgAutostart::turnOff(const std::string& name) {
    const auto ofSystem = entryOfSystem(name);
    if (ofSystem && isSwitchedOn(*ofSystem, places_.desktops)) return write(name, hiddenEntry());
    const fs::path path = ofUser(name);
    if (const auto foreign = foreignness(path)) {
        const auto inForce = entryInForce(name);
        return inForce && isSwitchedOn(*inForce, places_.desktops) ? foreign : std::nullopt;
    }
    if (unlink(path.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    return told(path, std::strerror(errno));
}

std::optional<std::string> XdgAutostart::write(const std::string& name, const std::string& entry) {
    const fs::path path = ofUser(name);
    if (const auto foreign = foreignness(path)) return foreign;
    std::error_code failure;
    fs::create_directories(places_.userFolder, failure);
    if (failure) return told(places_.userFolder, failure.message());
    const int error = Draft(places_.userFolder, entry).replace(path);
    if (error != 0) return told(path, std::strerror(error));
    return std::nullopt;
}

}  // namespace tarvix
