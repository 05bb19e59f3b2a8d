// The line between a probe inside an application and what asks it: commands come in, JSON goes out, a line for each.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace tarvix::probe {

class Channel {
public:
    // Connects to the socket that TARVIX_PROBE names, and says who is there.
    explicit Channel(const std::string& toolkit) {
        const char* path = std::getenv("TARVIX_PROBE");
        sockaddr_un address{};
        if (path == nullptr || std::strlen(path) >= sizeof(address.sun_path)) return;
        address.sun_family = AF_UNIX;
        std::strcpy(address.sun_path, path);
        fd_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (connect(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) close();
        send({{"pid", getpid()}, {"version", toolkit}});
    }
    ~Channel() { close(); }
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    int fd() const { return fd_; }  // -1: nobody asks

    void send(const nlohmann::json& message) {
        if (fd_ < 0) return;
        const std::string line = message.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
        for (std::size_t sent = 0; sent < line.size();) {
            const ssize_t count = ::send(fd_, line.data() + sent, line.size() - sent, MSG_NOSIGNAL);
            if (count <= 0) return close();
            sent += static_cast<std::size_t>(count);
        }
    }

    // The commands that have come; to be called when there is something to read.
    std::vector<std::string> commands() {
        char bytes[256];
        const ssize_t count = fd_ < 0 ? 0 : read(fd_, bytes, sizeof(bytes));
        if (count <= 0) {
            close();
            return {};
        }
        pending_.append(bytes, static_cast<std::size_t>(count));
        std::vector<std::string> lines;
        for (std::size_t end = pending_.find('\n'); end != std::string::npos; end = pending_.find('\n')) {
            lines.push_back(pending_.substr(0, end));
            pending_.erase(0, end + 1);
        }
        return lines;
    }

private:
    void close() {
        if (fd_ >= 0) ::close(fd_);
        fd_ = -1;
    }

    int fd_ = -1;
    std::string pending_;
};

}  // namespace tarvix::probe
