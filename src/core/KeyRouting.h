// Which key does what while The Input is up.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "core/Preloading.h"
#include "core/TarvixEngineProtocol.h"
#include "display/TheInputProtocol.h"
#include "keys/KeyCombination.h"
#include "platform/Platform.h"
#include "shell/Setting.h"

namespace tarvix {

enum class KeyAction : std::uint8_t {
    nextTarget,
    previousTarget,
    lastTarget,
    firstTarget,
    halfwayDownTarget,
    halfwayUpTarget,
    click,
    rightClick,
    moveMouse,
    doubleClick,
    copyText,
    copyMetadata,
    showSettings,
    nothing,
    copyTargetsDescription,
};

enum class After { goOn, close };

// What the user has to allow, so that the keys aren't the text field's.
enum class Gate { open, allowCopyingOfTextAndMetadata };

struct KeyActionRow {
    KeyAction action;
    After after;
    std::string_view help;  // what the key does, for the user
    Gate gate = Gate::open;
};

// In the order of the cases.
// clang-format off
inline constexpr auto keyActions = std::to_array<KeyActionRow>({
    {KeyAction::nextTarget,             After::goOn,  "to the next Target"},
    {KeyAction::previousTarget,         After::goOn,  "to the previous Target"},
    {KeyAction::lastTarget,             After::goOn,  "to the last Target"},
    {KeyAction::firstTarget,            After::goOn,  "to the first Target"},
    {KeyAction::halfwayDownTarget,      After::goOn,  "to the Target halfway down, then to the last one"},
    {KeyAction::halfwayUpTarget,        After::goOn,  "to the Target halfway up, then to the first one"},
    {KeyAction::click,                  After::close, "click the Primary Target, with an empty search at the pointer; "
                                                      "Alt, Shift or Super stays held for the click"},
    {KeyAction::rightClick,             After::close, "right-click it, or at the pointer"},
    {KeyAction::moveMouse,              After::close, "move the pointer to it, and no more"},
    {KeyAction::doubleClick,            After::close, "double-click it, or at the pointer"},
    {KeyAction::copyText,               After::close, "copy its text, if the settings allow it",
                                                      Gate::allowCopyingOfTextAndMetadata},
    {KeyAction::copyMetadata,           After::close, "copy what is behind it, if the settings allow it: the address "
                                                      "of a link, the state of a check box",
                                                      Gate::allowCopyingOfTextAndMetadata},
    {KeyAction::showSettings,           After::close, "show the settings"},
    {KeyAction::nothing,                After::goOn,  "nothing: a search doesn't quit a program"},
    {KeyAction::copyTargetsDescription, After::goOn,  "copy all that is known of the Targets, for a developer"},
});
// clang-format on

struct KeyRoute {
    KeyCombination combination;
    KeyAction action;
};

// Every other key belongs to the text field; escape reaches the panel there, which closes. A modifier that isn't named
// must be off. The modifiers of a click stay on it: this is how one option-clicks, shift-clicks or command-clicks.
// clang-format off
inline constexpr auto keyRoutes = std::to_array<KeyRoute>({
    {{Key::downArrow},                                                        KeyAction::nextTarget},
    {{Key::tab},                                                              KeyAction::nextTarget},
    {{Key::n, {.control = true}},                                             KeyAction::nextTarget},
    {{Key::upArrow},                                                          KeyAction::previousTarget},
    {{Key::tab, {.shift = true}},                                             KeyAction::previousTarget},
    {{Key::p, {.control = true}},                                             KeyAction::previousTarget},
    {{Key::end},                                                              KeyAction::lastTarget},
    {{Key::downArrow, {.command = true}},                                     KeyAction::lastTarget},
    {{Key::home},                                                             KeyAction::firstTarget},
    {{Key::upArrow, {.command = true}},                                       KeyAction::firstTarget},
    {{Key::pageDown},                                                         KeyAction::halfwayDownTarget},
    {{Key::downArrow, {.control = true}},                                     KeyAction::halfwayDownTarget},
    {{Key::pageUp},                                                           KeyAction::halfwayUpTarget},
    {{Key::upArrow, {.control = true}},                                       KeyAction::halfwayUpTarget},
    {{Key::return_},                                                          KeyAction::click},
    {{Key::return_, {.option = true}},                                        KeyAction::click},
    {{Key::return_, {.shift = true}},                                         KeyAction::click},
    {{Key::return_, {.command = true}},                                       KeyAction::click},
    {{Key::return_, {.control = true}},                                       KeyAction::rightClick},
    {{Key::return_, {.shift = true, .command = true}},                        KeyAction::moveMouse},
    {{Key::keypadEnter},                                                      KeyAction::doubleClick},
    {{Key::return_, {.control = true, .option = true, .command = true}},      KeyAction::doubleClick},
    {{Key::c, {.command = true}},                                             KeyAction::copyText},
    {{Key::c, {.control = true, .command = true}},                            KeyAction::copyMetadata},
    {{Key::c, {.option = true, .command = true}},                             KeyAction::copyMetadata},
    {{Key::c, {.shift = true, .command = true}},                              KeyAction::copyMetadata},
    {{Key::comma, {.command = true}},                                         KeyAction::showSettings},
    {{Key::q, {.command = true}},                                             KeyAction::nothing},
    {{Key::keypadEnter, {.control = true, .option = true, .command = true}},  KeyAction::copyTargetsDescription},
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

constexpr const KeyActionRow& rowOf(KeyAction action) { return keyActions[static_cast<std::size_t>(action)]; }
static_assert([] {
    for (std::size_t i = 0; i < keyActions.size(); ++i)
        if (keyActions[i].action != static_cast<KeyAction>(i)) return false;
    return true;
}());

// Main thread; what is given outlives it.
class KeyRouting {
public:
    KeyRouting(const Platform& platform, TarvixEngineProtocol& engine, TheInputProtocol& theInput,
               Preloading& preloading);

    // Does what the table says and tells whether the key is consumed; the action comes before the closing.
    bool handleKey(const KeyCombination& keyCombination);

private:
    bool isOpen(Gate gate) const;
    void perform(KeyAction action);
    // Nothing with an empty query.
    const AccessibilityElement* elementToCopy() const;

    Platform platform_;
    TarvixEngineProtocol& engine_;
    TheInputProtocol& theInput_;
    Preloading& preloading_;
    Setting<bool> allowCopyingOfTextAndMetadata_;
};

}  // namespace tarvix
