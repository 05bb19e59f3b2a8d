#include "linux/atspi/MenuBar.h"

#include <vector>

#include "linux/atspi/Popups.h"

namespace tarvix::atspi {

// LibreOffice has a second menu bar with the same menus, without any height; a web page may have one of its own, which
// is not that of its window; and Chromium calls an open menu a bar.
std::optional<int> menuBarIn(const NodeTree& nodes, Toolkit toolkit) {
    const std::vector<bool> inPopup = inPopups(nodes, toolkit);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const Node& node = nodes[i];
        if (node.role == Role::menuBar && node.shows && !node.inWebContent && node.frame.height() > 0 &&
            !node.children.empty() && !inPopup[i])
            return static_cast<int>(i);
    }
    return std::nullopt;
}

}  // namespace tarvix::atspi
