#include "qt/SettingsFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QSaveFile>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <thread>

namespace tarvix {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLargest = 262'144;  // a hundred times what all settings take
constexpr int kMostLinks = 40;
constexpr int kMostDamaged = 1000;
constexpr auto kLockWait = std::chrono::milliseconds(100);  // a write takes one or two
constexpr auto kLockStep = std::chrono::milliseconds(1);

// A file descriptor of a function's own.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    operator int() const { return fd_; }

private:
    int fd_;
};

std::string errorText(int error) { return std::generic_category().message(error); }

bool writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(fd, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

std::string folderOf(const std::string& path) { return fs::path(path).parent_path().string(); }

}  // namespace

SettingsFile::Lock::Lock(const SettingsFile& file) {
    std::error_code error;
    fs::create_directories(folderOf(file.path()), error);
    folder_ = open(folderOf(file.target()).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const auto until = std::chrono::steady_clock::now() + kLockWait;
    while (true) {
        isHeld_ = folder_ < 0 || flock(folder_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
        if (isHeld_ || std::chrono::steady_clock::now() > until) return;
        std::this_thread::sleep_for(kLockStep);
    }
}

SettingsFile::Lock::~Lock() {
    if (folder_ >= 0) close(folder_);
}

std::string SettingsFile::target() const {
    fs::path path = path_;
    std::error_code error;
    for (int i = 0; i < kMostLinks && fs::is_symlink(path, error); ++i) {
        const fs::path next = fs::read_symlink(path, error);
        if (error) break;
        path = path.parent_path() / next;  // which is `next` itself where that is absolute
    }
    return path.string();
}

SettingsFile::Reading SettingsFile::read() const {
    // Opening a pipe would wait for a writer.
    const Descriptor file(open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (file < 0) {
        if (errno == ENOENT || errno == ENOTDIR) return {};
        return {Kind::unusable, errorText(errno)};
    }
    struct stat status {};
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) return {Kind::unusable, "not a regular file"};
    Reading reading{Kind::text, {}};
    char buffer[16 * 1024];
    while (true) {
        const ssize_t count = ::read(file, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return {Kind::unusable, errorText(errno)};
        if (count == 0) return reading;
        reading.text.append(buffer, static_cast<std::size_t>(count));
        if (reading.text.size() > kLargest) return {Kind::unusable, "too large"};
    }
}

// QSaveFile keeps the permissions, and has the new content on the disk before it takes the old one's place.
std::string SettingsFile::replace(std::string_view text) const {
    QSaveFile file(QString::fromStdString(target()));
    if (!file.open(QIODevice::WriteOnly)) return file.errorString().toStdString();
    file.write(text.data(), static_cast<qint64>(text.size()));
    return file.commit() ? std::string() : file.errorString().toStdString();
}

std::string SettingsFile::setAside(std::string_view text) const {
    for (int i = 1; i <= kMostDamaged; ++i) {
        std::string name = path_ + ".damaged" + (i > 1 ? "." + std::to_string(i) : "");
        const Descriptor file(open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
        if (file < 0 && errno == EEXIST) {
            if (SettingsFile(name).read() == Reading{Kind::text, std::string(text)}) return name;
            continue;
        }
        if (file < 0) return {};
        if (writeAll(file, text) && fsync(file) == 0) return name;
        unlink(name.c_str());
        return {};
    }
    return {};
}

}  // namespace tarvix
