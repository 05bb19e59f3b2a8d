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

std::optional<RunningApplication> SimulatedWorkspace::menuBarOwningApplication() {
    if (faults_.strike("menuBarOwningApplication")) return std::nullopt;
    const std::lock_guard lock(mutex_);
    return find(menuBarOwner_ ? *menuBarOwner_ : frontmost_);
}

std::vector<RunningApplication> SimulatedWorkspace::runningApplications(std::string_view bundleIdentifier) {
    if (faults_.strike("runningApplications")) return {};
    const std::lock_guard lock(mutex_);
    std::vector<RunningApplication> found;
    for (const auto& [pid, application] : running_)
        if (application.bundleIdentifier == bundleIdentifier) found.push_back(application);
    return found;
}

void SimulatedWorkspace::setMenuBarOwner(std::optional<std::int32_t> pid) {
    const std::lock_guard lock(mutex_);
    menuBarOwner_ = pid;
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
