#include "linux/desktops/Draft.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>

namespace tarvix {

namespace {

bool writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(file, text.data(), text.size());
        if (written < 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace

Draft::Draft(const std::filesystem::path& folder, std::string_view text) : path_((folder / ".tarvix-XXXXXX").string()) {
    const int file = mkostemp(path_.data(), O_CLOEXEC);
    if (file < 0) {
        error_ = errno;
        path_.clear();
        return;
    }
    if (!writeAll(file, text) || fchmod(file, 0644) != 0 || fsync(file) != 0) error_ = errno;
    if (close(file) != 0 && error_ == 0) error_ = errno;
}

Draft::~Draft() {
    if (!path_.empty()) unlink(path_.c_str());
}

int Draft::become(const std::filesystem::path& path) {
    if (error_ != 0) return error_;
    if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) {
        path_.clear();
        return 0;
    }
    // Not every file system can do that; a second name for the file isn't given over another one either.
    if (errno != EINVAL) return errno;
    return link(path_.c_str(), path.c_str()) == 0 ? 0 : errno;
}

int Draft::replace(const std::filesystem::path& path) {
    if (error_ != 0) return error_;
    if (rename(path_.c_str(), path.c_str()) != 0) return errno;
    path_.clear();
    return 0;
}

}  // namespace tarvix
