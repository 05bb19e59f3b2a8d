// One accessible object as it was fetched.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/Geometry.h"
#include "linux/atspi/TextStretches.h"
#include "linux/atspi/Vocabulary.h"

namespace tarvix::atspi {

// Where an object lives: its application's bus name and its path there.
struct Reference {
    std::string bus, path;
    friend bool operator==(const Reference&, const Reference&) = default;
};

enum class Toolkit : std::uint8_t { gtk3, gtk4, qt, chromium, gecko, libreOffice, clutter, java, other };

// A box as the toolkit reports it, in its own units and relative to its own origin.
struct RawBox {
    std::int32_t x = 0, y = 0, width = 0, height = 0;
    friend bool operator==(RawBox, RawBox) = default;
};

// Text of an object's own, where it is known to stand.
struct OwnText {
    Stretch stretch;
    std::optional<AxRect> box;
};

// Everything that the system asks of an object. What a toolkit doesn't offer stays empty.
struct Node {
    Reference reference;
    int parent = -1;            // index in the tree, -1 for the window
    std::vector<int> children;  // those that show, in the application's order; indices
    Role role = Role::invalid;
    std::uint64_t states = 0;
    std::uint32_t interfaces = 0;
    std::int32_t childCount = 0;
    std::string name, description, text, identifier, uri, roleWord;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::optional<double> value;
    std::string valueText;
    std::optional<RawBox> raw;
    std::vector<OwnText> ownTexts;  // where its toolkit has no objects for them
    AxRect frame;                   // root pixels, clipped to what scrolling leaves of it
    bool shows = false;             // it is on the screen, as far as its toolkit tells
    bool inWebContent = false;
    bool inTitleBar = false;  // at the top of its window, where a client draws its own title bar
    bool inMenuBar = false;   // directly in a menu bar
    bool synthetic = false;   // the text of an element that has no child to carry it; reference is the element's

    bool has(State state) const { return (states >> static_cast<unsigned>(state) & 1U) != 0; }
    bool offers(std::uint32_t wanted) const { return (interfaces & wanted) != 0; }
    const std::string* attribute(std::string_view key) const {
        for (const auto& [name_, value_] : attributes)
            if (name_ == key) return &value_;
        return nullptr;
    }
};

// Index 0 is the window. A deque, since indices and references must survive growth while replies come in.
using NodeTree = std::deque<Node>;

}  // namespace tarvix::atspi
