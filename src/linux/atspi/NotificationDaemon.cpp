#include "linux/atspi/NotificationDaemon.h"

#include <algorithm>
#include <string_view>

#include "linux/atspi/Replies.h"

namespace tarvix::atspi {

namespace {

constexpr Milliseconds kLimit{100};

bool hasType(const X11Window& window, std::string_view type) { return std::ranges::count(window.types, type) > 0; }

bool isPartOfDesktop(const X11Window& window) { return hasType(window, "DOCK") || hasType(window, "DESKTOP"); }

// What opens over a window of its own, or stands beside the pointer.
bool isPassing(const X11Window& window) {
    return std::ranges::any_of(window.types, [](const std::string& type) {
        return type == "TOOLTIP" || type == "MENU" || type == "DROPDOWN_MENU" || type == "POPUP_MENU" ||
               type == "COMBO" || type == "DND";
    });
}

}  // namespace

std::optional<std::int32_t> NotificationDaemon::pid() {
    const std::lock_guard lock(mutex_);
    if (session_ && sd_bus_is_ready(session_.get()) <= 0) session_.reset();
    if (!session_) session_ = connectToSession();
    if (!session_) return std::nullopt;
    const Message reply =
        callBlocking(session_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                     "GetConnectionUnixProcessID", kLimit, "org.freedesktop.Notifications");
    const std::optional<std::uint32_t> pid = readUnsigned(reply.get());
    return pid ? std::optional(static_cast<std::int32_t>(*pid)) : std::nullopt;
}

std::vector<X11Window> notificationsAmong(std::vector<X11Window> windows) {
    const bool isShell = std::ranges::any_of(windows, isPartOfDesktop);
    std::erase_if(windows, [&](const X11Window& each) {
        if (hasType(each, "NOTIFICATION")) return false;
        return isShell || !each.isOverrideRedirect || isPassing(each);
    });
    return windows;
}

}  // namespace tarvix::atspi
