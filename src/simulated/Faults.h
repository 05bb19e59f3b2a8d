// Which calls of the simulated services fail.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace tarvix {

// A call is known by the name of its operation in the interface, such as "onScreenWindows". A failing call answers what
// its interface says for failure: nothing, false, an empty list. Any thread.
class Faults {
public:
    // Every call from now on.
    void fail(std::string_view operation) { failFrom(operation, 1); }
    // Only the n-th call from now, counted from 1.
    void failNth(std::string_view operation, int n) { set(operation, {n, 1, 0}); }
    // The n-th call from now and all later ones.
    void failFrom(std::string_view operation, int n) { set(operation, {n, forEver, 0}); }
    void mend(std::string_view operation) {
        const std::lock_guard lock(mutex_);
        plans_.erase(std::string(operation));
    }

    // For the services: counts one call and says whether it fails.
    bool strike(std::string_view operation) {
        const std::lock_guard lock(mutex_);
        const auto found = plans_.find(operation);
        if (found == plans_.end()) return false;
        Plan& plan = found->second;
        ++plan.calls;
        return plan.calls >= plan.first && (plan.count == forEver || plan.calls < plan.first + plan.count);
    }

private:
    static constexpr int forEver = 0;

    struct Plan {
        int first = 1;
        int count = forEver;
        int calls = 0;
    };

    void set(std::string_view operation, Plan plan) {
        const std::lock_guard lock(mutex_);
        plans_.insert_or_assign(std::string(operation), plan);
    }

    std::mutex mutex_;
    std::map<std::string, Plan, std::less<>> plans_;
};

}  // namespace tarvix
