// The hot keys behind the shortcuts.
#pragma once

#include <cstdint>
#include <functional>
#include <map>

#include "KeyboardShortcuts/Shortcut.h"
#include "base/Subscription.h"
#include "platform/HotKeys.h"

namespace tarvix {

// The only part of the module that touches the platform. Main thread; `hotKeys` outlives it.
class CarbonKeyboardShortcuts {
public:
    using Handler = std::function<void(const Shortcut&)>;

    explicit CarbonKeyboardShortcuts(HotKeys& hotKeys) : platform_(hotKeys) {}
    ~CarbonKeyboardShortcuts();
    CarbonKeyboardShortcuts(const CarbonKeyboardShortcuts&) = delete;
    CarbonKeyboardShortcuts& operator=(const CarbonKeyboardShortcuts&) = delete;

    // Takes the shortcut's hot key under a new id, enabled or not. One that can't be had is not recorded, silently:
    // nobody can help it when another program holds it.
    void registerShortcut(const Shortcut& shortcut, Handler onKeyDown, Handler onKeyUp);
    // Gives up every hot key with this key and these modifiers.
    void unregisterShortcut(const Shortcut& shortcut);

    // Off: all hot keys are given back to the desktop and none is served; on: they are taken again under their old ids,
    // and one that can't be had any more is forgotten.
    void setEnabled(bool isEnabled);

private:
    struct HotKey {
        Shortcut shortcut;
        bool isTaken = false;  // false while it is given back for a time
        Handler onKeyDown;
        Handler onKeyUp;
    };

    void updateEventHandler();
    void softRegisterAll();
    void softUnregisterAll();
    void handle(HotKeyEvent event, std::uint32_t id);

    HotKeys& platform_;
    std::map<std::uint32_t, HotKey> hotKeys_;
    std::uint32_t hotKeyId_ = 0;  // of the last registration; ids are never reused
    bool isEnabled_ = true;
    bool hasEventHandler_ = false;  // from the first hot key on
    Subscription hotKeyEvents_;
};

}  // namespace tarvix
