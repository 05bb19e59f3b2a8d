// Notifications as signals on the session bus.
#pragma once

#include "platform/NotificationCenter.h"

namespace tarvix {

// The signal's member is the notification's name, its path /org/tarvix/Tarvix, its interface org.tarvix.Tarvix. Without
// a session bus nothing is posted.
class QtNotificationCenter : public NotificationCenter {
public:
    // Connects now, which may wait for the bus, so that no search does.
    QtNotificationCenter();
    void post(std::string_view name) override;
};

}  // namespace tarvix
