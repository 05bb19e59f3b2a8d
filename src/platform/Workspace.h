// The applications that run on the desktop.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Subscription.h"

namespace tarvix {

struct RunningApplication {
    std::int32_t processIdentifier = -1;
    std::optional<std::string> bundleIdentifier;  // the desktop file's id, or the catalogue's identifier for it
    std::string localizedName;                    // empty where it is not known
    friend bool operator==(const RunningApplication&, const RunningApplication&) = default;
};

// Main thread, but for the applications themselves and ownBundleIdentifier(), which any thread may ask.
class Workspace {
public:
    virtual ~Workspace() = default;

    // The application whose window is the active one; panels of ours never are. Where no window is active the desktop
    // itself is the answer, if this desktop can say so.
    virtual std::optional<RunningApplication> frontmostApplication() = 0;
    // The application whose menu bar is the one that shows, which need not be the frontmost one.
    virtual std::optional<RunningApplication> menuBarOwningApplication() = 0;
    virtual std::optional<RunningApplication> runningApplication(std::int32_t pid) = 0;
    // Those with a bundle identifier. "com.apple.dock" and "com.apple.notificationcenterui" are names of roles:
    // whichever process is the dock, or shows the notifications, on this desktop.
    virtual std::vector<RunningApplication> runningApplications(std::string_view bundleIdentifier) = 0;
    virtual std::string ownBundleIdentifier() = 0;

    // Whether a screen reader runs.
    virtual bool isVoiceOverEnabled() = 0;
    // Has the screen reader speak a text; priority from 0 to 100.
    virtual void announce(std::string_view text, int priority) = 0;

    // Called when another application has become frontmost.
    [[nodiscard]] virtual Subscription onApplicationActivated(
        std::function<void(const RunningApplication&)> activated) = 0;
};

}  // namespace tarvix
