// The objects of the running program.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "ax/AXEngine2.h"
#include "base/Fatal.h"
#include "core/EventTapController.h"
#include "core/InputPreviewer.h"
#include "core/KeyRouting.h"
#include "core/LocalMonitorController.h"
#include "core/Preloading.h"
#include "core/TargetsPreviewer.h"
#include "core/TarvixEngine.h"
#include "display/DisplayEngine.h"
#include "display/Inspector.h"
#include "display/TheInput.h"
#include "keys/Sauce.h"
#include "platform/Platform.h"
#include "shell/StatusBarController.h"
#include "shell/TheInputMakeup.h"
#include "shell/UpdaterController.h"
#include "shell/preferences/ControlEffects.h"

namespace tarvix {

// Owns the services that live as long as the program; none of them is there before the first start. Main thread; the
// platform outlives it.
class AppCore {
public:
    explicit AppCore(const Platform& platform);
    ~AppCore();
    AppCore(const AppCore&) = delete;
    AppCore& operator=(const AppCore&) = delete;

    // Makes what isn't there yet, brings the shortcut, the key monitor and the event tap to life, and hides the
    // program. May run many times.
    void start();
    // Puts the three out of service, and ends a search that is up and its reading: the keyboard is the application's
    // again. Ends the process when there is no event tap.
    void suspend();

    bool isStarted() const { return theInput_ != nullptr; }
    // Started, and not suspended since.
    bool isRunning() const;

    // Opens a search, or ends the one that is open.
    void toggleTheInput();

    // To be used after the first start only: before, each of them ends the process.
    UpdaterController& updaterController() { return started(updaterController_, "updaterController"); }
    StatusBarController& statusBarController() { return started(statusBarController_, "statusBarController"); }
    const AXEngine2& axEngine() { return started(axEngine_, "axEngine"); }
    DisplayEngine& displayEngine() { return started(displayEngine_, "displayEngine"); }
    TarvixEngine& tarvixEngine() { return started(tarvixEngine_, "tarvixEngine"); }
    TheInput& theInput() { return started(theInput_, "theInput"); }
    KeyboardShortcuts& keyboardShortcuts() { return started(keyboardShortcuts_, "keyboardShortcuts"); }
    LocalMonitorController& localMonitorController() {
        return started(localMonitorController_, "localMonitorController");
    }
    ControlEffects& controlEffects() { return started(controlEffects_, "controlEffects"); }
    EventTapController& eventTapController() { return started(eventTapController_, "eventTapController"); }

private:
    template <class Held>
    static auto started(Held& held, std::string_view field) -> decltype(*held) {
        if (!held) fatal(std::string(field) + " is used before the start");
        return *held;
    }

    void removeOldSettings();
    void makeServices();
    void makePartsOfASearch();
    void bringUpShortcut();
    void bringUpTap();

    Platform platform_;
    Preloading preloading_;
    std::unique_ptr<UpdaterController> updaterController_;
    std::unique_ptr<StatusBarController> statusBarController_;
    std::unique_ptr<Sauce> sauce_;
    std::optional<AXEngine2> axEngine_;
    std::unique_ptr<DisplayEngine> displayEngine_;
    std::unique_ptr<TarvixEngine> tarvixEngine_;
    std::unique_ptr<TheInput> theInput_;
    std::unique_ptr<KeyboardShortcuts> keyboardShortcuts_;
    std::unique_ptr<KeyRouting> keyRouting_;
    std::unique_ptr<LocalMonitorController> localMonitorController_;
    std::unique_ptr<Inspector> inspector_;
    std::unique_ptr<EventTapController> eventTapController_;
    std::unique_ptr<InputPreviewer> inputPreviewer_;
    std::unique_ptr<TheInputMakeup> theInputMakeup_;
    std::unique_ptr<TargetsPreviewer> targetsPreviewer_;
    std::unique_ptr<ControlEffects> controlEffects_;
    Subscription statusItemChanged_;
    Subscription sessionEnd_;
};

}  // namespace tarvix
