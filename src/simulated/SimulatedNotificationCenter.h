// Notifications, noted in the journal.
#pragma once

#include <string>

#include "platform/NotificationCenter.h"
#include "simulated/Journal.h"

namespace tarvix {

class SimulatedNotificationCenter : public NotificationCenter {
public:
    explicit SimulatedNotificationCenter(Journal& journal) : journal_(journal) {}

    void post(std::string_view name) override { journal_.note(Topic::notification, "posted " + std::string(name)); }

private:
    Journal& journal_;
};

}  // namespace tarvix
