#include "linux/doctor/UserEntryFiles.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "linux/desktops/Draft.h"
#include "linux/desktops/TextSources.h"

namespace tarvix {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kExtension = ".desktop";
constexpr std::size_t kLongest = std::size_t{512} * 1024;  // longer ones would not be read whole

// The paths below a folder of its desktop files.
std::vector<fs::path> entriesIn(const fs::path& folder) {
    std::vector<fs::path> paths;
    std::error_code failure;
    fs::recursive_directory_iterator file(folder, fs::directory_options::skip_permission_denied, failure), end;
    for (; !failure && file != end; file.increment(failure))
        if (file->path().extension() == kExtension) paths.push_back(file->path().lexically_relative(folder));
    std::ranges::sort(paths);
    return paths;
}

bool hasId(const fs::path& path, std::string_view id) {
    std::string name = path.string();
    std::ranges::replace(name, '/', '-');
    return name == std::string(id) + std::string(kExtension);
}

std::optional<fs::path> entryWithId(const fs::path& folder, std::string_view id) {
    for (fs::path& path : entriesIn(folder))
        if (hasId(path, id)) return std::move(path);
    return std::nullopt;
}

Fault faultOf(int error) { return Fault{std::strerror(error)}; }

}  // namespace

UserEntryFiles::UserEntryFiles(std::vector<fs::path> folders) : folders_(std::move(folders)) {}

std::optional<DesktopEntryFile> UserEntryFiles::ofSystem(std::string_view id) {
    for (auto folder = folders_.begin() + 1; folder != folders_.end(); ++folder) {
        const auto path = entryWithId(*folder, id);
        if (!path) continue;
        auto text = textOfFile(*folder / *path);
        if (!text || text->size() > kLongest) return std::nullopt;
        return DesktopEntryFile{*path, std::move(*text)};
    }
    return std::nullopt;
}

std::optional<DesktopEntryFile> UserEntryFiles::ofUser(std::string_view id) {
    const auto path = entryWithId(folders_.front(), id);
    if (!path) return std::nullopt;
    return DesktopEntryFile{*path, textOfFile(folders_.front() / *path).value_or("")};
}

std::vector<DesktopEntryFile> UserEntryFiles::allOfUser() {
    std::vector<DesktopEntryFile> files;
    for (const fs::path& path : entriesIn(folders_.front())) {
        std::error_code failure;
        if (!fs::is_regular_file(fs::symlink_status(folders_.front() / path, failure))) continue;
        if (auto text = textOfFile(folders_.front() / path)) files.push_back({path, std::move(*text)});
    }
    return files;
}

Outcome<std::monostate> UserEntryFiles::create(const DesktopEntryFile& file) {
    const fs::path path = folders_.front() / file.path;
    std::error_code failure;
    fs::create_directories(path.parent_path(), failure);
    if (failure) return Fault{failure.message()};
    Draft draft(path.parent_path(), file.text);
    const int error = draft.become(path);
    if (error != 0) return faultOf(error);
    return std::monostate{};
}

Outcome<std::monostate> UserEntryFiles::remove(const DesktopEntryFile& file) {
    const fs::path path = folders_.front() / file.path;
    if (textOfFile(path) != file.text) return Fault{"it has changed meanwhile"};
    if (unlink(path.c_str()) != 0) return faultOf(errno);
    return std::monostate{};
}

}  // namespace tarvix
