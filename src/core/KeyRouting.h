// Which key does what while The Input is up.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "core/Preloading.h"
#include "core/TarvixEngineProtocol.h"
#include "display/TheInputProtocol.h"
#include "keys/KeyCombination.h"

namespace tarvix {

enum class KeyAction : std::uint8_t {
    nextTarget,
    previousTarget,
    lastTarget,
    firstTarget,
    halfwayDownTarget,
    halfwayUpTarget,
    click,
};

enum class After { goOn, close };

struct KeyActionRow {
    KeyAction action;
    After after;
    std::string_view help;  // what the key does, for the user
};

// In the order of the cases.
inline constexpr auto keyActions = std::to_array<KeyActionRow>({
    {KeyAction::nextTarget, After::goOn, "to the next Target"},
    {KeyAction::previousTarget, After::goOn, "to the previous Target"},
    {KeyAction::lastTarget, After::goOn, "to the last Target"},
    {KeyAction::firstTarget, After::goOn, "to the first Target"},
    {KeyAction::halfwayDownTarget, After::goOn, "to the Target halfway down, then to the last one"},
    {KeyAction::halfwayUpTarget, After::goOn, "to the Target halfway up, then to the first one"},
    {KeyAction::click, After::close, "click the Primary Target, with an empty search at the pointer"},
});

struct KeyRoute {
    KeyCombination combination;
    KeyAction action;
};

// Every other key belongs to the text field; escape reaches the panel there, which closes. A modifier that isn't named
// must be off. The modifiers of a click stay on it: this is how one option-clicks, shift-clicks or command-clicks.
// clang-format off
inline constexpr auto keyRoutes = std::to_array<KeyRoute>({
    {{Key::downArrow},                     KeyAction::nextTarget},
    {{Key::tab},                           KeyAction::nextTarget},
    {{Key::n, {.control = true}},          KeyAction::nextTarget},
    {{Key::upArrow},                       KeyAction::previousTarget},
    {{Key::tab, {.shift = true}},          KeyAction::previousTarget},
    {{Key::p, {.control = true}},          KeyAction::previousTarget},
    {{Key::downArrow, {.command = true}},  KeyAction::lastTarget},
    {{Key::end},                           KeyAction::lastTarget},
    {{Key::upArrow, {.command = true}},    KeyAction::firstTarget},
    {{Key::home},                          KeyAction::firstTarget},
    {{Key::downArrow, {.control = true}},  KeyAction::halfwayDownTarget},
    {{Key::pageDown},                      KeyAction::halfwayDownTarget},
    {{Key::upArrow, {.control = true}},    KeyAction::halfwayUpTarget},
    {{Key::pageUp},                        KeyAction::halfwayUpTarget},
    {{Key::return_},                       KeyAction::click},
    {{Key::return_, {.option = true}},     KeyAction::click},
    {{Key::return_, {.shift = true}},      KeyAction::click},
    {{Key::return_, {.command = true}},    KeyAction::click},
});
// clang-format on

template <std::size_t Count>
constexpr bool everyCombinationOnce(const std::array<KeyRoute, Count>& routes) {
    for (std::size_t i = 0; i < Count; ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (routes[i].combination == routes[j].combination) return false;
    return true;
}
static_assert(everyCombinationOnce(keyRoutes));
static_assert([] {
    for (std::size_t i = 0; i < keyActions.size(); ++i)
        if (keyActions[i].action != static_cast<KeyAction>(i)) return false;
    return true;
}());

// Does what the table says and tells whether the key is consumed; the action comes before the closing. Main thread.
bool handleKey(const KeyCombination& keyCombination, TarvixEngineProtocol& engine, TheInputProtocol& theInput,
               Preloading& preloading);

}  // namespace tarvix
