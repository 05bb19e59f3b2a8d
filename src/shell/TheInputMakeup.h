// The look of The Input: its four values, the presets of them, and how they follow each other.
#pragma once

#include <chrono>
#include <functional>
#include <list>

#include "platform/RunLoop.h"
#include "shell/InputPresetDefaults.h"
#include "shell/InputPreview.h"
#include "shell/OneShotTimer.h"
#include "shell/Setting.h"

namespace tarvix {

// A preset that is chosen sets the four values, and a value that is changed chooses the preset that has it, or
// `custom`; either way The Input shows itself for a moment. What is chosen and changed is what the store holds, whoever
// wrote it.
//
// Of several changes that arrive together the preset counts before the values, and the text size before the others.
// When a change leaves nothing of the look in the store, it has been set back, and nothing is written. What the store
// holds at the beginning is no change.
//
// One instance for the life of the program. Main thread; what is given outlives it.
class TheInputMakeup {
public:
    static constexpr InputPresetDefaults spotlightInputDefaults{32.0, 0.9, 9.4, 0.43};
    static constexpr InputPresetDefaults alfredInputDefaults{48.0, 0.97, 15.0, 10.0};
    static constexpr InputPresetDefaults invisibleManInputDefaults{24.0, 0.0, 0.0, 0.0};

    TheInputMakeup(UserDefaults& defaults, RunLoop& runLoop, InputPreview& preview);
    TheInputMakeup(const TheInputMakeup&) = delete;
    TheInputMakeup& operator=(const TheInputMakeup&) = delete;

private:
    struct Look {
        InputPreset preset;
        InputPresetDefaults values;
    };

    void storeChanged();
    Look present() const;
    bool isAnythingStored() const;
    void presetChanged(InputPreset preset);
    void valueChanged(bool isTextSize);
    void write(const InputPresetDefaults& values);
    void derivePreset();
    void showPreset();
    void after(std::chrono::milliseconds interval, std::function<void()> fired);

    RunLoop& runLoop_;
    InputPreview& preview_;
    Setting<double> inputTextSize_;
    Setting<double> inputBackgroundOpacity_;
    Setting<double> inputCornerRadius_;
    Setting<double> inputBorderThickness_;
    Setting<InputPreset> inputPreset_;
    Look seen_;  // what the changes are told by
    bool isApplyingInputPreset_ = false;
    OneShotTimer inputPreviewTimer_;
    std::list<OneShotTimer> otherTimers_;  // nobody asks about them
    Subscription changes_;
};

}  // namespace tarvix
