// The windows on the screen, as the test has stated them.
#pragma once

#include <mutex>

#include "platform/WindowServer.h"
#include "simulated/Faults.h"

namespace tarvix {

// Can fail: onScreenWindows.
class SimulatedWindowServer : public WindowServer {
public:
    explicit SimulatedWindowServer(Faults& faults) : faults_(faults) {}

    std::optional<std::vector<WindowInfo>> onScreenWindows() override {
        if (faults_.strike("onScreenWindows")) return std::nullopt;
        const std::lock_guard lock(mutex_);
        return windows_;
    }

    // In front of all others.
    void add(WindowInfo window) {
        const std::lock_guard lock(mutex_);
        windows_.insert(windows_.begin(), std::move(window));
    }
    void remove(std::uint32_t number) {
        const std::lock_guard lock(mutex_);
        std::erase_if(windows_, [number](const WindowInfo& window) { return window.number == number; });
    }

private:
    Faults& faults_;
    std::mutex mutex_;  // guards windows_, which any thread may ask for
    std::vector<WindowInfo> windows_;
};

}  // namespace tarvix
