#include "qt/TerminationSignals.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <memory>

namespace tarvix {

namespace {

constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};

int sender = -1;  // all that the handler may use

void handle(int) {
    const int saved = errno;
    const char byte = 0;
    // The buffer is full only when requests are waiting already.
    if (send(sender, &byte, 1, MSG_DONTWAIT | MSG_NOSIGNAL) < 0) errno = saved;
    errno = saved;
}

void drain(int receiver) {
    char bytes[64];
    while (recv(receiver, bytes, sizeof bytes, MSG_DONTWAIT) > 0) {
    }
}

}  // namespace

Subscription onTerminationSignal(ReadWatcher& watcher, std::function<void()> requested) {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) < 0) return {};
    sender = ends[1];
    const int receiver = ends[0];
    auto watching = std::make_shared<Subscription>(watcher.onReadable(receiver, [receiver, requested] {
        drain(receiver);
        requested();
    }));
    for (const int number : kSignals) std::signal(number, handle);
    return Subscription([watching, receiver] {
        for (const int number : kSignals) std::signal(number, SIG_DFL);
        watching->reset();
        close(receiver);
        close(sender);
    });
}

}  // namespace tarvix
