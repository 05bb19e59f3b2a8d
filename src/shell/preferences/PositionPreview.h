// The Input shows itself at its new position.
#pragma once

#include "platform/RunLoop.h"
#include "shell/InputPreview.h"
#include "shell/OneShotTimer.h"

namespace tarvix {

// One instance for the life of the program. Main thread; what is given outlives it.
class PositionPreview {
public:
    PositionPreview(RunLoop& runLoop, InputPreview& preview) : runLoop_(runLoop), preview_(preview) {}

    // The user has chosen another position.
    void changed();

private:
    RunLoop& runLoop_;
    InputPreview& preview_;
    OneShotTimer timer_;
};

}  // namespace tarvix
