// What the program tells of a search, through the file that TARVIX_MILESTONES names.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvix {

struct Moment {
    std::int64_t microseconds = 0;  // of the monotonic clock
    std::size_t count = 0;
    std::string name;
};

class MilestoneLog {
public:
    explicit MilestoneLog(std::string path) : path_(std::move(path)) {}

    // The whole lines that are there by now.
    std::vector<Moment> all() const;
    // The first moment of a name at or after a time, if it comes within the limit.
    std::optional<Moment> next(std::string_view name, std::int64_t from, std::chrono::milliseconds limit) const;

private:
    std::string path_;
};

}  // namespace tarvix
