// The state of one search: its application, its candidates, the Targets on the screen and the Primary Target.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "base/Listeners.h"
#include "base/OrderedSet.h"
#include "core/Pointer.h"
#include "core/Target.h"
#include "core/TarvixEngineProtocol.h"
#include "display/Canvas.h"
#include "display/DisplayEngineProtocol.h"
#include "display/HazeOverWindow.h"
#include "platform/Platform.h"
#include "search/SearchEngine.h"
#include "shell/Setting.h"

namespace tarvix {

// One instance for the life of the program, reset at the end of each session. Main thread; what is given outlives it.
//
// The canvas has one view for each Target. While there are Targets, the Primary Target is a copy of one of them, and
// its view is the only one that is primary.
class TarvixEngine : public TarvixEngineProtocol {
public:
    TarvixEngine(const Platform& platform, std::shared_ptr<const SearchEngine> searchEngine,
                 DisplayEngineProtocol& displayEngine);

    // Settles the application and the window, places the canvas over the window's screen, and dims that screen. What
    // can't be found out shortens it; the session goes on.
    void startSession();
    // Marks all candidates on the screen of a window and dims it, as the settings say by now, without a search: a
    // preview. The next session ends it first. Not during a session.
    void showPreview(const FocusedWindow& window);
    bool isPreviewing() const { return isPreviewing_; }
    // Forgets the candidates and the Targets, but not the Primary Target.
    void endSession() override;
    // A session has ended; also when none had begun.
    [[nodiscard]] Subscription onSessionEnded(std::function<void()> ended) {
        return sessionEnded_.add(std::move(ended));
    }

    OrderedSet<AccessibilityElement> filteredElements(std::string_view query) override;
    void removeTargets() override;
    // The first element becomes the Primary Target, whichever was it before.
    void showTargets(const OrderedSet<AccessibilityElement>& elements) override;

    void nextTarget() override;
    void previousTarget() override;
    void firstTarget() override;
    void lastTarget() override;
    void halfwayDownTarget() override;
    void halfwayUpTarget() override;

    void clickPrimaryTarget(MouseButton button) override;
    void doubleClickPrimaryTarget(MouseButton button) override;
    void moveMouseToPrimaryTarget() override;
    void clickAtMouse(MouseButton button) override;
    void doubleClickAtMouse() override;
    void copyTargetsDescription() override;

    const std::optional<Target>& primaryTarget() const override { return primaryTarget_; }
    std::optional<AccessibilityElement> elementUnderMouse() const override;

    void setAllElements(OrderedSet<AccessibilityElement> elements) { allElements_ = std::move(elements); }
    const OrderedSet<AccessibilityElement>& allElements() const { return allElements_; }
    const OrderedSet<Target>& targets() const { return targets_; }
    // Absent between sessions.
    std::optional<std::int32_t> axFrontmostApplicationPID() const { return axFrontmostApplicationPID_; }
    const Canvas& canvas() const { return canvas_; }
    const std::shared_ptr<const SearchEngine>& searchEngine() const { return searchEngine_; }

private:
    void placePanels(const FocusedWindow& window);
    std::optional<std::size_t> primaryIndex() const;
    void moveTo(std::size_t index);
    void announcePrimaryTarget();
    void reposition(AxPoint saved);
    std::optional<AxPoint> pointOfMouse();
    void actionPosted();

    Platform platform_;
    TargetLook targetLook_;
    Canvas canvas_;
    Setting<bool> allowCyclingThroughTargets_;
    OrderedSet<Target> targets_;
    std::optional<Target> primaryTarget_;
    Setting<bool> repositionMouseAfterClick_;
    Setting<HazeOverWindowStyle> hazeOverWindowStyle_;
    HazeOverWindow hazeOverWindow_;
    std::shared_ptr<const SearchEngine> searchEngine_;
    OrderedSet<AccessibilityElement> allElements_;
    DisplayEngineProtocol& displayEngine_;
    std::optional<std::int32_t> axFrontmostApplicationPID_;
    bool isPreviewing_ = false;
    Pointer pointer_;
    Listeners<> sessionEnded_;
};

}  // namespace tarvix
