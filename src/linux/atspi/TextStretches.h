// The stretches of a text between the children that are embedded in it: "Read the [link] first" is two of them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarvix::atspi {

// Positions count characters of the whole text.
struct Stretch {
    std::string text;  // without blanks at its ends
    std::int32_t start = 0, end = 0;
    std::int32_t childrenBefore = 0;  // how many embedded children come before it
    bool touchesNext = false;         // without a blank between it and the next child
    friend bool operator==(const Stretch&, const Stretch&) = default;
};

// Those that say something: neither blanks nor ornaments alone. The bullet of a list's line, at the beginning of the
// text, is left out.
std::vector<Stretch> stretchesOf(std::string_view text);

// The text without its embedded children, a blank in the place of each.
std::string joined(const std::vector<Stretch>& stretches);

// A bullet or a separator between links says nothing that anybody searches for.
bool isOrnament(std::string_view text);
// Likewise, but signs that can be read aloud ("+", "?") are none: such a text may be all that there is on a button.
bool isBullet(std::string_view text);

}  // namespace tarvix::atspi
