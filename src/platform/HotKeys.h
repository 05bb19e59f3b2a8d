// Key presses that reach this program whatever application has the keyboard.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "base/Subscription.h"
#include "platform/Events.h"

namespace tarvix {

enum class HotKeyEvent { pressed, released };

// One key that goes up or down, whoever gets it.
struct RawKeyEvent {
    HotKeyEvent event = HotKeyEvent::pressed;
    std::uint32_t keyCode = 0;    // a position on the table of `Key`
    std::uint32_t modifiers = 0;  // carbon bits, perhaps with others than the four of a hot key
};

// Hot keys may stop firing for a time, since a menu, or a program's hold of a keyboard, gets the keys first.
enum class MenuTracking { began, ended };

// A hot key of the desktop itself. What can't be told is absent; the modifiers may have others than the four.
struct SymbolicHotKey {
    std::optional<bool> isEnabled;
    std::optional<std::uint32_t> keyCode;
    std::optional<std::uint32_t> modifiers;
    friend bool operator==(const SymbolicHotKey&, const SymbolicHotKey&) = default;
};

// Main thread, but for symbolicHotKeys(), which any thread may call.
class HotKeys {
public:
    virtual ~HotKeys() = default;

    // Takes a key for this program under an id of the caller's. `keyCode` is a position on the table of `Key`;
    // `modifiers` are carbon bits (command 0x100, shift 0x200, option 0x800, control 0x1000) and must match exactly,
    // caps lock and num lock aside. False when it can't be had, for instance because another program holds it.
    virtual bool registerHotKey(std::uint32_t id, std::uint32_t keyCode, std::uint32_t modifiers) = 0;
    virtual void unregisterHotKey(std::uint32_t id) = 0;

    [[nodiscard]] virtual Subscription onHotKey(std::function<void(HotKeyEvent, std::uint32_t id)> seen) = 0;

    // Between the two hot keys don't fire and raw keys serve in their place: the press that was kept from a hot key
    // is told right after the beginning, if it isn't past. A desktop whose menus don't keep hot keys from firing tells
    // nothing of menus.
    [[nodiscard]] virtual Subscription onMenuTracking(std::function<void(MenuTracking)> seen) = 0;
    // Sees the keys at a position of the table go down and up, without repeats and whatever holds the keyboard. To
    // consume one keeps it from the menu that is open, where the desktop lets us. One listener at a time; where the
    // desktop doesn't tell of raw keys it is never called.
    [[nodiscard]] virtual Subscription onRawKey(std::function<Verdict(const RawKeyEvent&)> seen) = 0;

    // What the desktop has taken for itself, as far as it says; absent when it says nothing. Reads files and may run
    // programs, for a second or more: nothing for a moment when somebody waits for a key.
    virtual std::optional<std::vector<SymbolicHotKey>> symbolicHotKeys() = 0;
};

}  // namespace tarvix
