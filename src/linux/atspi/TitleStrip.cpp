#include "linux/atspi/TitleStrip.h"

#include <algorithm>

namespace tarvix::atspi {

std::optional<AxRect> titleStrip(const NodeTree& tree, int index) {
    const Node& node = tree[static_cast<std::size_t>(index)];
    const bool isDock = node.role == Role::frame;
    if (index == 0 || node.name.empty() || (!isDock && node.role != Role::panel)) return std::nullopt;
    double bottom = node.frame.maxY();
    for (const int each : node.children) {
        const Node& child = tree[static_cast<std::size_t>(each)];
        // The buttons that close and detach a dock are beside its title.
        if (child.shows && !(isDock && child.role == Role::pushButton)) bottom = std::min(bottom, child.frame.minY());
    }
    // What has drawn its title bar itself has it among what it holds.
    if (bottom - node.frame.minY() < 4) return std::nullopt;
    return AxRect{node.frame.origin, {node.frame.size.width, bottom - node.frame.minY()}};
}

}  // namespace tarvix::atspi
