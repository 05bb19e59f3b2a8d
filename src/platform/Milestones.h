// Moments of a search, for the player that measures it; nothing in the system depends on them.
#pragma once

#include <cstddef>
#include <string_view>

namespace tarvix {

class Milestones {
public:
    virtual ~Milestones() = default;
    // `count` is the number of things that the moment is about, 0 where there is none to count. Any thread, cheap.
    virtual void reached(std::string_view moment, std::size_t count) = 0;
};

namespace milestone {
inline constexpr std::string_view ready = "ready";  // the hot key is registered
inline constexpr std::string_view hotKeyPressed = "hot key pressed";
inline constexpr std::string_view inputShown = "The Input shown";      // painted and with the keyboard
inline constexpr std::string_view candidatesRead = "candidates read";  // and a key finds them; count: candidates
inline constexpr std::string_view textChanged = "text changed";
inline constexpr std::string_view markersDrawn = "markers drawn";                     // painted; count: markers
inline constexpr std::string_view inspectorMarkerDrawn = "inspector's marker drawn";  // painted; count: markers, 1 or 0
inline constexpr std::string_view inspectorShown = "inspector shown";                 // painted
inline constexpr std::string_view actionPosted = "action posted";
inline constexpr std::string_view inputHidden = "The Input hidden";
}  // namespace milestone

}  // namespace tarvix
