#include "linux/x11/X11Modifiers.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "platform/Modifiers.h"

namespace tarvix {

namespace {

constexpr xcb_keysym_t kNumLock = 0xff7f;
constexpr xcb_keysym_t kAltL = 0xffe9, kAltR = 0xffea;
constexpr xcb_keysym_t kSuperL = 0xffeb, kSuperR = 0xffec;

struct Meaning {
    std::uint8_t X11Modifiers::*bit;
    std::uint64_t eventFlag;
    std::uint32_t carbon;
};
constexpr std::array<Meaning, 4> kMeanings{{
    {&X11Modifiers::shift, eventFlag::shift, carbonModifier::shift},
    {&X11Modifiers::control, eventFlag::control, carbonModifier::control},
    {&X11Modifiers::option, eventFlag::option, carbonModifier::option},
    {&X11Modifiers::command, eventFlag::command, carbonModifier::command},
}};

}  // namespace

X11Modifiers X11Modifiers::read(X11Connection& connection) {
    xcb_connection_t* c = connection.get();
    const auto* setup = xcb_get_setup(c);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto mapAsked = xcb_get_modifier_mapping(c);
    const auto symbolsAsked = xcb_get_keyboard_mapping(c, setup->min_keycode, count);
    const auto map = connection.reply<xcb_get_modifier_mapping_reply>(mapAsked);
    const auto symbols = connection.reply<xcb_get_keyboard_mapping_reply>(symbolsAsked);
    X11Modifiers modifiers;
    if (!map || !symbols) return modifiers;

    const auto symbolsOf = [&](std::uint8_t keycode) {
        return std::span(xcb_get_keyboard_mapping_keysyms(symbols.get()) +
                             std::ptrdiff_t{keycode - setup->min_keycode} * symbols->keysyms_per_keycode,
                         symbols->keysyms_per_keycode);
    };
    const auto sets = [&](std::uint8_t keycode, std::initializer_list<xcb_keysym_t> wanted) {
        const auto has = symbolsOf(keycode);
        return std::ranges::find_first_of(has, wanted) != has.end();
    };
    const auto isSilent = [&](std::uint8_t keycode) {
        return std::ranges::all_of(symbolsOf(keycode), [](xcb_keysym_t symbol) { return symbol == XCB_NO_SYMBOL; });
    };
    const xcb_keycode_t* keycodes = xcb_get_modifier_mapping_keycodes(map.get());
    for (std::size_t bit = 0; bit < 8; ++bit)
        for (std::size_t i = 0; i < map->keycodes_per_modifier; ++i) {
            const std::uint8_t keycode = keycodes[bit * map->keycodes_per_modifier + i];
            if (keycode >= setup->min_keycode) modifiers.keys[bit].push_back(keycode);
        }

    for (int keycode = setup->min_keycode; keycode <= setup->max_keycode && !modifiers.silentKey; ++keycode) {
        const auto code = static_cast<std::uint8_t>(keycode);
        if (isSilent(code) && modifiers.maskOfKey(code) == 0) modifiers.silentKey = code;
    }

    // The lowest bit with such a key on it; Shift, Lock and Control have fixed bits.
    const auto find = [&](std::uint8_t& into, std::initializer_list<xcb_keysym_t> wanted) {
        for (std::size_t bit = 3; bit < 8; ++bit)
            for (const std::uint8_t keycode : modifiers.keys[bit])
                if (sets(keycode, wanted)) {
                    into = static_cast<std::uint8_t>(1u << bit);
                    return;
                }
    };
    find(modifiers.numLock, {kNumLock});
    find(modifiers.option, {kAltL, kAltR});
    find(modifiers.command, {kSuperL, kSuperR});
    return modifiers;
}

std::uint8_t X11Modifiers::maskOfKey(std::uint8_t keycode) const {
    unsigned mask = 0;
    for (unsigned bit = 0; bit < keys.size(); ++bit)
        if (std::ranges::count(keys[bit], keycode) > 0) mask |= 1u << bit;
    return static_cast<std::uint8_t>(mask);
}

std::optional<std::uint8_t> X11Modifiers::keyOf(std::uint8_t bit) const {
    for (std::size_t i = 0; i < keys.size(); ++i)
        if (bit == 1u << i && !keys[i].empty()) return keys[i].front();
    return std::nullopt;
}

std::uint64_t X11Modifiers::eventFlags(std::uint32_t mask) const {
    std::uint64_t flags = 0;
    for (const Meaning& m : kMeanings)
        if ((mask & this->*m.bit) != 0) flags |= m.eventFlag;
    return flags;
}

std::uint8_t X11Modifiers::maskOfEventFlags(std::uint64_t flags) const {
    std::uint8_t mask = 0;
    for (const Meaning& m : kMeanings)
        if ((flags & m.eventFlag) != 0) mask |= this->*m.bit;
    return mask;
}

std::uint8_t X11Modifiers::maskOfCarbon(std::uint32_t carbon) const {
    std::uint8_t mask = 0;
    for (const Meaning& m : kMeanings)
        if ((carbon & m.carbon) != 0) mask |= this->*m.bit;
    return mask;
}

}  // namespace tarvix
