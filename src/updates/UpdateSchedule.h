// When to check for updates unasked, and what is remembered from one check to the next.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "platform/UserDefaults.h"
#include "shell/Setting.h"

namespace tarvix {

using UpdateTime = std::chrono::sys_seconds;

constexpr std::chrono::hours kTimeBetweenChecks{24};

// 0 when a check is due. A last check that is still to come, by a clock that was wrong, counts as one of now.
std::chrono::seconds timeToNextCheck(UpdateTime lastCheck, UpdateTime now);

// What the settings hold of updates beside the toggle: the version to be skipped and the time of the last check.
// Main thread.
class UpdateMemory {
public:
    explicit UpdateMemory(UserDefaults& defaults);

    bool checksAutomatically() const { return automaticChecks_.value(); }

    // Absent before the first one.
    std::optional<UpdateTime> lastCheck() const;
    void noteCheck(UpdateTime time);

    // Empty when the user skips none.
    std::string skippedVersion() const;
    void skip(const std::string& version);

private:
    UserDefaults& defaults_;
    Setting<bool> automaticChecks_;
};

}  // namespace tarvix
