// Waiting for what another program does.
#pragma once

#include <chrono>
#include <cstdint>
#include <thread>

namespace tarvix {

// Whether the condition came to hold within the limit. It is looked at once a millisecond.
template <class Condition>
bool await(std::chrono::milliseconds limit, Condition condition) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// The clock of the milestones, in microseconds.
inline std::int64_t monotonicMicroseconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

}  // namespace tarvix
