// The reading of a session's candidates, and the operation behind the global shortcut.
#pragma once

#include <memory>

#include "core/TarvixEngine.h"
#include "display/TheInputProtocol.h"
#include "platform/Milestones.h"
#include "platform/RunLoop.h"

namespace tarvix {

// Main thread. What is given outlives it; a task that outlives the object ends without effect.
class Preloading {
public:
    Preloading(RunLoop& runLoop, Milestones& milestones) : runLoop_(runLoop), milestones_(milestones) {}

    // Reads the candidates in the background and shows those that match the text as it then stands. The new task takes
    // the place of the latest one, which goes on.
    void start(TarvixEngine& engine, TheInputProtocol& theInput);
    // Cancels the latest task, whether or not it still runs.
    void cancel();

private:
    void finish(TarvixEngine& engine, TheInputProtocol& theInput, OrderedSet<AccessibilityElement> elements);

    RunLoop& runLoop_;
    Milestones& milestones_;
    std::shared_ptr<Task> preloadingTask_;  // the latest session's
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

// Opens a search session, or ends the one that is open and stops its reading.
void toggleTheInput(TarvixEngine& engine, TheInputProtocol& theInput, Preloading& preloading);

}  // namespace tarvix
