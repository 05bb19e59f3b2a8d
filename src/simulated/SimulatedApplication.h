// This program's settings, noted in the journal when they are shown.
#pragma once

#include "platform/Application.h"
#include "simulated/Journal.h"

namespace tarvix {

class SimulatedApplication : public Application {
public:
    explicit SimulatedApplication(Journal& journal) : journal_(journal) {}

    void showSettings() override { journal_.note(Topic::settings, "settings shown"); }

private:
    Journal& journal_;
};

}  // namespace tarvix
