#include "simulated/SimulatedHotKeys.h"

namespace tarvix {

bool SimulatedHotKeys::registerHotKey(std::uint32_t id, std::uint32_t keyCode, std::uint32_t modifiers) {
    const Chord chord(keyCode, modifiers);
    if (faults_.strike("registerHotKey") || takenByOthers.contains(chord)) return false;
    registered_.insert_or_assign(id, chord);
    return true;
}

bool SimulatedHotKeys::press(Chord chord) {
    for (const auto& [id, own] : registered_) {
        if (own != chord) continue;
        const std::uint32_t pressed = id;  // its entry may be gone before the release
        seen_(HotKeyEvent::pressed, pressed);
        seen_(HotKeyEvent::released, pressed);
        return true;
    }
    return false;
}

}  // namespace tarvix
