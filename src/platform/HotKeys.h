// Key presses that reach this program whatever application has the keyboard.
#pragma once

#include <cstdint>
#include <functional>

#include "base/Subscription.h"

namespace tarvix {

enum class HotKeyEvent { pressed, released };

// Main thread.
class HotKeys {
public:
    virtual ~HotKeys() = default;

    // Takes a key for this program under an id of the caller's. `keyCode` is a position on the table of `Key`;
    // `modifiers` are carbon bits (command 0x100, shift 0x200, option 0x800, control 0x1000) and must match exactly,
    // caps lock and num lock aside. False when it can't be had, for instance because another program holds it.
    virtual bool registerHotKey(std::uint32_t id, std::uint32_t keyCode, std::uint32_t modifiers) = 0;
    virtual void unregisterHotKey(std::uint32_t id) = 0;

    [[nodiscard]] virtual Subscription onHotKey(std::function<void(HotKeyEvent, std::uint32_t id)> seen) = 0;
};

}  // namespace tarvix
