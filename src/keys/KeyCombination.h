// One key press as the system speaks of it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "keys/VimKeyMapping.h"

namespace tarvix {

class Sauce;

enum class KeyCombinationAction : std::uint8_t { press, release, both };

struct KeyModifiers {
    bool fn = false;
    bool control = false;
    bool option = false;
    bool shift = false;
    bool command = false;
    friend constexpr bool operator==(KeyModifiers, KeyModifiers) = default;
};

// A key, its modifiers and what happens to it. The logical key is settled at construction: changing a modifier
// afterwards leaves it as it was.
class KeyCombination {
public:
    using Action = KeyCombinationAction;

    constexpr KeyCombination(Key key, KeyModifiers modifiers = {}, Action whatHappens = Action::both)
        : fn(modifiers.fn),
          control(modifiers.control),
          option(modifiers.option),
          shift(modifiers.shift),
          command(modifiers.command),
          action(whatHappens),
          vimKey_(vimKeyFor(key, control, option, shift, command)),
          key_(key) {}
    constexpr KeyCombination(VimKey vimKey, Action whatHappens = Action::both)
        : control(vimKeyPlace(vimKey).control),
          shift(vimKeyPlace(vimKey).shift),
          action(whatHappens),
          vimKey_(vimKey),
          key_(vimKeyPlace(vimKey).key) {}

    // Absent where the key and modifiers form no logical key.
    constexpr std::optional<VimKey> vimKey() const { return vimKey_; }
    // The physical key, as the current layout names it.
    constexpr Key key() const { return key_; }
    constexpr bool hasNonShiftModifiers() const { return fn || control || option || command; }
    // What the combination types on the current layout, Shift apart without regard to its modifiers: one character, "?"
    // where it types none. A dead key is its own sign. Main thread.
    std::string character(const Sauce& sauce) const;

    // The action doesn't count, so that a press from the keyboard equals a template that is `both`.
    friend constexpr bool operator==(const KeyCombination& a, const KeyCombination& b) {
        return a.vimKey_ == b.vimKey_ && a.key_ == b.key_ && a.modifiers() == b.modifiers();
    }

    bool fn = false;
    bool control = false;
    bool option = false;
    bool shift = false;
    bool command = false;
    Action action = Action::both;

private:
    constexpr KeyModifiers modifiers() const { return {fn, control, option, shift, command}; }

    std::optional<VimKey> vimKey_;
    Key key_;
};

}  // namespace tarvix
