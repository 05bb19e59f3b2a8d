#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <utility>

#include "platform/Modifiers.h"

namespace tarvix {

namespace {

// Only the four modifiers of a shortcut count.
Shortcut shortcutOf(std::uint32_t keyCode, std::uint32_t modifiers) {
    return Shortcut::withEventFlags(keyCode, ModifierTransformer::eventFlags(modifiers));
}

}  // namespace

CarbonKeyboardShortcuts::~CarbonKeyboardShortcuts() { softUnregisterAll(); }

void CarbonKeyboardShortcuts::registerShortcut(const Shortcut& shortcut, Handler onKeyDown, Handler onKeyUp) {
    HotKey hotKey{shortcut, false, std::move(onKeyDown), std::move(onKeyUp)};
    if (!take(hotKey)) refused_.push_back(std::move(hotKey));
    updateRawKeys();
}

bool CarbonKeyboardShortcuts::take(HotKey hotKey) {
    if (hotKeyId_ == std::numeric_limits<std::uint32_t>::max()) std::abort();  // ids are never reused
    ++hotKeyId_;
    if (!platform_.registerHotKey(hotKeyId_, hotKey.shortcut.carbonKeyCode, hotKey.shortcut.carbonModifiers))
        return false;
    hotKey.isTaken = true;
    hotKeys_.emplace(hotKeyId_, std::move(hotKey));
    if (!hasEventHandler_) {
        hasEventHandler_ = true;
        updateEventHandler();
    }
    return true;
}

void CarbonKeyboardShortcuts::unregisterShortcut(const Shortcut& shortcut) {
    std::erase_if(hotKeys_, [&](const auto& entry) {
        if (entry.second.shortcut != shortcut) return false;
        if (entry.second.isTaken) platform_.unregisterHotKey(entry.first);
        return true;
    });
    std::erase_if(refused_, [&](const HotKey& hotKey) { return hotKey.shortcut == shortcut; });
    updateRawKeys();
}

void CarbonKeyboardShortcuts::setPath(Path path) {
    path_ = path;
    freed_.reset();
    updateEventHandler();
    updateRawKeys();
}

void CarbonKeyboardShortcuts::updateEventHandler() {
    if (!hasEventHandler_) return;
    if (path_ == Path::hotKeys) {
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
        if (hotKey.isTaken) {
            ++entry;
        } else {
            refused_.push_back(std::move(hotKey));
            entry = hotKeys_.erase(entry);
        }
    }
}

void CarbonKeyboardShortcuts::softUnregisterAll() {
    for (auto& [id, hotKey] : hotKeys_) {
        if (hotKey.isTaken) platform_.unregisterHotKey(id);
        hotKey.isTaken = false;
    }
}

// Nobody tells when a program lets go of a key, so the presses of what was refused are looked at; and nothing else is.
void CarbonKeyboardShortcuts::updateRawKeys() {
    const bool isMenuServed = path_ == Path::rawKeys && hasEventHandler_;
    const bool isWaited = path_ == Path::hotKeys && (!refused_.empty() || freed_);
    if (!isMenuServed && !isWaited) {
        rawKeys_.reset();
    } else if (!rawKeys_) {
        rawKeys_ = platform_.onRawKey([this](const RawKeyEvent& event) { return handleRawKey(event); });
    }
}

void CarbonKeyboardShortcuts::handle(HotKeyEvent event, std::uint32_t id) {
    const auto found = hotKeys_.find(id);
    if (found == hotKeys_.end()) return;
    const HotKey hotKey = found->second;  // its handler may unregister it
    hotKey.call(event);
}

Verdict CarbonKeyboardShortcuts::handleRawKey(const RawKeyEvent& event) {
    if (path_ == Path::rawKeys) return serveInMenu(event);
    serveFreed(event);
    return Verdict::pass;
}

Verdict CarbonKeyboardShortcuts::serveInMenu(const RawKeyEvent& event) {
    const Shortcut shortcut = shortcutOf(event.keyCode, event.modifiers);
    const auto found = std::ranges::find(hotKeys_, shortcut, [](const auto& entry) { return entry.second.shortcut; });
    if (found == hotKeys_.end()) return Verdict::pass;
    const HotKey hotKey = found->second;
    hotKey.call(event.event);
    return Verdict::consume;
}

void CarbonKeyboardShortcuts::serveFreed(const RawKeyEvent& event) {
    if (event.event == HotKeyEvent::pressed) {
        const auto found = std::ranges::find(refused_, shortcutOf(event.keyCode, event.modifiers), &HotKey::shortcut);
        if (found == refused_.end() || !take(*found)) return;
        refused_.erase(found);
        freed_ = Freed{hotKeyId_, event.keyCode};
        handle(HotKeyEvent::pressed, hotKeyId_);
    } else if (freed_ && freed_->keyCode == event.keyCode) {
        const std::uint32_t id = std::exchange(freed_, std::nullopt)->id;
        updateRawKeys();
        handle(HotKeyEvent::released, id);
    }
}

std::vector<Shortcut> CarbonKeyboardShortcuts::systemReservedShortcuts() {
    std::vector<Shortcut> reserved;
    const auto hotKeys = platform_.symbolicHotKeys();
    if (!hotKeys) return reserved;
    for (const SymbolicHotKey& hotKey : *hotKeys)
        if (hotKey.isEnabled.value_or(false) && hotKey.keyCode && hotKey.modifiers)
            reserved.push_back(shortcutOf(*hotKey.keyCode, *hotKey.modifiers));
    return reserved;
}

}  // namespace tarvix
