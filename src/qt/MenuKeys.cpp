#include "qt/MenuKeys.h"

#include <xkbcommon/xkbcommon.h>

#include <QString>
#include <array>

namespace tarvix {

namespace {

struct MenuModifier {
    std::uint64_t flag;
    Qt::KeyboardModifier modifier;
    const char* name;
};

// Command is the key with the desktop's sign on it.
constexpr std::array kModifiers{
    MenuModifier{eventFlag::control, Qt::ControlModifier, "Control"},
    MenuModifier{eventFlag::option, Qt::AltModifier, "Alt"},
    MenuModifier{eventFlag::shift, Qt::ShiftModifier, "Shift"},
    MenuModifier{eventFlag::command, Qt::MetaModifier, "Super"},
};

// The character that the key types without Shift; 0 where the entry has no key.
char32_t keyOf(const MenuItem& item) {
    const auto text = QString::fromStdString(item.keyEquivalent).toLower().toUcs4();
    return text.size() == 1 ? text.front() : 0;
}

std::uint64_t modifiersOf(const MenuItem& item) {
    const QString text = QString::fromStdString(item.keyEquivalent);
    return item.keyEquivalentModifierMask | (text == text.toLower() ? 0 : eventFlag::shift);
}

}  // namespace

QKeySequence keySequenceOf(const MenuItem& item) {
    const char32_t key = keyOf(item);
    if (key == 0) return {};
    Qt::KeyboardModifiers held;
    for (const MenuModifier& each : kModifiers)
        if (modifiersOf(item) & each.flag) held |= each.modifier;
    return QKeyCombination(held, static_cast<Qt::Key>(QChar::toUpper(key)));
}

QStringList keyNamesOf(const MenuItem& item) {
    const char32_t key = keyOf(item);
    if (key == 0) return {};
    QStringList names;
    for (const MenuModifier& each : kModifiers)
        if (modifiersOf(item) & each.flag) names << each.name;
    std::array<char, 64> name{};
    if (xkb_keysym_get_name(xkb_utf32_to_keysym(key), name.data(), name.size()) <= 0) return {};
    return names << name.data();
}

}  // namespace tarvix
