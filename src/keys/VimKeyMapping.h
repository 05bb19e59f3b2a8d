// The two mappings between physical keys with modifiers and logical keys.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

#include "keys/Key.h"
#include "keys/VimKey.h"

namespace tarvix {

// What one key gives with no modifier, with shift alone and with control alone. A key without a row gives nothing.
struct VimKeyRow {
    Key key;
    std::optional<VimKey> plain = std::nullopt;
    std::optional<VimKey> shift = std::nullopt;
    std::optional<VimKey> control = std::nullopt;
};

inline constexpr auto vimKeyRows = [] {
    using V = VimKey;
    constexpr std::nullopt_t none = std::nullopt;
    // clang-format off
    return std::to_array<VimKeyRow>({
        {Key::a, V::a, V::A},
        {Key::s, V::s, V::S},
        {Key::d, V::d, V::D, V::controlD},
        {Key::f, V::f, V::F, V::controlF},
        {Key::h, V::h, V::H, V::controlH},
        {Key::g, V::g, V::G},
        {Key::z, V::z, V::Z},
        {Key::x, V::x, V::X},
        {Key::c, V::c, V::C},
        {Key::v, V::v, V::V},
        {Key::b, V::b, V::B, V::controlB},
        {Key::q, V::q},
        {Key::w, V::w, V::W},
        {Key::e, V::e, V::E},
        {Key::r, V::r, V::R, V::controlR},
        {Key::y, V::y, V::Y},
        {Key::t, V::t, V::T},
        {Key::one, V::one, V::exclamationMark},
        {Key::two, V::two},
        {Key::three, V::three},
        {Key::four, V::four, V::dollarSign},
        {Key::six, V::six, V::caret},
        {Key::five, V::five, V::percent},
        {Key::equal, none, V::plus},
        {Key::nine, V::nine, V::leftParenthesis},
        {Key::seven, V::seven},
        {Key::minus, V::minus, V::underscore},
        {Key::eight, V::eight},
        {Key::zero, V::zero, V::rightParenthesis},
        {Key::rightBracket, V::rightBracket, V::rightBrace},
        {Key::o, V::o, V::O},
        {Key::u, V::u, V::U, V::controlU},
        {Key::leftBracket, V::leftBracket, V::leftBrace, V::controlLeftBracket},
        {Key::i, V::i, V::I},
        {Key::p, V::p, V::P, V::controlP},
        {Key::l, V::l, V::L},
        {Key::j, V::j, V::J, V::controlJ},
        {Key::quote, V::singleQuote, V::doubleQuote},
        {Key::k, V::k},
        {Key::semicolon, V::semicolon, V::colon},
        {Key::comma, V::comma, V::leftChevron},
        {Key::slash, V::slash, V::interrogationMark},
        {Key::n, V::n, V::N, V::controlN},
        {Key::m, none, V::M, V::controlM},
        {Key::period, V::dot, V::rightChevron},
        {Key::grave, V::backtick, V::tilde},
        {Key::keypadEnter, V::enter},
        {Key::return_, V::return_},
        {Key::space, V::space},
        {Key::delete_, V::backspace},
        {Key::escape, V::escape},
        {Key::home, V::home},
        {Key::pageUp, V::pageUp},
        {Key::forwardDelete, V::delete_},
        {Key::end, V::end},
        {Key::pageDown, V::pageDown},
        {Key::leftArrow, V::leftArrow, V::shiftLeftArrow, V::controlLeftArrow},
        {Key::rightArrow, V::rightArrow, V::shiftRightArrow, V::controlRightArrow},
        {Key::downArrow, V::downArrow, V::shiftDownArrow},
        {Key::upArrow, V::upArrow, V::shiftUpArrow},
        {Key::caret, V::caret},
    });
    // clang-format on
}();

// The logical key of a key with modifiers. Option or command, and control together with shift, leave none.
constexpr std::optional<VimKey> vimKeyFor(Key key, bool control, bool option, bool shift, bool command) {
    if (option || command || (control && shift)) return std::nullopt;
    for (const VimKeyRow& row : vimKeyRows) {
        if (row.key == key) return control ? row.control : shift ? row.shift : row.plain;
    }
    return std::nullopt;
}

// Where a logical key stands on the keyboard.
struct VimKeyPlace {
    Key key;
    bool control = false;
    bool shift = false;
};

// The reverse: one place for each logical key. Of two (`caret` alone has two) the first row's counts, shift with `six`.
inline constexpr auto vimKeyPlaces = [] {
    std::array<std::optional<VimKeyPlace>, vimKeyCount> places;
    const auto put = [&](std::optional<VimKey> vimKey, VimKeyPlace place) {
        if (vimKey && !places[static_cast<std::size_t>(*vimKey)]) places[static_cast<std::size_t>(*vimKey)] = place;
    };
    for (const VimKeyRow& row : vimKeyRows) {
        put(row.plain, {row.key});
        put(row.shift, {row.key, false, true});
        put(row.control, {row.key, true, false});
    }
    return places;
}();
static_assert(std::all_of(vimKeyPlaces.begin(), vimKeyPlaces.end(),
                          [](const auto& place) { return place.has_value(); }));

constexpr VimKeyPlace vimKeyPlace(VimKey vimKey) { return *vimKeyPlaces[static_cast<std::size_t>(vimKey)]; }

}  // namespace tarvix
