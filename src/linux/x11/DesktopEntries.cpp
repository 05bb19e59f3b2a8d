#include "linux/x11/DesktopEntries.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <system_error>
#include <utility>

namespace tarvix {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kExtension = ".desktop";

std::string variable(const char* name, std::string otherwise) {
    const char* value = std::getenv(name);
    return value && *value ? value : otherwise;
}

std::string lowered(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

bool sameIgnoringCase(std::string_view a, std::string_view b) { return !a.empty() && lowered(a) == lowered(b); }

std::string_view lastPart(std::string_view id) {
    const std::size_t dot = id.rfind('.');
    return dot == std::string_view::npos ? id : id.substr(dot + 1);
}

// The locale names whose translations are taken, best first: "de_AT", "de".
std::vector<std::string> languages() {
    std::string locale = variable("LC_ALL", variable("LC_MESSAGES", variable("LANG", "")));
    locale = locale.substr(0, locale.find_first_of(".@"));
    const std::string language = locale.substr(0, locale.find('_'));
    if (locale.empty()) return {};
    return language == locale ? std::vector{locale} : std::vector{locale, language};
}

std::string programOf(const std::string& command) {
    std::istringstream words(command);
    std::string word;
    words >> word;
    const auto belongsToEnv = [](const std::string& w) {
        return w == "env" || w.ends_with("/env") || w.starts_with('-') || w.find('=') != std::string::npos;
    };
    while (belongsToEnv(word)) {
        const bool hasValue = word == "-u" || word == "-C";
        if (!(words >> word) || (hasValue && !(words >> word))) return {};
    }
    std::erase(word, '"');
    return fs::path(word).filename().string();
}

// The values of the main group, by key as written, the language included.
std::map<std::string, std::string> mainGroupOf(const fs::path& path) {
    std::map<std::string, std::string> values;
    std::ifstream file(path);
    std::string line;
    bool inMainGroup = false;
    while (std::getline(file, line)) {
        if (line.starts_with('[')) {
            if (inMainGroup) break;
            inMainGroup = line.starts_with("[Desktop Entry]");
        }
        const std::size_t sign = line.find('=');
        if (!inMainGroup || sign == std::string::npos || line.starts_with('#')) continue;
        const std::size_t keyEnd = line.find_last_not_of(" \t", sign - 1);
        const std::size_t value = line.find_first_not_of(" \t", sign + 1);
        if (sign == 0 || keyEnd == std::string::npos) continue;
        values.emplace(line.substr(0, keyEnd + 1), value == std::string::npos ? "" : line.substr(value));
    }
    return values;
}

std::string idOf(const fs::path& file, const fs::path& folder) {
    std::string id = file.lexically_relative(folder).string();
    std::ranges::replace(id, '/', '-');
    id.resize(id.size() - kExtension.size());
    return id;
}

std::optional<DesktopEntry> entryOf(const fs::path& file, const fs::path& folder) {
    auto values = mainGroupOf(file);
    if (values["Type"] != "Application") return std::nullopt;
    std::string name = values["Name"];
    for (const std::string& language : languages())
        if (const auto translated = values.find("Name[" + language + "]"); translated != values.end()) {
            name = translated->second;
            break;
        }
    return DesktopEntry{idOf(file, folder),        name, values["StartupWMClass"],
                        programOf(values["Exec"]), file, values["NoDisplay"] != "true"};
}

// Those whose id isn't known yet.
void addEntriesOf(const fs::path& folder, std::set<std::string>& known, std::vector<DesktopEntry>& entries) {
    std::error_code failure;
    fs::recursive_directory_iterator file(folder, fs::directory_options::skip_permission_denied, failure), end;
    for (; !failure && file != end; file.increment(failure)) {
        if (file->path().extension() != kExtension || !known.insert(idOf(file->path(), folder)).second) continue;
        if (auto entry = entryOf(file->path(), folder)) entries.push_back(std::move(*entry));
    }
}

}  // namespace

DesktopEntries::DesktopEntries(std::vector<fs::path> folders) : folders_(std::move(folders)) { read(); }

std::vector<fs::path> DesktopEntries::standardFolders() {
    const std::string home = variable("HOME", "/");
    std::vector<fs::path> folders{fs::path(variable("XDG_DATA_HOME", home + "/.local/share")) / "applications"};
    std::istringstream list(variable("XDG_DATA_DIRS", "/usr/local/share:/usr/share"));
    for (std::string folder; std::getline(list, folder, ':');)
        if (!folder.empty()) folders.push_back(fs::path(folder) / "applications");
    return folders;
}

std::vector<fs::file_time_type> DesktopEntries::changeTimes() const {
    std::vector<fs::file_time_type> times;
    for (const fs::path& folder : folders_) {
        std::error_code failure;
        times.push_back(fs::last_write_time(folder, failure));
    }
    return times;
}

void DesktopEntries::read() {
    readAt_ = changeTimes();
    entries_.clear();
    std::set<std::string> known;
    for (const fs::path& folder : folders_) addEntriesOf(folder, known, entries_);
}

template <class Fits>
std::optional<DesktopEntry> DesktopEntries::find(const std::vector<Fits>& tries) {
    const std::lock_guard lock(mutex_);
    const auto look = [&]() -> std::optional<DesktopEntry> {
        for (const auto& fits : tries)
            if (const auto found = std::ranges::find_if(entries_, fits); found != entries_.end()) return *found;
        return std::nullopt;
    };
    if (auto found = look()) return found;
    if (changeTimes() == readAt_) return std::nullopt;
    read();
    return look();
}

using Fits = std::function<bool(const DesktopEntry&)>;

std::optional<DesktopEntry> DesktopEntries::named(std::string_view name) {
    return find<Fits>({[&](const DesktopEntry& e) { return e.name == name; }});
}

std::optional<DesktopEntry> DesktopEntries::withId(std::string_view id) {
    return find<Fits>({[&](const DesktopEntry& e) { return e.id == id; }});
}

std::optional<DesktopEntry> DesktopEntries::ofWindow(std::string_view windowClass, std::string_view windowInstance) {
    std::vector<Fits> tries;
    for (const std::string_view name : {windowClass, windowInstance}) {
        if (name.empty()) continue;
        tries.push_back([name](const DesktopEntry& e) { return e.windowClass == name; });
        tries.push_back([name](const DesktopEntry& e) { return sameIgnoringCase(e.id, name); });
        tries.push_back([name](const DesktopEntry& e) { return sameIgnoringCase(lastPart(e.id), name); });
    }
    return find(tries);
}

std::optional<DesktopEntry> DesktopEntries::ofProgram(std::string_view program) {
    if (program.empty()) return std::nullopt;
    return find<Fits>({[&](const DesktopEntry& e) { return e.program == program && e.isInMenus; },
                       [&](const DesktopEntry& e) { return e.program == program; }});
}

std::optional<DesktopEntry> DesktopEntries::ofSnap(std::string_view snap) {
    const std::string prefix = std::string(snap) + "_", main = prefix + std::string(snap);
    return find<Fits>({[&](const DesktopEntry& e) { return e.id == main; },
                       [&](const DesktopEntry& e) { return e.id.starts_with(prefix); }});
}

std::optional<DesktopEntry> DesktopEntries::onlyIn(const fs::path& folder) {
    std::error_code failure;
    fs::directory_iterator file(folder, failure), end;
    for (; !failure && file != end; file.increment(failure))
        if (file->path().extension() == kExtension) return entryOf(file->path(), folder);
    return std::nullopt;
}

}  // namespace tarvix
