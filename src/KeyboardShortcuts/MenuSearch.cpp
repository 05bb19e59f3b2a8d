#include "KeyboardShortcuts/MenuSearch.h"

#include "base/Text.h"
#include "platform/Modifiers.h"

namespace tarvix {

namespace {

bool hasShortcut(const MenuItem& item, std::uint64_t flags, const std::string& keyText) {
    std::string equivalent = item.keyEquivalent;
    std::uint64_t mask = item.keyEquivalentModifierMask;
    // A menu may say Shift by a capital.
    if (flags & eventFlag::shift) {
        if (std::string small = lower(equivalent); small != equivalent) {
            equivalent = std::move(small);
            mask |= eventFlag::shift;
        }
    }
    return keyText == equivalent && flags == mask;
}

}  // namespace

const MenuItem* itemWithShortcut(const Menu& menu, const Shortcut& shortcut,
                                 const std::optional<std::string>& keyText) {
    if (!keyText) return nullptr;
    const std::uint64_t flags = ModifierTransformer::eventFlags(shortcut.carbonModifiers);
    for (const MenuItem& item : menu) {
        if (hasShortcut(item, flags, *keyText)) return &item;
        if (const MenuItem* found = itemWithShortcut(item.submenu, shortcut, keyText)) return found;
    }
    return nullptr;
}

}  // namespace tarvix
