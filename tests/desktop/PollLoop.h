// A main loop for tests: it waits for descriptors until a condition holds or a limit is over.
#pragma once

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "platform/RunLoop.h"

namespace tarvix {

class PollLoop final : public ReadWatcher {
public:
    Subscription onReadable(int fileDescriptor, std::function<void()> ready) override {
        const int id = ++lastId_;
        watched_->emplace(id, Watched{fileDescriptor, std::move(ready)});
        return Subscription([watched = watched_, id] { watched->erase(id); });
    }

    // Whether the condition came to hold. It is looked at before each wait, and at least every 5 ms.
    bool runUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit = std::chrono::seconds(5)) {
        const auto end = std::chrono::steady_clock::now() + limit;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end) return false;
            pass(5);
        }
        return true;
    }

    // Handles what has arrived already.
    void runPending() {
        while (pass(0)) {
        }
    }

private:
    struct Watched {
        int fileDescriptor;
        std::function<void()> ready;
    };

    bool pass(int milliseconds) {
        std::vector<pollfd> descriptors;
        std::vector<int> ids;
        for (const auto& [id, watched] : *watched_) {
            descriptors.push_back({watched.fileDescriptor, POLLIN, 0});
            ids.push_back(id);
        }
        if (poll(descriptors.data(), descriptors.size(), milliseconds) <= 0) return false;
        for (std::size_t i = 0; i < ids.size(); ++i) {
            const auto found = watched_->find(ids[i]);
            if (descriptors[i].revents == 0 || found == watched_->end()) continue;
            const auto ready = found->second.ready;
            ready();
        }
        return true;
    }

    int lastId_ = 0;
    std::shared_ptr<std::map<int, Watched>> watched_ = std::make_shared<std::map<int, Watched>>();
};

}  // namespace tarvix
