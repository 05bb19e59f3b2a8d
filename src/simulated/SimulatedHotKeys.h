// Hot keys that the test presses, with the menus and the other programs that keep them from firing.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "base/Listeners.h"
#include "platform/HotKeys.h"
#include "simulated/Faults.h"

namespace tarvix {

// Can fail: registerHotKey.
class SimulatedHotKeys : public HotKeys {
public:
    using Chord = std::pair<std::uint32_t, std::uint32_t>;  // key code, carbon modifiers

    explicit SimulatedHotKeys(Faults& faults) : faults_(faults) {}

    bool registerHotKey(std::uint32_t id, std::uint32_t keyCode, std::uint32_t modifiers) override;
    void unregisterHotKey(std::uint32_t id) override { registered_.erase(id); }
    [[nodiscard]] Subscription onHotKey(std::function<void(HotKeyEvent, std::uint32_t id)> seen) override {
        return seen_.add(std::move(seen));
    }

    [[nodiscard]] Subscription onMenuTracking(std::function<void(MenuTracking)> seen) override {
        return menuTracking_.add(std::move(seen));
    }
    [[nodiscard]] Subscription onRawKey(std::function<Verdict(const RawKeyEvent&)> seen) override;
    std::optional<std::vector<SymbolicHotKey>> symbolicHotKeys() override { return desktopHotKeys; }

    // Presses and releases a key. False when nothing here keeps it from whoever has the keyboard: neither a hot key,
    // which doesn't fire while a menu is open, nor a listener for raw keys while one is.
    bool press(Chord chord);
    const std::map<std::uint32_t, Chord>& registered() const { return registered_; }

    // A menu that keeps hot keys from firing.
    void openMenu() { setMenu(true); }
    void closeMenu() { setMenu(false); }
    bool hasMenu() const { return hasMenu_; }
    bool hearsRawKeys() const { return rawKey_ != nullptr; }

    std::set<Chord> takenByOthers;
    std::optional<std::vector<SymbolicHotKey>> desktopHotKeys;

private:
    std::optional<std::uint32_t> idOf(Chord chord) const;
    Verdict tellRaw(HotKeyEvent event, Chord chord);
    void setMenu(bool isOpen);

    Faults& faults_;
    std::map<std::uint32_t, Chord> registered_;
    bool hasMenu_ = false;
    std::shared_ptr<std::function<Verdict(const RawKeyEvent&)>> rawKey_;
    Listeners<MenuTracking> menuTracking_;
    Listeners<HotKeyEvent, std::uint32_t> seen_;
};

}  // namespace tarvix
