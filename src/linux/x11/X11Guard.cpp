#include "linux/x11/X11Guard.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <new>

#include "linux/x11/X11Connection.h"

namespace tarvix {

namespace {

static_assert(std::atomic<std::uint64_t>::is_always_lock_free, "two processes share them");

constexpr int kLifeline = 3;               // the first descriptor after the standard ones
constexpr unsigned kMostSeconds = 10;      // for the undoing, lest a server that hangs keep the guard
constexpr const char* kName = "keyguard";  // not ours: who kills the program by its name means the first process

// Also keeps nothing else of the first process open, such as a pipe that somebody reads to its end.
void keepOnly(int lifeline) {
    dup2(lifeline, kLifeline);
    const int null = open("/dev/null", O_RDWR);
    for (int standard = 0; standard < kLifeline; ++standard) dup2(null, standard);
    close_range(kLifeline + 1, ~0u, 0);
}

void awaitEndOfWriters(int pipe) {
    char byte = 0;
    ssize_t count = 0;
    do count = read(pipe, &byte, 1);
    while (count > 0 || (count < 0 && errno == EINTR));
}

[[noreturn]] void guard(int lifeline, const X11Remains& remains) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) std::signal(number, SIG_IGN);
    prctl(PR_SET_NAME, kName);
    keepOnly(lifeline);
    awaitEndOfWriters(kLifeline);
    alarm(kMostSeconds);
    if (auto connection = X11Connection::open()) undo(*connection.value(), remains);
    _exit(0);
}

}  // namespace

X11Remains& startGuard() {
    void* memory = mmap(nullptr, sizeof(X11Remains), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return *new X11Remains;
    auto& remains = *new (memory) X11Remains;
    std::array<int, 2> ends{};  // the other end is open for as long as this process lives
    if (pipe2(ends.data(), O_CLOEXEC) < 0) return remains;
    // By way of a child that ends at once: the guard is nobody's child then, and leaves no dead process behind.
    const pid_t child = fork();
    if (child == 0) {
        setsid();
        if (fork() == 0) {
            close(ends[1]);
            guard(ends[0], remains);
        }
        _exit(0);
    }
    close(ends[0]);
    if (child > 0) waitpid(child, nullptr, 0);
    return remains;
}

}  // namespace tarvix
