// The moments of a search, in the order in which they were reached.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/Milestones.h"

namespace tarvix {

class SimulatedMilestones : public Milestones {
public:
    using Moment = std::pair<std::string, std::size_t>;

    void reached(std::string_view moment, std::size_t count) override {
        const std::lock_guard lock(mutex_);
        moments_.emplace_back(moment, count);
    }
    std::vector<Moment> moments() const {
        const std::lock_guard lock(mutex_);
        return moments_;
    }

private:
    mutable std::mutex mutex_;  // guards moments_, which any thread may add to
    std::vector<Moment> moments_;
};

}  // namespace tarvix
