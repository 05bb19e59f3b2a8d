#include "keys/KeyCombinationAdaptor.h"

#include <algorithm>
#include <array>

#include "keys/Sauce.h"

namespace tarvix {

namespace {

struct ModifierRow {
    bool KeyCombination::*field;
    std::uint64_t flag;
};

constexpr auto modifierRows = std::to_array<ModifierRow>({
    {&KeyCombination::fn, eventFlag::secondaryFn},
    {&KeyCombination::control, eventFlag::control},
    {&KeyCombination::option, eventFlag::option},
    {&KeyCombination::shift, eventFlag::shift},
    {&KeyCombination::command, eventFlag::command},
});

// On these keys the flag of the function key stands in every event and is no sign of its being held.
constexpr auto keysThatCarryFn = std::to_array<Key>({
    Key::downArrow,
    Key::end,
    Key::home,
    Key::keypadEnter,
    Key::leftArrow,
    Key::pageDown,
    Key::pageUp,
    Key::rightArrow,
    Key::upArrow,
});

bool carriesFn(Key key) {
    return std::find(keysThatCarryFn.begin(), keysThatCarryFn.end(), key) != keysThatCarryFn.end();
}

}  // namespace

std::optional<KeyCombination> KeyCombinationAdaptor::fromCGEvent(const KeyEvent& event, const Sauce& sauce) {
    const auto key = sauce.keyForKeyCode(event.keyCode);
    if (!key) return std::nullopt;
    const auto has = [&](std::uint64_t flag) { return (event.flags & flag) != 0; };
    return KeyCombination(
        *key,
        {.fn = !carriesFn(*key) && has(eventFlag::secondaryFn),
         .control = has(eventFlag::control),
         .option = has(eventFlag::option),
         .shift = has(eventFlag::shift),
         .command = has(eventFlag::command)},
        event.type == KeyEventType::keyDown ? KeyCombinationAction::press : KeyCombinationAction::release);
}

std::vector<KeyEvent> KeyCombinationAdaptor::toCGEvents(const KeyCombination& keyCombination, const Sauce& sauce) {
    std::vector<KeyEvent> events;
    if (keyCombination.action != KeyCombinationAction::release)
        events.push_back(toCGEvent(keyCombination, KeyEventType::keyDown, sauce));
    if (keyCombination.action != KeyCombinationAction::press)
        events.push_back(toCGEvent(keyCombination, KeyEventType::keyUp, sauce));
    return events;
}

KeyEvent KeyCombinationAdaptor::toCGEvent(const KeyCombination& keyCombination, KeyEventType type, const Sauce& sauce) {
    KeyEvent event{type, sauce.keyCodeForKey(keyCombination.key()), 0};
    for (const ModifierRow& modifier : modifierRows) {
        if (keyCombination.*modifier.field) event.flags |= modifier.flag;
    }
    return event;
}

}  // namespace tarvix
