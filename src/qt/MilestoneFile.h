// Milestones as lines of a file.
#pragma once

#include <string>

#include "platform/Milestones.h"

namespace tarvix {

// Appends one line for each moment, "<microseconds of the monotonic clock> <count> <moment>", at once and in one piece.
// A path that can't be opened, or an empty one, records nothing.
class MilestoneFile : public Milestones {
public:
    explicit MilestoneFile(const std::string& path);
    ~MilestoneFile() override;
    MilestoneFile(const MilestoneFile&) = delete;
    MilestoneFile& operator=(const MilestoneFile&) = delete;

    void reached(std::string_view moment, std::size_t count) override;

private:
    int file_ = -1;
};

}  // namespace tarvix
