// The boxes that a person sees, where a toolkit reports smaller ones.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include "linux/atspi/Node.h"
#include "linux/atspi/Pipeline.h"

namespace tarvix::atspi {

// What a widget's style puts around its content, in the toolkit's units. Known for one size of the content: another
// size may mean another style.
struct Padding {
    std::int32_t width = 0, height = 0;
    std::int32_t left = 0, right = 0, top = 0, bottom = 0;
    friend bool operator==(const Padding&, const Padding&) = default;
};
using Paddings = std::unordered_map<std::string, Padding>;  // by object path

// GTK 4.8 reports the content box of a widget, without the padding and the border that its style draws around it, and
// has no call for those; but its hit test goes by the border box. So the edges are found by hit tests, a few for each
// edge and those of all widgets at once. What was found before (`known`) is not looked for again. Widens the raw boxes
// in the tree.
class BorderBoxes {
public:
    static void widen(Pipeline& pipeline, NodeTree& tree, Paddings& known);
};

}  // namespace tarvix::atspi
