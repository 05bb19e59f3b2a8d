// The process that shows the notifications of this desktop.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "linux/atspi/SdBus.h"
#include "linux/x11/X11Windows.h"

namespace tarvix::atspi {

// Any thread. The session bus is asked, and only that: a daemon that isn't running is not started for it.
class NotificationDaemon {
public:
    // The owner of the notifications' name on the session bus; absent while nobody has it. Blocks for a tenth of a
    // second at most, and for half a second where the bus has to be connected to and doesn't greet back.
    std::optional<std::int32_t> pid();

private:
    std::mutex mutex_;
    Bus session_;
};

// Those of a daemon's windows on the screen that are notifications, in the order given. A daemon that is nothing else
// may have them of any kind, as long as no window manager has put them there; of a program that holds the desktop or
// its panels too, only those that call themselves notifications are.
std::vector<X11Window> notificationsAmong(std::vector<X11Window> windows);

}  // namespace tarvix::atspi
