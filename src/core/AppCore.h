// The objects of the running program.
#pragma once

#include <memory>
#include <optional>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "ax/AXEngine2.h"
#include "core/EventTapController.h"
#include "core/InputPreviewer.h"
#include "core/KeyRouting.h"
#include "core/LocalMonitorController.h"
#include "core/Preloading.h"
#include "core/TarvixEngine.h"
#include "display/DisplayEngine.h"
#include "display/Inspector.h"
#include "display/TheInput.h"
#include "keys/Sauce.h"
#include "platform/Platform.h"
#include "shell/TheInputMakeup.h"

namespace tarvix {

// Owns the services that live as long as the program. Main thread; the platform outlives it.
class AppCore {
public:
    explicit AppCore(const Platform& platform);
    ~AppCore();
    AppCore(const AppCore&) = delete;
    AppCore& operator=(const AppCore&) = delete;

    // Makes what isn't there yet and brings the shortcut, the key monitor and the event tap to life. May run many
    // times. From the first time on, applications that become active get the switch that makes them show their tree.
    void start();

    // Once start() has run.
    TarvixEngine& tarvixEngine() { return *tarvixEngine_; }
    TheInput& theInput() { return *theInput_; }
    LocalMonitorController& localMonitorController() { return *localMonitorController_; }
    EventTapController& eventTapController() { return *eventTapController_; }
    KeyboardShortcuts& keyboardShortcuts() { return *keyboardShortcuts_; }

private:
    void removeOldSettings();
    void makeServices();
    void bringUpShortcut();

    Platform platform_;
    Preloading preloading_;
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
    Subscription sessionEnd_;
    Subscription activation_;
};

}  // namespace tarvix
