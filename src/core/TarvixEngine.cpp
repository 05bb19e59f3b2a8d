#include "core/TarvixEngine.h"

#include <utility>

#include "core/Copying.h"
#include "display/FocusedApplication.h"
#include "platform/Milestones.h"
#include "platform/Panels.h"
#include "platform/Screens.h"
#include "platform/Workspace.h"

namespace tarvix {

namespace {

constexpr int kAnnouncementPriority = 90;

double area(const AccessibilityElement& element) { return element.size.width * element.size.height; }

}  // namespace

TarvixEngine::TarvixEngine(const Platform& platform, std::shared_ptr<const SearchEngine> searchEngine,
                           DisplayEngineProtocol& displayEngine)
    : platform_(platform),
      targetLook_(platform.userDefaults, platform.panels.colors()),
      canvas_(platform.panels),
      allowCyclingThroughTargets_(platform.userDefaults, {"allowCyclingThroughTargets", false}),
      repositionMouseAfterClick_(platform.userDefaults, {"repositionMouseAfterClick", false}),
      hazeOverWindowStyle_(platform.userDefaults,
                           {"hazeOverWindowStyle", HazeOverWindowStyle::fadeOutExceptDockMenuBarAndFrontmostApp}),
      hazeOverWindow_(platform, displayEngine),
      searchEngine_(std::move(searchEngine)),
      displayEngine_(displayEngine),
      pointer_(platform) {}

void TarvixEngine::startSession() {
    if (isPreviewing_) endSession();
    const auto application = focusedApplication(platform_);
    if (!application) return;
    const auto window = windowOf(*application, displayEngine_);
    if (application->hasNonActivatingPanel) {
        axFrontmostApplicationPID_ = application->pid;
    } else {
        const auto frontmost = platform_.workspace.frontmostApplication();
        axFrontmostApplicationPID_ = frontmost ? std::optional(frontmost->processIdentifier) : std::nullopt;
    }
    if (window) placePanels(*window);
}

void TarvixEngine::placePanels(const FocusedWindow& window) {
    const auto screen = displayEngine_.screenFor(window);
    if (!screen) return;
    const bool mayStandAcrossScreens = !displayEngine_.screensHaveSeparateSpaces();
    canvas_.setFrame(mayStandAcrossScreens ? unite(screen->frame, window.frame()) : screen->frame);
    canvas_.orderFrontRegardless();
    if (hazeOverWindowStyle_.value() == HazeOverWindowStyle::onlyTargets) return;
    hazeOverWindow_.setFrame(screen->frame);
    hazeOverWindow_.show();
}

void TarvixEngine::showPreview(const FocusedWindow& window) {
    isPreviewing_ = true;
    placePanels(window);
    if (hazeOverWindowStyle_.value() == HazeOverWindowStyle::onlyTargets) hazeOverWindow_.fadeOut();
    const OrderedSet<AccessibilityElement> all = filteredElements("*");
    removeTargets();
    showTargets(all);
}

// What a preview marked was nobody's choice, and a key must not click it; a search's Primary Target is left.
void TarvixEngine::endSession() {
    if (std::exchange(isPreviewing_, false)) primaryTarget_.reset();
    axFrontmostApplicationPID_.reset();
    canvas_.removeSubviews();
    canvas_.orderOut();
    hazeOverWindow_.fadeOut();
    displayEngine_.resetCaches();
    allElements_.clear();
    targets_.clear();
    sessionEnded_();
}

OrderedSet<AccessibilityElement> TarvixEngine::filteredElements(std::string_view query) {
    return searchEngine_->filteredElements(allElements_, query);
}

void TarvixEngine::removeTargets() {
    canvas_.removeSubviews();
    targets_.clear();
}

void TarvixEngine::showTargets(const OrderedSet<AccessibilityElement>& elements) {
    primaryTarget_.reset();
    const auto firstScreen = displayEngine_.firstScreen();
    for (const AccessibilityElement& element : elements) {
        if (!firstScreen) return;
        const PanelPoint origin = markerOrigin(element, canvas_.frame(), *firstScreen);
        const bool isFirst = &element == &elements.front();
        const auto view = std::make_shared<TargetView>(targetLook_, isFirst, PanelRect{origin, element.size});
        canvas_.addSubview(view);
        Target target{element, view};
        if (isFirst) {
            primaryTarget_ = target;
            announcePrimaryTarget();
        }
        targets_.insert(std::move(target));
    }
    canvas_.orderFrontRegardless();
}

void TarvixEngine::nextTarget() {
    const auto index = primaryIndex();
    if (!index) return;
    if (*index + 1 < targets_.size()) {
        moveTo(*index + 1);
    } else if (allowCyclingThroughTargets_.value()) {
        moveTo(0);
    }
}

void TarvixEngine::previousTarget() {
    const auto index = primaryIndex();
    if (!index) return;
    if (*index > 0) {
        moveTo(*index - 1);
    } else if (allowCyclingThroughTargets_.value()) {
        moveTo(targets_.size() - 1);
    }
}

void TarvixEngine::firstTarget() {
    if (primaryIndex()) moveTo(0);
}

void TarvixEngine::lastTarget() {
    if (primaryIndex()) moveTo(targets_.size() - 1);
}

// Announced once more than its counterpart upwards, on purpose.
void TarvixEngine::halfwayDownTarget() {
    const auto index = primaryIndex();
    if (!index) return;
    const std::size_t middle = targets_.size() / 2;
    if (*index < middle) {
        moveTo(middle);
    } else {
        lastTarget();
    }
    announcePrimaryTarget();
}

void TarvixEngine::halfwayUpTarget() {
    const auto index = primaryIndex();
    if (!index) return;
    const std::size_t middle = targets_.size() / 2;
    if (*index > middle) {
        moveTo(middle);
    } else {
        firstTarget();
    }
}

std::optional<std::size_t> TarvixEngine::primaryIndex() const {
    if (!primaryTarget_) return std::nullopt;
    for (std::size_t i = 0; i < targets_.size(); ++i)
        if (targets_[i].element == primaryTarget_->element) return i;
    return std::nullopt;
}

void TarvixEngine::moveTo(std::size_t index) {
    primaryTarget_->view->setNeedsDisplay();
    primaryTarget_->view->isPrimary = false;
    const Target& target = targets_[index];
    target.view->setNeedsDisplay();
    target.view->isPrimary = true;
    primaryTarget_ = target;
    announcePrimaryTarget();
}

void TarvixEngine::announcePrimaryTarget() {
    if (!primaryTarget_ || !platform_.workspace.isVoiceOverEnabled()) return;
    const AccessibilityElement& element = primaryTarget_->element;
    const std::string text =
        element.label.value_or("") + " " + element.title.value_or("") + " " + element.value.value_or("");
    platform_.workspace.announce(text, kAnnouncementPriority);
}

std::optional<AccessibilityElement> TarvixEngine::elementUnderMouse() const {
    const auto mouse = pointer_.currentMousePosition();
    if (!mouse) return std::nullopt;
    const AccessibilityElement* smallest = nullptr;  // of equal ones the first in the candidates' order
    for (const AccessibilityElement& element : allElements_) {
        if (!mouseInRect(*mouse, element.frame())) continue;
        if (!smallest || area(element) < area(*smallest)) smallest = &element;
    }
    return smallest ? std::optional(*smallest) : std::nullopt;
}

void TarvixEngine::clickPrimaryTarget(MouseButton button) {
    if (!primaryTarget_) return;
    const AxPoint point = clickPoint(primaryTarget_->element);
    const AxPoint saved = pointer_.currentMousePosition().value_or(point);
    pointer_.postMove(point);
    pointer_.act(primaryTarget_->element, button, point);
    reposition(saved);
    actionPosted();
}

void TarvixEngine::doubleClickPrimaryTarget(MouseButton button) {
    if (!primaryTarget_) return;
    const AxPoint point = clickPoint(primaryTarget_->element);
    const AxPoint saved = pointer_.currentMousePosition().value_or(point);
    pointer_.postDoubleClick(button, point);
    reposition(saved);
    actionPosted();
}

void TarvixEngine::moveMouseToPrimaryTarget() {
    if (!primaryTarget_) return;
    pointer_.postMove(clickPoint(primaryTarget_->element));
    actionPosted();
}

// A menu that has just been opened from the menu bar would follow the pointer away.
void TarvixEngine::reposition(AxPoint saved) {
    if (!repositionMouseAfterClick_.value()) return;
    const AccessibilityElement& element = primaryTarget_->element;
    const bool staysThere = element.role == AccessibilityElementRole::menuBarItem && element.subrole == "";
    if (!staysThere) pointer_.postMove(saved);
}

void TarvixEngine::clickAtMouse(MouseButton button) {
    const auto point = pointOfMouse();
    if (!point) return;
    pointer_.act(elementUnderMouse(), button, *point);
    actionPosted();
}

void TarvixEngine::doubleClickAtMouse() {
    const auto point = pointOfMouse();
    if (!point) return;
    pointer_.postDoubleClick(MouseButton::left, *point);
    actionPosted();
}

// Where the pointer stood when the session first asked. The height is that of the screen under it and not the first
// one's, on purpose.
std::optional<AxPoint> TarvixEngine::pointOfMouse() {
    const FocusedMouse mouse = displayEngine_.focusedMouse();
    const auto screen = displayEngine_.screenContaining(mouse.minX, mouse.maxY);
    if (!screen) return std::nullopt;
    return AxPoint{mouse.minX, screen->height() - mouse.maxY};
}

void TarvixEngine::copyTargetsDescription() {
    std::string description;
    for (const Target& target : targets_) description += target.element.metadataDump();
    copy(std::move(description), platform_.pasteboard);
}

void TarvixEngine::actionPosted() { platform_.milestones.reached(milestone::actionPosted, 0); }

}  // namespace tarvix
