#include "simulated/SimulatedWorkspace.h"

namespace tarvix {

std::optional<RunningApplication> SimulatedWorkspace::frontmostApplication() {
    if (faults_.strike("frontmostApplication")) return std::nullopt;
    const std::lock_guard lock(mutex_);
    return find(frontmost_);
}

std::optional<RunningApplication> SimulatedWorkspace::runningApplication(std::int32_t pid) {
    if (faults_.strike("runningApplication")) return std::nullopt;
    const std::lock_guard lock(mutex_);
    return find(pid);
}

void SimulatedWorkspace::announce(std::string_view text, int priority) {
    journal_.note(Topic::announcement, "announced '" + std::string(text) + "' at " + std::to_string(priority));
}

void SimulatedWorkspace::launch(RunningApplication application) {
    const std::lock_guard lock(mutex_);
    running_.insert_or_assign(application.processIdentifier, std::move(application));
}

void SimulatedWorkspace::quit(std::int32_t pid) {
    const std::lock_guard lock(mutex_);
    running_.erase(pid);
}

void SimulatedWorkspace::activate(std::optional<std::int32_t> pid) {
    std::optional<RunningApplication> application;
    {
        const std::lock_guard lock(mutex_);
        frontmost_ = pid;
        application = find(pid);
    }
    if (application) activated_(*application);
}

std::optional<RunningApplication> SimulatedWorkspace::find(std::optional<std::int32_t> pid) const {
    const auto found = pid ? running_.find(*pid) : running_.end();
    return found == running_.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace tarvix
