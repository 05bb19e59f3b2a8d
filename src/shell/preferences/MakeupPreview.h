// The markers and the dimming show themselves while the user tries their looks.
#pragma once

#include "platform/RunLoop.h"
#include "shell/OneShotTimer.h"
#include "shell/TargetsPreview.h"

namespace tarvix {

// The looks of the Targets and of the background have one each. One instance lives as long as the program. Main thread;
// what is given outlives it.
class MakeupPreview {
public:
    MakeupPreview(RunLoop& runLoop, TargetsPreview& preview) : runLoop_(runLoop), preview_(preview) {}

    // The user has moved one of the controls.
    void changed();

private:
    void show();

    RunLoop& runLoop_;
    TargetsPreview& preview_;
    OneShotTimer timer_;
};

}  // namespace tarvix
