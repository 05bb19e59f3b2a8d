// The Targets and the dimming, as the settings show them to let the user see a change of their looks.
#pragma once

#include <functional>

namespace tarvix {

// Main thread.
class TargetsPreview {
public:
    virtual ~TargetsPreview() = default;
    // Reads everything that can be marked in the window that the preview is about; `preloaded` is called once it is
    // there. A search that has begun meanwhile keeps it from being called.
    virtual void preload(std::function<void()> preloaded) = 0;
    // Marks what has been read, and dims the screen, as the settings say by now.
    virtual void show() = 0;
    virtual void hide() = 0;
};

}  // namespace tarvix
