#include "core/AppCore.h"

#include "core/ShowSettings.h"
#include "platform/Application.h"
#include "platform/Milestones.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"

namespace tarvix {

AppCore::AppCore(const Platform& platform) : platform_(platform), preloading_(platform.runLoop, platform.milestones) {}

AppCore::~AppCore() = default;

void AppCore::start() {
    removeOldSettings();
    if (!updaterController_) updaterController_ = std::make_unique<UpdaterController>(platform_.updater);
    if (!statusBarController_)
        statusBarController_ = std::make_unique<StatusBarController>(
            platform_, *updaterController_, [platform = platform_] { showSettings(platform); });
    if (!theInput_) makeServices();
    bringUpShortcut();
    localMonitorController_->installLocalMonitor();
    bringUpTap();
    platform_.application.hide();
    platform_.milestones.reached(milestone::ready, 0);
}

void AppCore::suspend() {
    if (keyboardShortcuts_) keyboardShortcuts_->setEnabled(false);
    if (localMonitorController_) localMonitorController_->removeLocalMonitor();
    if (!eventTapController_) fatal("the accessibility privilege is lost before there is an event tap to disable");
    eventTapController_->enable(false);
    preloading_.cancel();  // its Targets would stay on the screen for as long as nothing can open a search
    theInput_->close();
}

bool AppCore::isRunning() const {
    return eventTapController_ && eventTapController_->isEnabled() && localMonitorController_->isInstalled() &&
           keyboardShortcuts_->isEnabled();
}

void AppCore::toggleTheInput() { tarvix::toggleTheInput(tarvixEngine(), theInput(), preloading_); }

// Nothing reads them any more.
void AppCore::removeOldSettings() {
    for (const std::string_view key : {"searchCase", "inputWidth"})
        if (platform_.userDefaults.get(key)) platform_.userDefaults.remove(key);
}

void AppCore::makeServices() {
    sauce_ = std::make_unique<Sauce>(platform_.inputSources);
    axEngine_.emplace(platform_);
    displayEngine_ = std::make_unique<DisplayEngine>(platform_);
    tarvixEngine_ =
        std::make_unique<TarvixEngine>(platform_, std::make_shared<SearchEngine>(platform_), *displayEngine_);
    theInput_ = std::make_unique<TheInput>(platform_, *displayEngine_, *tarvixEngine_, *sauce_);
    makePartsOfASearch();
}

void AppCore::makePartsOfASearch() {
    keyboardShortcuts_ = std::make_unique<KeyboardShortcuts>(platform_.userDefaults, platform_.hotKeys);
    keyboardShortcuts_->define(toggleWith);
    keyRouting_ = std::make_unique<KeyRouting>(platform_, *tarvixEngine_, *theInput_, preloading_);
    localMonitorController_ =
        std::make_unique<LocalMonitorController>(platform_.events, *sauce_, *theInput_, *keyRouting_);
    inspector_ = std::make_unique<Inspector>(platform_, *displayEngine_, *theInput_);
    sessionEnd_ = tarvixEngine_->onSessionEnded([this] { inspector_->close(); });
    // After The Input, which has taken on a new look by the time that it is shown with it.
    inputPreviewer_ = std::make_unique<InputPreviewer>(*theInput_, *tarvixEngine_);
    theInputMakeup_ = std::make_unique<TheInputMakeup>(platform_.userDefaults, platform_.runLoop, *inputPreviewer_);
    targetsPreviewer_ =
        std::make_unique<TargetsPreviewer>(platform_, *tarvixEngine_, *displayEngine_, *theInput_, *inputPreviewer_);
    controlEffects_ = std::make_unique<ControlEffects>(platform_.runLoop, *inputPreviewer_, *targetsPreviewer_);
    statusItemChanged_ = controlEffects_->onStatusItemChanged([this] { statusBarController_->updateStatusItem(); });
}

// The handlers go first, so that a second start doesn't leave two of them.
void AppCore::bringUpShortcut() {
    keyboardShortcuts_->setEnabled(true);
    keyboardShortcuts_->removeAllHandlers();
    keyboardShortcuts_->onKeyDown(toggleWith, [this] { toggleTheInput(); });
}

void AppCore::bringUpTap() {
    if (eventTapController_)
        eventTapController_->enable(true);
    else
        eventTapController_ = std::make_unique<EventTapController>(
            platform_.eventTaps, platform_.runLoop, platform_.userDefaults, *tarvixEngine_, *theInput_, *inspector_);
}

}  // namespace tarvix
