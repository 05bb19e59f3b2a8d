// Hot keys that the test presses.
#pragma once

#include <map>
#include <set>
#include <utility>

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

    // Presses and releases a key; false when it is nobody's hot key here.
    bool press(Chord chord);
    const std::map<std::uint32_t, Chord>& registered() const { return registered_; }

    std::set<Chord> takenByOthers;

private:
    Faults& faults_;
    std::map<std::uint32_t, Chord> registered_;
    Listeners<HotKeyEvent, std::uint32_t> seen_;
};

}  // namespace tarvix
