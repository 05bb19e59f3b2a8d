#include "core/TargetsPreviewer.h"

#include <utility>

#include "platform/WindowServer.h"
#include "platform/Workspace.h"

namespace tarvix {

namespace {

constexpr int kOrdinaryLayer = 0;

}

// A search that begins is about another window, perhaps, and what is still being read for the preview isn't its.
TargetsPreviewer::TargetsPreviewer(const Platform& platform, TarvixEngine& engine, DisplayEngineProtocol& displayEngine,
                                   TheInput& theInput, const InputPreviewer& inputPreviewer)
    : platform_(platform),
      engine_(engine),
      displayEngine_(displayEngine),
      theInput_(theInput),
      inputPreviewer_(inputPreviewer),
      visibility_(theInput.onVisibilityChanged([this] {
          if (isSearching()) preloadingTask_.reset();
      })) {}

// The task is owned here alone, so that one whose result is no longer wanted finds it gone.
void TargetsPreviewer::preload(std::function<void()> preloaded) {
    if (isSearching()) return;
    window_.reset();
    const auto about = subject();
    if (!about) return;
    window_ = about->window;
    preloadingTask_ = std::make_shared<Task>();
    platform_.runLoop.inBackground([this, &runLoop = platform_.runLoop, task = std::weak_ptr(preloadingTask_),
                                    search = engine_.searchEngine(), pid = about->pid,
                                    preloaded = std::move(preloaded)] {
        auto elements = std::make_shared<OrderedSet<AccessibilityElement>>(search->candidates(pid));
        runLoop.onMain([this, task, elements, preloaded] {
            if (task.expired()) return;
            engine_.setAllElements(std::move(*elements));
            preloaded();
        });
    });
}

void TargetsPreviewer::show() {
    if (window_ && !isSearching()) engine_.showPreview(*window_);
}

void TargetsPreviewer::hide() {
    if (engine_.isPreviewing()) engine_.endSession();
}

std::optional<TargetsPreviewer::Subject> TargetsPreviewer::subject() {
    const auto frontmost = platform_.workspace.frontmostApplication();
    if (!frontmost) return std::nullopt;
    const std::int32_t pid = frontmost->processIdentifier;
    if (frontmost->bundleIdentifier == platform_.workspace.ownBundleIdentifier())
        if (const auto behind = subjectBehind(pid)) return behind;
    return subjectOf(pid);
}

// A process may have nothing on the screen but a tooltip or a menu, which are no windows to search.
std::optional<TargetsPreviewer::Subject> TargetsPreviewer::subjectBehind(std::int32_t ownPid) {
    const auto windows = platform_.windowServer.onScreenWindows();
    if (!windows) return std::nullopt;
    for (const WindowInfo& window : *windows) {
        if (window.ownerPid == ownPid || window.ownerPid == -1 || window.layer != kOrdinaryLayer) continue;
        if (const auto found = subjectOf(window.ownerPid)) return found;
    }
    return std::nullopt;
}

std::optional<TargetsPreviewer::Subject> TargetsPreviewer::subjectOf(std::int32_t pid) {
    const auto window = displayEngine_.mainWindowOf(pid);
    return window ? std::optional(Subject{pid, *window}) : std::nullopt;
}

}  // namespace tarvix
