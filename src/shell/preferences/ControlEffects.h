// What the change of a control does beside the store.
#pragma once

#include <functional>
#include <string_view>

#include "base/Listeners.h"
#include "shell/preferences/MakeupPreview.h"
#include "shell/preferences/PositionPreview.h"

namespace tarvix {

// What reads a setting at its next use needs none of this, and the look of The Input follows the store by itself. Lives
// as long as the program: a preview outlasts the pane that it was begun in. Main thread; what is given outlives it.
class ControlEffects {
public:
    ControlEffects(RunLoop& runLoop, InputPreview& theInput, TargetsPreview& targets);
    ControlEffects(const ControlEffects&) = delete;
    ControlEffects& operator=(const ControlEffects&) = delete;

    // The user has changed the setting of this key by its control, and the store has it.
    void changed(std::string_view key);
    // One of the two settings of the status item has changed so.
    [[nodiscard]] Subscription onStatusItemChanged(std::function<void()> changed) {
        return statusItemChanged_.add(std::move(changed));
    }

private:
    Listeners<> statusItemChanged_;
    PositionPreview position_;
    MakeupPreview theTargetsMakeup_;
    MakeupPreview theBackgroundMakeup_;
};

}  // namespace tarvix
