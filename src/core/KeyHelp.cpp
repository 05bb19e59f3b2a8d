#include "core/KeyHelp.h"

#include <algorithm>
#include <array>

#include "core/KeyRouting.h"

namespace tarvix {

namespace {

struct NameRow {
    Key key;
    std::string_view name;
};

constexpr auto kNames = std::to_array<NameRow>({
    {Key::upArrow, "Up"},
    {Key::downArrow, "Down"},
    {Key::home, "Home"},
    {Key::end, "End"},
    {Key::pageUp, "Page Up"},
    {Key::pageDown, "Page Down"},
    {Key::tab, "Tab"},
    {Key::return_, "Return"},
    {Key::keypadEnter, "Keypad Enter"},
    {Key::comma, "Comma"},
    {Key::c, "C"},
    {Key::n, "N"},
    {Key::p, "P"},
    {Key::q, "Q"},
});

constexpr const NameRow* nameRow(Key key) {
    return std::find_if(kNames.begin(), kNames.end(), [&](const NameRow& row) { return row.key == key; });
}
static_assert(std::all_of(keyRoutes.begin(), keyRoutes.end(),
                          [](const KeyRoute& route) { return nameRow(route.combination.key()) != kNames.end(); }));

struct ModifierRow {
    bool KeyCombination::*isHeld;
    std::string_view label;
};

constexpr auto kModifiers = std::to_array<ModifierRow>({
    {&KeyCombination::control, "Ctrl+"},
    {&KeyCombination::option, "Alt+"},
    {&KeyCombination::shift, "Shift+"},
    {&KeyCombination::command, "Super+"},
});

std::string keysOf(KeyAction action) {
    std::string keys;
    for (const KeyRoute& route : keyRoutes) {
        if (route.action != action) continue;
        if (!keys.empty()) keys += ", ";
        keys += keyName(route.combination);
    }
    return keys;
}

}  // namespace

std::vector<KeyHelpRow> keyHelp() {
    std::vector<KeyHelpRow> rows;
    rows.reserve(keyActions.size());
    for (const KeyActionRow& row : keyActions) rows.push_back({keysOf(row.action), row.help});
    return rows;
}

std::string keyName(const KeyCombination& keyCombination) {
    std::string name;
    for (const ModifierRow& modifier : kModifiers)
        if (keyCombination.*modifier.isHeld) name += modifier.label;
    return name += nameRow(keyCombination.key())->name;
}

}  // namespace tarvix
