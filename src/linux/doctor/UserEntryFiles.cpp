#include "linux/doctor/UserEntryFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>
#include <utility>

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

// A file with the text in it, beside the one that it is to become.
class Draft {
public:
    Draft(const fs::path& folder, const std::string& text) : path_((folder / ".tarvix-XXXXXX").string()) {
        const int file = mkostemp(path_.data(), O_CLOEXEC);
        if (file < 0) {
            error_ = errno;
            return;
        }
        if (!writeAll(file, text) || fchmod(file, 0644) != 0 || fsync(file) != 0) error_ = errno;
        if (close(file) != 0 && error_ == 0) error_ = errno;
    }
    ~Draft() {
        if (!path_.empty()) unlink(path_.c_str());
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    int error() const { return error_; }

    // 0 or the error, EEXIST where there is a file of that name.
    int become(const fs::path& path) {
        if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) {
            path_.clear();
            return 0;
        }
        // Not every file system can do that; a second name for the file isn't given over another one either.
        if (errno != EINVAL) return errno;
        return link(path_.c_str(), path.c_str()) == 0 ? 0 : errno;
    }

private:
    static bool writeAll(int file, std::string_view text) {
        while (!text.empty()) {
            const ssize_t written = write(file, text.data(), text.size());
            if (written < 0) return false;
            text.remove_prefix(static_cast<std::size_t>(written));
        }
        return true;
    }

    std::string path_;  // empty once it has become another
    int error_ = 0;
};

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
    const int error = draft.error() != 0 ? draft.error() : draft.become(path);
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
