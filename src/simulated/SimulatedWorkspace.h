// The applications that run, as the test has stated them.
#pragma once

#include <map>
#include <mutex>
#include <vector>

#include "base/Listeners.h"
#include "platform/Workspace.h"
#include "simulated/Faults.h"
#include "simulated/Journal.h"

namespace tarvix {

// Can fail: frontmostApplication, menuBarOwningApplication, runningApplication, runningApplications.
class SimulatedWorkspace : public Workspace {
public:
    SimulatedWorkspace(Journal& journal, Faults& faults) : journal_(journal), faults_(faults) {}

    std::optional<RunningApplication> frontmostApplication() override;
    // The one that was set, else the frontmost one.
    std::optional<RunningApplication> menuBarOwningApplication() override;
    std::optional<RunningApplication> runningApplication(std::int32_t pid) override;
    std::vector<RunningApplication> runningApplications(std::string_view bundleIdentifier) override;
    std::string ownBundleIdentifier() override { return "org.tarvix.Tarvix"; }
    bool isVoiceOverEnabled() override { return voiceOver; }
    void announce(std::string_view text, int priority) override;
    [[nodiscard]] Subscription onApplicationActivated(
        std::function<void(const RunningApplication&)> activated) override {
        return activated_.add(std::move(activated));
    }

    void launch(RunningApplication application);
    void quit(std::int32_t pid);
    // Makes another application frontmost and tells the observers; nothing when none is.
    void activate(std::optional<std::int32_t> pid);

    // Absent: nobody owns the menu bar.
    void setMenuBarOwner(std::optional<std::int32_t> pid);

    bool voiceOver = false;

private:
    std::optional<RunningApplication> find(std::optional<std::int32_t> pid) const;

    Journal& journal_;
    Faults& faults_;
    mutable std::mutex mutex_;  // guards running_ and frontmost_, which any thread may ask for
    std::map<std::int32_t, RunningApplication> running_;
    std::optional<std::int32_t> frontmost_;
    std::optional<std::optional<std::int32_t>> menuBarOwner_;
    Listeners<const RunningApplication&> activated_;
};

}  // namespace tarvix
