// The black panel that dims a screen during a search.
#pragma once

#include <memory>

#include "display/DisplayEngineProtocol.h"
#include "platform/Panels.h"
#include "platform/Platform.h"
#include "shell/Setting.h"

namespace tarvix {

// Main thread. The panel stays ordered in between sessions, with an alpha of 0.
class HazeOverWindow {
public:
    HazeOverWindow(const Platform& platform, DisplayEngineProtocol& displayEngine);

    void setFrame(PanelRect frame) { panel_->setFrame(frame); }
    // Dims the screen of the session's window, at once and below that window, unless the window is in full-screen mode
    // or doesn't say whether it is.
    void show();
    void fadeOut() { panel_->animateAlpha(0); }

private:
    void dim(PanelRect frame);
    // The window to stay below; absent when the panel can't be placed.
    std::optional<std::uint32_t> sibling(const FocusedWindow& window);
    std::optional<std::uint32_t> lastOwnWindow(std::int32_t pid);

    Platform platform_;
    DisplayEngineProtocol& displayEngine_;
    Setting<HazeOverWindowStyle> hazeOverWindowStyle_;
    Setting<double> hazeOverWindowOpacity_;
    std::unique_ptr<DimmingPanel> panel_;
};

}  // namespace tarvix
