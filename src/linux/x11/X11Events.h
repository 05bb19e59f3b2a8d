// Posting through the server's test extension, and the offering of keys to the monitor.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/Outcome.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Modifiers.h"
#include "platform/Events.h"

namespace tarvix {

// Main thread. Nothing is posted into windows, everything as if it came from the hardware: it goes through grabs and
// menus as a hand's click does, and below click-through panels.
class X11Events final : public Events {
public:
    // The connection outlives the events.
    static Outcome<std::unique_ptr<X11Events>> open(X11Connection& connection);

    bool post(const MouseEvent& event) override;
    bool post(const KeyEvent& event) override;
    Subscription monitorKeyDown(std::function<Verdict(const KeyEvent&)> seen) override;

    // What the monitor says to a key press; pass where there is none. The monitor may do anything meanwhile, ending the
    // panel's hold of the keyboard included.
    Verdict offer(const KeyEvent& event);
    // Whether a raw button press, which tells the sequence number of the last request before it, was posted by us. True
    // once for each.
    bool tookOwnPress(std::uint32_t sequence);

private:
    X11Events(X11Connection& connection, bool hasXInput);
    unsigned fake(std::uint8_t type, std::uint8_t detail, std::int16_t x = 0, std::int16_t y = 0);
    // What has to change for a click to carry some modifiers: locks to set, and keys to lift, each on its own keyboard.
    struct ModifierChange {
        std::uint8_t add = 0, unlock = 0;
        struct Lifted {
            std::uint16_t device;
            std::uint8_t keycode;
        };
        std::vector<Lifted> lifted;
    };
    ModifierChange changeFor(const std::optional<std::uint64_t>& flags);
    std::vector<ModifierChange::Lifted> keysDownWith(std::uint8_t mask, const std::vector<std::uint16_t>& devices);
    void apply(const ModifierChange& change);
    void undo(const ModifierChange& change);
    void fakeOn(const ModifierChange::Lifted& key, int type);

    X11Connection& x_;
    bool hasXInput_;
    X11Modifiers modifiers_;
    std::vector<unsigned> ownPresses_;
    std::shared_ptr<std::function<Verdict(const KeyEvent&)>> monitor_;
    Subscription events_;
};

}  // namespace tarvix
