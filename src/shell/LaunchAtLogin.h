// Starting this program when the user logs in.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/Listeners.h"
#include "base/Subscription.h"
#include "platform/LoginItems.h"
#include "platform/UserDefaults.h"

namespace tarvix {

// Keeps no state of the desktop's: that is asked for anew each time. Both services must outlive it. Main thread.
class LaunchAtLogin {
public:
    static constexpr std::string_view kHasMigrated = "LaunchAtLogin__hasMigrated";

    LaunchAtLogin(UserDefaults& defaults, LoginItems& loginItems, std::string_view ownBundleIdentifier);

    bool isEnabled() const { return loginItems_.isEnabled(); }
    // Setting what is set already makes the entry anew: it may stand for an older copy of the program. A failure is a
    // line on the error output and nothing else; whoever asks afterwards sees what the desktop has.
    void setEnabled(bool isEnabled);

    // Carries what a helper of older versions was set to over to the program's own entry, and ends the helper. Once for
    // each user, whether it goes well or not.
    void migrateIfNeeded();

    // At each setEnabled(), in this order: `onAnnounced` and `onWillChange` before it is done, `onChange` and `onValue`
    // after.
    [[nodiscard]] Subscription onAnnounced(std::function<void()> announced);
    [[nodiscard]] Subscription onWillChange(std::function<void()> willChange);
    [[nodiscard]] Subscription onChange(std::function<void()> changed);
    // Called at once besides, with the value that was set last or, before any, with what held when it was first asked
    // for. A value that the desktop refused is among them.
    [[nodiscard]] Subscription onValue(std::function<void(bool)> received);

private:
    void write(bool isEnabled);
    bool latest();

    UserDefaults& defaults_;
    LoginItems& loginItems_;
    std::string helperIdentifier_;
    Listeners<> announced_, willChange_, changed_;
    Listeners<bool> received_;
    std::optional<bool> latest_;
};

}  // namespace tarvix
