#include "linux/atspi/Popups.h"

#include <algorithm>

namespace tarvix::atspi {

namespace {

bool holds(AxRect outer, AxRect inner) {
    return inner.minX() >= outer.minX() && inner.minY() >= outer.minY() && inner.maxX() <= outer.maxX() &&
           inner.maxY() <= outer.maxY();
}

}  // namespace

// A frame of Qt without a title is no window but a line around something.
bool isSurface(const Node& node) {
    const Role role = node.role;
    if (role == Role::frame) return node.parent < 0 || !node.name.empty();
    return role == Role::window || role == Role::dialog || role == Role::popupMenu || role == Role::menu ||
           role == Role::toolTip || role == Role::alert;
}

// GTK 4.8 names its widgets by their types.
bool isPopover(Toolkit toolkit, const Node& node) {
    return toolkit == Toolkit::gtk4 && (node.name == "GtkPopover" || node.name == "GtkPopoverMenu");
}

bool opensPopup(const Node& node) {
    return node.role == Role::menuItem || node.role == Role::menu ||
           (node.role == Role::comboBox && node.has(State::expanded));
}

// Nodes stand after their parents.
std::vector<bool> inPopups(const NodeTree& nodes, Toolkit toolkit) {
    std::vector<bool> inPopup(nodes.size());
    for (std::size_t i = 1; i < nodes.size(); ++i) {
        const Node& node = nodes[i];
        if (node.parent < 0 || node.inMenuBar) continue;
        const auto parent = static_cast<std::size_t>(node.parent);
        const bool isFrame = node.role == Role::frame && toolkit != Toolkit::qt;  // Qt has frames that are lines
        inPopup[i] =
            inPopup[parent] || opensPopup(nodes[parent]) || isFrame || isSurface(node) || isPopover(toolkit, node);
    }
    return inPopup;
}

bool hangsOut(const NodeTree& nodes, Toolkit toolkit, AxRect visible) {
    const std::vector<bool> inPopup = inPopups(nodes, toolkit);
    for (std::size_t i = 1; i < nodes.size(); ++i)
        if (inPopup[i] && nodes[i].shows && !holds(visible, nodes[i].frame)) return true;
    return false;
}

AxRect letHangOut(NodeTree& nodes, Toolkit toolkit, AxRect visible, const std::vector<AxRect>& popups) {
    const std::vector<bool> inPopup = inPopups(nodes, toolkit);
    AxRect reach = visible;
    for (std::size_t i = 1; i < nodes.size(); ++i) {
        Node& node = nodes[i];
        if (!node.shows || intersects(node.frame, visible)) continue;
        const auto window = std::ranges::find_if(popups, [&](AxRect popup) { return intersects(popup, node.frame); });
        if (inPopup[i] && window != popups.end())
            reach = unite(reach, *window);
        else
            node.shows = false;
    }
    return reach;
}

}  // namespace tarvix::atspi
