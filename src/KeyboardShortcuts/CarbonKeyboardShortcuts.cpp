#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"

#include <cassert>
#include <limits>
#include <utility>

namespace tarvix {

CarbonKeyboardShortcuts::~CarbonKeyboardShortcuts() { softUnregisterAll(); }

void CarbonKeyboardShortcuts::registerShortcut(const Shortcut& shortcut, Handler onKeyDown, Handler onKeyUp) {
    assert(hotKeyId_ < std::numeric_limits<std::uint32_t>::max());
    ++hotKeyId_;
    if (!platform_.registerHotKey(hotKeyId_, shortcut.carbonKeyCode, shortcut.carbonModifiers)) return;
    hotKeys_.emplace(hotKeyId_, HotKey{shortcut, true, std::move(onKeyDown), std::move(onKeyUp)});
    if (hasEventHandler_) return;
    hasEventHandler_ = true;
    updateEventHandler();
}

void CarbonKeyboardShortcuts::unregisterShortcut(const Shortcut& shortcut) {
    for (auto entry = hotKeys_.begin(); entry != hotKeys_.end();) {
        if (entry->second.shortcut == shortcut) {
            if (entry->second.isTaken) platform_.unregisterHotKey(entry->first);
            entry = hotKeys_.erase(entry);
        } else {
            ++entry;
        }
    }
}

void CarbonKeyboardShortcuts::setEnabled(bool isEnabled) {
    isEnabled_ = isEnabled;
    updateEventHandler();
}

void CarbonKeyboardShortcuts::updateEventHandler() {
    if (!hasEventHandler_) return;
    if (isEnabled_) {
        softRegisterAll();
        hotKeyEvents_ = platform_.onHotKey([this](HotKeyEvent event, std::uint32_t id) { handle(event, id); });
    } else {
        softUnregisterAll();
        hotKeyEvents_.reset();
    }
}

void CarbonKeyboardShortcuts::softRegisterAll() {
    for (auto entry = hotKeys_.begin(); entry != hotKeys_.end();) {
        auto& [id, hotKey] = *entry;
        if (!hotKey.isTaken)
            hotKey.isTaken =
                platform_.registerHotKey(id, hotKey.shortcut.carbonKeyCode, hotKey.shortcut.carbonModifiers);
        entry = hotKey.isTaken ? std::next(entry) : hotKeys_.erase(entry);
    }
}

void CarbonKeyboardShortcuts::softUnregisterAll() {
    for (auto& [id, hotKey] : hotKeys_) {
        if (hotKey.isTaken) platform_.unregisterHotKey(id);
        hotKey.isTaken = false;
    }
}

void CarbonKeyboardShortcuts::handle(HotKeyEvent event, std::uint32_t id) {
    const auto found = hotKeys_.find(id);
    if (found == hotKeys_.end()) return;
    const HotKey hotKey = found->second;  // its handler may unregister it
    (event == HotKeyEvent::pressed ? hotKey.onKeyDown : hotKey.onKeyUp)(hotKey.shortcut);
}

}  // namespace tarvix
