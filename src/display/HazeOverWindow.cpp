#include "display/HazeOverWindow.h"

#include "display/FocusedApplication.h"
#include "platform/WindowServer.h"
#include "platform/Workspace.h"

namespace tarvix {

namespace {

constexpr int kAboveAllWindows = 1000;
constexpr int kAmongWindows = 0;
constexpr int kStatusItemLayer = 25;

}  // namespace

HazeOverWindow::HazeOverWindow(const Platform& platform, DisplayEngineProtocol& displayEngine)
    : platform_(platform),
      displayEngine_(displayEngine),
      hazeOverWindowStyle_(platform.userDefaults,
                           {"hazeOverWindowStyle", HazeOverWindowStyle::fadeOutExceptDockMenuBarAndFrontmostApp}),
      hazeOverWindowOpacity_(platform.userDefaults, {"hazeOverWindowOpacity", 0.2}),
      panel_(platform.panels.makeDimmingPanel()) {}

void HazeOverWindow::show() {
    const auto application = focusedApplication(platform_);
    if (!application) return;
    const auto window = windowOf(*application, displayEngine_);
    if (!window) {
        const auto main = displayEngine_.mainScreen();
        if (!main) return;
        dim(main->frame);
        panel_->orderFront();
        return;
    }
    if (window->isInFullScreenMode.value_or(true)) return;
    const auto screen = displayEngine_.screenFor(window);
    if (!screen) {
        const auto main = displayEngine_.mainScreen();
        if (!main) return;
        dim(main->frame);
        panel_->orderBelow(window->number);
        return;
    }
    dim(screen->frame);
    if (const auto below = sibling(*window)) panel_->orderBelow(*below);
}

void HazeOverWindow::dim(PanelRect frame) {
    const bool whole = hazeOverWindowStyle_.value() == HazeOverWindowStyle::fadeOutWholeScreen;
    panel_->setLevel(whole ? kAboveAllWindows : kAmongWindows);
    panel_->setAlpha(hazeOverWindowOpacity_.value());
    panel_->setFrame(frame);
}

// With a window of our own in front, such as the preferences, that window is not the one that is being searched, and
// the panel goes below the last of ours instead.
std::optional<std::uint32_t> HazeOverWindow::sibling(const FocusedWindow& window) {
    const auto frontmost = platform_.workspace.frontmostApplication();
    const bool ownInFront = frontmost && frontmost->bundleIdentifier == platform_.workspace.ownBundleIdentifier();
    return ownInFront ? lastOwnWindow(frontmost->processIdentifier) : std::optional(window.number);
}

std::optional<std::uint32_t> HazeOverWindow::lastOwnWindow(std::int32_t pid) {
    const auto windows = platform_.windowServer.onScreenWindows();
    std::optional<std::uint32_t> last;
    if (!windows) return last;
    for (const WindowInfo& window : *windows)
        if (window.ownerPid == pid && window.layer != kStatusItemLayer) last = window.number;
    return last;
}

}  // namespace tarvix
