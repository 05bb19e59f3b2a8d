// The hot keys behind the shortcuts.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

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

    // Takes the shortcut's hot key under a new id, enabled or not. One that can't be had gives no hot key, silently:
    // nobody can help it when another program holds it. It is had at its first press after that program has let go of
    // it, and this press is served.
    void registerShortcut(const Shortcut& shortcut, Handler onKeyDown, Handler onKeyUp);
    // Gives up every hot key with this key and these modifiers.
    void unregisterShortcut(const Shortcut& shortcut);

    // How presses come: as hot keys; as raw keys while a menu keeps hot keys from firing; or not at all. Hot keys that
    // aren't served are given back to the desktop, and are taken again under their old ids.
    enum class Path { hotKeys, rawKeys, none };
    void setPath(Path path);

    // The shortcuts that the desktop itself has taken, as far as it says. May last a second or more. Any thread.
    std::vector<Shortcut> systemReservedShortcuts();

private:
    struct HotKey {
        Shortcut shortcut;
        bool isTaken = false;  // false while it is given back for a time
        Handler onKeyDown;
        Handler onKeyUp;

        void call(HotKeyEvent event) const { (event == HotKeyEvent::pressed ? onKeyDown : onKeyUp)(shortcut); }
    };

    bool take(HotKey hotKey);
    void updateEventHandler();
    void softRegisterAll();
    void softUnregisterAll();
    void updateRawKeys();
    void handle(HotKeyEvent event, std::uint32_t id);
    Verdict handleRawKey(const RawKeyEvent& event);
    Verdict serveInMenu(const RawKeyEvent& event);
    void serveFreed(const RawKeyEvent& event);

    HotKeys& platform_;
    std::map<std::uint32_t, HotKey> hotKeys_;
    std::uint32_t hotKeyId_ = 0;  // of the last registration; ids are never reused
    Path path_ = Path::hotKeys;
    bool hasEventHandler_ = false;  // from the first hot key on
    Subscription hotKeyEvents_;
    Subscription rawKeys_;
    std::vector<HotKey> refused_;  // what another program held when it was asked for
    // The one that was had at its own press: its release isn't told as a hot key's.
    struct Freed {
        std::uint32_t id = 0;
        std::uint32_t keyCode = 0;
    };
    std::optional<Freed> freed_;
};

}  // namespace tarvix
