#include "core/AppCore.h"

#include "core/AppActivation.h"
#include "platform/Milestones.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"

namespace tarvix {

AppCore::AppCore(const Platform& platform) : platform_(platform), preloading_(platform.runLoop, platform.milestones) {}

AppCore::~AppCore() = default;

void AppCore::start() {
    removeOldSettings();
    makeServices();
    bringUpShortcut();
    localMonitorController_->installLocalMonitor();
    eventTapController_->enable(true);
    platform_.milestones.reached(milestone::ready, 0);
}

// Nothing reads them any more.
void AppCore::removeOldSettings() {
    for (const std::string_view key : {"searchCase", "inputWidth"})
        if (platform_.userDefaults.get(key)) platform_.userDefaults.remove(key);
}

void AppCore::makeServices() {
    if (tarvixEngine_) return;
    sauce_ = std::make_unique<Sauce>(platform_.inputSources);
    axEngine_.emplace(platform_);
    displayEngine_ = std::make_unique<DisplayEngine>(platform_);
    tarvixEngine_ =
        std::make_unique<TarvixEngine>(platform_, std::make_shared<SearchEngine>(platform_), *displayEngine_);
    theInput_ = std::make_unique<TheInput>(platform_, *displayEngine_, *tarvixEngine_, *sauce_);
    keyboardShortcuts_ = std::make_unique<KeyboardShortcuts>(platform_.userDefaults, platform_.hotKeys);
    keyboardShortcuts_->define(toggleWith);
    keyRouting_ = std::make_unique<KeyRouting>(platform_, *tarvixEngine_, *theInput_, preloading_);
    localMonitorController_ =
        std::make_unique<LocalMonitorController>(platform_.events, *sauce_, *theInput_, *keyRouting_);
    inspector_ = std::make_unique<Inspector>(platform_, *displayEngine_, *theInput_);
    sessionEnd_ = tarvixEngine_->onSessionEnded([this] { inspector_->close(); });
    eventTapController_ = std::make_unique<EventTapController>(
        platform_.eventTaps, platform_.runLoop, platform_.userDefaults, *tarvixEngine_, *theInput_, *inspector_);
    // After The Input, which has taken on a new look by the time that it is shown with it.
    inputPreviewer_ = std::make_unique<InputPreviewer>(*theInput_, *tarvixEngine_);
    theInputMakeup_ = std::make_unique<TheInputMakeup>(platform_.userDefaults, platform_.runLoop, *inputPreviewer_);
    activation_ = platform_.workspace.onApplicationActivated(
        [this](const RunningApplication& application) { anAppHasBeenActivated(application, *axEngine_); });
}

// The handlers go first, so that a second start doesn't leave two of them.
void AppCore::bringUpShortcut() {
    keyboardShortcuts_->setEnabled(true);
    keyboardShortcuts_->removeAllHandlers();
    keyboardShortcuts_->onKeyDown(toggleWith, [this] { toggleTheInput(*tarvixEngine_, *theInput_, preloading_); });
}

}  // namespace tarvix
