// The Targets and the dimming as a preview of their own looks.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "core/InputPreviewer.h"
#include "core/TarvixEngine.h"
#include "display/TheInput.h"
#include "platform/Platform.h"
#include "platform/RunLoop.h"
#include "shell/TargetsPreview.h"

namespace tarvix {

// Shows them over the window that a search would be about, or, while a window of our own is in front, over the first
// one behind it that is another application's: what the user wants to see marked lies behind the settings. With no
// other one on the screen it is our own. Takes no keyboard, clicks nothing, and leaves a search alone. Main thread;
// what is given outlives it.
class TargetsPreviewer : public TargetsPreview {
public:
    TargetsPreviewer(const Platform& platform, TarvixEngine& engine, DisplayEngineProtocol& displayEngine,
                     TheInput& theInput, const InputPreviewer& inputPreviewer);

    void preload(std::function<void()> preloaded) override;
    void show() override;
    void hide() override;

private:
    struct Subject {
        std::int32_t pid;
        FocusedWindow window;
    };

    bool isSearching() const { return theInput_.isVisible() && !inputPreviewer_.isShowing(); }
    std::optional<Subject> subject();
    std::optional<Subject> subjectBehind(std::int32_t ownPid);
    std::optional<Subject> subjectOf(std::int32_t pid);

    Platform platform_;
    TarvixEngine& engine_;
    DisplayEngineProtocol& displayEngine_;
    TheInput& theInput_;
    const InputPreviewer& inputPreviewer_;
    std::optional<FocusedWindow> window_;   // of the present preview, or of the last one
    std::shared_ptr<Task> preloadingTask_;  // the latest one
    Subscription visibility_;
};

}  // namespace tarvix
