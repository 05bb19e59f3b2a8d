// Global shortcuts by name: the user's choice lives in the settings store, and the hot keys are kept in step with it.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"
#include "KeyboardShortcuts/Shortcut.h"
#include "base/Listeners.h"
#include "platform/UserDefaults.h"

namespace tarvix {

// Main thread. One instance serves the whole process; `userDefaults` and `hotKeys` outlive it.
class KeyboardShortcuts {
public:
    using Name = ShortcutName;
    using Handler = std::function<void()>;

    KeyboardShortcuts(UserDefaults& userDefaults, HotKeys& hotKeys);
    KeyboardShortcuts(const KeyboardShortcuts&) = delete;
    KeyboardShortcuts& operator=(const KeyboardShortcuts&) = delete;

    // To be called once for each name before its other uses: stores its default, and takes that hot key, where the
    // store has nothing at all under the name. From then on the hot key follows the store, whoever writes to it.
    void define(const Name& name);

    // Absent when the user has cleared it, and for anything in the store that isn't a shortcut.
    std::optional<Shortcut> getShortcut(const Name& name) const;
    // The hot key follows at once. Clearing a name that has a default keeps the default from coming back.
    void setShortcut(const std::optional<Shortcut>& shortcut, const Name& name);

    // Handlers of one name run in the order of adding, and the first one takes the hot key.
    void onKeyDown(const Name& name, Handler action);
    void onKeyUp(const Name& name, Handler action);
    // Gives up the hot key of every name that has handlers.
    void removeAllHandlers();

    // True to begin with. While it is false no hot key is served; turning it off gives them back to the desktop.
    bool isEnabled() const { return isEnabled_; }
    void setEnabled(bool isEnabled);

    // Whether a menu keeps hot keys from firing; raw keys serve meanwhile.
    bool isMenuOpen() const { return isMenuOpen_; }

    // While it is true the hot keys are held and no handler is called.
    bool isPaused = false;
    // The presses that call no handler because of that.
    [[nodiscard]] Subscription onPressWhilePaused(std::function<void(const Shortcut& pressed)> pressed) {
        return pressedWhilePaused_.add(std::move(pressed));
    }

    // The shortcuts that the desktop itself has taken, as far as it says. May last a second or more. Any thread.
    std::vector<Shortcut> systemReservedShortcuts() { return carbon_.systemReservedShortcuts(); }

    // A name's shortcut has been set or cleared, here or by another writer.
    [[nodiscard]] Subscription onShortcutByNameDidChange(std::function<void(const Name& name)> changed) {
        return shortcutByNameDidChange_.add(std::move(changed));
    }

private:
    using Handlers = std::map<Name, std::vector<Handler>>;

    void initialize();
    void storeChanged(std::string_view key);
    void setMenuOpen(bool isMenuOpen);
    void updateEventHandler();
    void replaceShortcut(const Shortcut& shortcut, const Name& name);
    void clearShortcut(const Name& name);
    void registerIfNeeded(const Name& name);
    void registerShortcut(const Shortcut& shortcut);
    void unregisterShortcut(const Shortcut& shortcut);
    void keyDown(const Shortcut& pressed) const;
    void dispatch(const Handlers& handlers, const Shortcut& pressed) const;

    UserDefaults& userDefaults_;
    HotKeys& hotKeys_;
    CarbonKeyboardShortcuts carbon_;
    // Those that a hot key was asked for, had or not.
    std::set<Shortcut> registeredShortcuts_;
    // What the hot key of each defined name goes by.
    std::map<Name, std::optional<Shortcut>> followed_;
    Handlers keyDownHandlers_;
    Handlers keyUpHandlers_;
    bool isEnabled_ = true;
    bool isMenuOpen_ = false;
    bool isInitialized_ = false;
    Subscription menuTracking_, store_;
    Listeners<const Name&> shortcutByNameDidChange_;
    Listeners<const Shortcut&> pressedWhilePaused_;
};

}  // namespace tarvix
