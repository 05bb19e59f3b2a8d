#include "linux/atspi/MenuBar.h"

#include <algorithm>

namespace tarvix::atspi {

// LibreOffice has a second menu bar with the same menus, without any height; a web page may have one of its own, which
// is not that of its window.
std::optional<int> menuBarIn(const NodeTree& nodes) {
    const auto found = std::ranges::find_if(nodes, [](const Node& node) {
        return node.role == Role::menuBar && node.shows && !node.inWebContent && node.frame.height() > 0 &&
               !node.children.empty();
    });
    if (found == nodes.end()) return std::nullopt;
    return static_cast<int>(found - nodes.begin());
}

}  // namespace tarvix::atspi
