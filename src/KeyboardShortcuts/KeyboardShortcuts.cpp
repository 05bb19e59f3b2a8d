#include "KeyboardShortcuts/KeyboardShortcuts.h"

#include <utility>

namespace tarvix {

namespace {

std::string storeKey(const ShortcutName& name) { return "KeyboardShortcuts_" + name.rawValue; }

}  // namespace

KeyboardShortcuts::KeyboardShortcuts(UserDefaults& userDefaults, HotKeys& hotKeys)
    : userDefaults_(userDefaults), hotKeys_(hotKeys), carbon_(hotKeys) {}

void KeyboardShortcuts::define(const Name& name) {
    if (name.defaultShortcut && !userDefaults_.get(storeKey(name))) setShortcut(name.defaultShortcut, name);
    followed_[name] = getShortcut(name);
    initialize();
}

void KeyboardShortcuts::initialize() {
    if (isInitialized_) return;
    menuTracking_ = hotKeys_.onMenuTracking([this](MenuTracking now) { setMenuOpen(now == MenuTracking::began); });
    store_ = userDefaults_.onChange([this](std::string_view key) { storeChanged(key); });
    isInitialized_ = true;
}

// Our own changes are noted before they are written, and are none here.
void KeyboardShortcuts::storeChanged(std::string_view key) {
    for (auto& [name, followed] : followed_) {
        if (!key.empty() && key != storeKey(name)) continue;
        const auto present = getShortcut(name);
        if (present == followed) continue;
        if (followed) unregisterShortcut(*followed);
        if (present) registerShortcut(*present);
        followed = present;
        shortcutByNameDidChange_(name);
    }
}

void KeyboardShortcuts::setMenuOpen(bool isMenuOpen) {
    if (isMenuOpen == isMenuOpen_) return;
    isMenuOpen_ = isMenuOpen;
    updateEventHandler();
}

void KeyboardShortcuts::updateEventHandler() {
    using Path = CarbonKeyboardShortcuts::Path;
    carbon_.setPath(!isEnabled_ ? Path::none : isMenuOpen_ ? Path::rawKeys : Path::hotKeys);
}

std::optional<Shortcut> KeyboardShortcuts::getShortcut(const Name& name) const {
    const auto value = userDefaults_.get(storeKey(name));
    const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
    if (!text) return std::nullopt;
    return decodedShortcut(*text);
}

void KeyboardShortcuts::setShortcut(const std::optional<Shortcut>& shortcut, const Name& name) {
    if (shortcut)
        replaceShortcut(*shortcut, name);
    else
        clearShortcut(name);
}

// The hot key changes before the store does.
void KeyboardShortcuts::replaceShortcut(const Shortcut& shortcut, const Name& name) {
    if (const auto present = getShortcut(name)) unregisterShortcut(*present);
    registerShortcut(shortcut);
    followed_[name] = shortcut;
    userDefaults_.set(storeKey(name), encoded(shortcut));
    shortcutByNameDidChange_(name);
}

void KeyboardShortcuts::clearShortcut(const Name& name) {
    const auto present = getShortcut(name);
    if (!present) return;
    followed_[name].reset();
    if (name.defaultShortcut)
        userDefaults_.set(storeKey(name), false);
    else
        userDefaults_.remove(storeKey(name));
    unregisterShortcut(*present);
    shortcutByNameDidChange_(name);
}

void KeyboardShortcuts::onKeyDown(const Name& name, Handler action) {
    keyDownHandlers_[name].push_back(std::move(action));
    registerIfNeeded(name);
}

void KeyboardShortcuts::onKeyUp(const Name& name, Handler action) {
    keyUpHandlers_[name].push_back(std::move(action));
    registerIfNeeded(name);
}

void KeyboardShortcuts::removeAllHandlers() {
    for (const Handlers* handlers : {&keyDownHandlers_, &keyUpHandlers_}) {
        for (const auto& [name, actions] : *handlers) {
            if (const auto shortcut = getShortcut(name)) unregisterShortcut(*shortcut);
        }
    }
    keyDownHandlers_.clear();
    keyUpHandlers_.clear();
}

void KeyboardShortcuts::setEnabled(bool isEnabled) {
    if (isEnabled == isEnabled_) return;
    isEnabled_ = isEnabled;
    updateEventHandler();
}

void KeyboardShortcuts::registerIfNeeded(const Name& name) {
    if (const auto shortcut = getShortcut(name)) registerShortcut(*shortcut);
}

void KeyboardShortcuts::registerShortcut(const Shortcut& shortcut) {
    if (!registeredShortcuts_.insert(shortcut).second) return;
    carbon_.registerShortcut(
        shortcut, [this](const Shortcut& pressed) { keyDown(pressed); },
        [this](const Shortcut& released) { dispatch(keyUpHandlers_, released); });
}

void KeyboardShortcuts::unregisterShortcut(const Shortcut& shortcut) {
    carbon_.unregisterShortcut(shortcut);
    registeredShortcuts_.erase(shortcut);
}

void KeyboardShortcuts::keyDown(const Shortcut& pressed) const {
    if (isPaused)
        pressedWhilePaused_(pressed);
    else
        dispatch(keyDownHandlers_, pressed);
}

// The store is read at each press, so that a choice written by anyone holds from the next press on.
void KeyboardShortcuts::dispatch(const Handlers& handlers, const Shortcut& pressed) const {
    if (isPaused) return;
    // A copy, since a handler may add or remove some.
    const std::vector<std::pair<Name, std::vector<Handler>>> present(handlers.begin(), handlers.end());
    for (const auto& [name, actions] : present) {
        if (getShortcut(name) != pressed) continue;
        for (const Handler& action : actions) action();
    }
}

}  // namespace tarvix
