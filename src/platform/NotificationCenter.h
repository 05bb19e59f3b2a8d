// Notifications that every program of the user's session can observe.
#pragma once

#include <string_view>

namespace tarvix {

class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;
    // Posts a notification without object or user information, delivered at once. Main thread.
    virtual void post(std::string_view name) = 0;
};

}  // namespace tarvix
