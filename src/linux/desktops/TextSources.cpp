#include "linux/desktops/TextSources.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <sstream>

namespace tarvix {

namespace {

constexpr std::size_t kLongest = 1024 * 1024;

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }
    void close() {
        if (number_ >= 0) ::close(number_);
        number_ = -1;
    }
    int get() const { return number_; }

private:
    int number_;
};

// False at the end, after an error and when there is enough.
bool readSome(int descriptor, std::string& text) {
    std::array<char, 16 * 1024> part;
    const ssize_t length = read(descriptor, part.data(), std::min(part.size(), kLongest - text.size()));
    if (length <= 0) return false;
    text.append(part.data(), static_cast<std::size_t>(length));
    return text.size() < kLongest;
}

std::string variable(const char* name, const std::string& otherwise) {
    const char* value = std::getenv(name);
    return value && *value ? value : otherwise;
}

// -1 when it can't be started.
pid_t start(const std::vector<std::string>& command, int output) {
    std::vector<char*> words;
    for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    const int error = posix_spawnp(&pid, words.front(), &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? pid : -1;
}

}  // namespace

std::optional<std::string> textOfFile(const std::string& path) {
    // Not to wait for a writer, should it be a pipe.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat about {};
    if (file.get() < 0 || fstat(file.get(), &about) != 0 || !S_ISREG(about.st_mode)) return std::nullopt;
    std::string text;
    while (readSome(file.get(), text)) {
    }
    return text;
}

std::optional<std::string> userConfiguration(const std::string& name) {
    return textOfFile(variable("XDG_CONFIG_HOME", variable("HOME", "") + "/.config") + "/" + name);
}

std::optional<std::string> systemConfiguration(const std::string& name) {
    std::istringstream folders(variable("XDG_CONFIG_DIRS", "/etc/xdg"));
    for (std::string folder; std::getline(folders, folder, ':');)
        if (auto text = textOfFile(folder + "/" + name)) return text;
    return std::nullopt;
}

std::string outputOfProgram(const std::vector<std::string>& command, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return {};
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const pid_t pid = start(command, writing.get());
    writing.close();
    if (pid < 0) return {};
    std::string text;
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
        pollfd waiting{reading.get(), POLLIN, 0};
        if (left <= 0 || poll(&waiting, 1, static_cast<int>(left)) <= 0 || !readSome(reading.get(), text)) break;
    }
    // It may have closed its output and live on.
    kill(pid, SIGKILL);
    while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
    return text;
}

}  // namespace tarvix
