#include "updates/UpdateSchedule.h"

#include <algorithm>
#include <string_view>
#include <variant>

namespace tarvix {

namespace {

constexpr std::string_view kSkippedVersion = "SUSkippedVersion";
constexpr std::string_view kLastCheckTime = "SULastCheckTime";  // in seconds since 1970

}  // namespace

std::chrono::seconds timeToNextCheck(UpdateTime lastCheck, UpdateTime now) {
    return std::clamp<std::chrono::seconds>(lastCheck + kTimeBetweenChecks - now, std::chrono::seconds::zero(),
                                            kTimeBetweenChecks);
}

UpdateMemory::UpdateMemory(UserDefaults& defaults)
    : defaults_(defaults), automaticChecks_(defaults, {"SUEnableAutomaticChecks", true}) {}

std::optional<UpdateTime> UpdateMemory::lastCheck() const {
    const auto stored = defaults_.get(kLastCheckTime);
    const double* seconds = stored ? std::get_if<double>(&*stored) : nullptr;
    // What no clock shows is of no use; the conversion is defined for the rest alone.
    if (seconds == nullptr || !(*seconds >= 0 && *seconds < 1e12)) return std::nullopt;
    return UpdateTime(std::chrono::seconds(static_cast<long long>(*seconds)));
}

void UpdateMemory::noteCheck(UpdateTime time) {
    defaults_.set(kLastCheckTime, static_cast<double>(time.time_since_epoch().count()));
}

std::string UpdateMemory::skippedVersion() const {
    const auto stored = defaults_.get(kSkippedVersion);
    const auto* version = stored ? std::get_if<std::string>(&*stored) : nullptr;
    return version ? *version : std::string();
}

void UpdateMemory::skip(const std::string& version) { defaults_.set(kSkippedVersion, version); }

}  // namespace tarvix
