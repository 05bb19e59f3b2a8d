// The applications that run on the desktop.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Listeners.h"
#include "base/Outcome.h"
#include "linux/x11/ProgramEntries.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Windows.h"
#include "platform/Workspace.h"

namespace tarvix {

// The frontmost application is the owner of the active window. Where no window is active it is the desktop itself, with
// the process identifier 0, so that a search can begin everywhere.
class X11Workspace final : public Workspace {
public:
    // What the accessibility side knows of the screen reader; absent functions stand for a desktop without one.
    struct ScreenReader {
        std::function<bool()> isEnabled;
        std::function<void(std::string_view text, int priority)> announce;
    };

    // Connection and windows outlive the workspace.
    static Outcome<std::unique_ptr<X11Workspace>> open(X11Connection& connection, X11Windows& windows);

    // Which processes play a role of the desktop that has a bundle identifier of its own. Any thread calls `processes`;
    // to be set before anybody asks.
    void setRole(std::string bundleIdentifier, std::function<std::vector<std::int32_t>()> processes) {
        roles_[std::move(bundleIdentifier)] = std::move(processes);
    }

    void setScreenReader(ScreenReader screenReader) { screenReader_ = std::move(screenReader); }

    std::optional<RunningApplication> frontmostApplication() override;
    // Menu bars are in their windows here.
    std::optional<RunningApplication> menuBarOwningApplication() override { return frontmostApplication(); }
    std::optional<RunningApplication> runningApplication(std::int32_t pid) override;
    std::vector<RunningApplication> runningApplications(std::string_view bundleIdentifier) override;
    std::string ownBundleIdentifier() override;
    bool isVoiceOverEnabled() override;
    void announce(std::string_view text, int priority) override;
    Subscription onApplicationActivated(std::function<void(const RunningApplication&)> activated) override;

private:
    X11Workspace(X11Connection& connection, X11Windows& windows);
    void activeWindowChanged();
    RunningApplication look(std::int32_t pid, const X11Window* window);
    // The same, from memory where the last answer was about the same window: looking takes a millisecond, and a search
    // asks for the frontmost application again and again.
    RunningApplication describe(std::int32_t pid, const X11Window* window);

    // What decides which application it is.
    struct Names {
        std::int32_t pid = -1;
        std::uint32_t window = 0;
        std::string windowClass, windowInstance, gtkApplicationId;
        friend bool operator==(const Names&, const Names&) = default;
    };

    X11Connection& x_;
    X11Windows& windows_;
    ProgramEntries entries_;
    std::map<std::string, std::function<std::vector<std::int32_t>()>, std::less<>> roles_;
    ScreenReader screenReader_;
    std::mutex mutex_;  // guards the next two
    Names describedBy_;
    RunningApplication described_;
    std::optional<RunningApplication> lastActivated_;
    Listeners<const RunningApplication&> activated_;
    Subscription events_;
};

}  // namespace tarvix
