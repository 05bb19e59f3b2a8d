#include "simulated/SimulatedHotKeys.h"

namespace tarvix {

bool SimulatedHotKeys::registerHotKey(std::uint32_t id, std::uint32_t keyCode, std::uint32_t modifiers) {
    const Chord chord(keyCode, modifiers);
    if (faults_.strike("registerHotKey") || takenByOthers.contains(chord)) return false;
    registered_.insert_or_assign(id, chord);
    return true;
}

Subscription SimulatedHotKeys::onRawKey(std::function<Verdict(const RawKeyEvent&)> seen) {
    rawKey_ = std::make_shared<std::function<Verdict(const RawKeyEvent&)>>(std::move(seen));
    return Subscription([this, mine = std::weak_ptr(rawKey_)] {
        if (mine.lock() == rawKey_) rawKey_.reset();
    });
}

bool SimulatedHotKeys::press(Chord chord) {
    // By what is registered when the key goes down: what that brings about comes later than the key.
    const auto fired = hasMenu_ ? std::nullopt : idOf(chord);
    const bool reachesMenu = hasMenu_;
    const Verdict verdict = tellRaw(HotKeyEvent::pressed, chord);
    if (fired) seen_(HotKeyEvent::pressed, *fired);
    tellRaw(HotKeyEvent::released, chord);
    if (fired) seen_(HotKeyEvent::released, *fired);
    return fired.has_value() || (reachesMenu && verdict == Verdict::consume);
}

std::optional<std::uint32_t> SimulatedHotKeys::idOf(Chord chord) const {
    for (const auto& [id, own] : registered_)
        if (own == chord) return id;
    return std::nullopt;
}

Verdict SimulatedHotKeys::tellRaw(HotKeyEvent event, Chord chord) {
    const auto listener = rawKey_;  // it may end its own subscription
    return listener ? (*listener)({event, chord.first, chord.second}) : Verdict::pass;
}

void SimulatedHotKeys::setMenu(bool isOpen) {
    if (isOpen == hasMenu_) return;
    hasMenu_ = isOpen;
    menuTracking_(isOpen ? MenuTracking::began : MenuTracking::ended);
}

}  // namespace tarvix
