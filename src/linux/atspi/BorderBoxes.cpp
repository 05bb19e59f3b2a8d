#include "linux/atspi/BorderBoxes.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>
#include <vector>

#include "linux/atspi/Replies.h"

namespace tarvix::atspi {

namespace {

constexpr std::int32_t kWidest = 31;  // no theme pads a control more
constexpr std::size_t kMostKnown = 5'000;

bool hasBorder(Role role) {
    switch (role) {
        case Role::pushButton:
        case Role::toggleButton:
        case Role::switchButton:
        case Role::checkBox:
        case Role::entry:
        case Role::text:
        case Role::passwordText:
        case Role::spinButton:
        case Role::link:
        case Role::pageTab:
        case Role::listItem:
        case Role::slider:
            return true;
        default:
            return false;
    }
}

struct Side {
    std::int32_t Padding::*of;
    int dx, dy;
};
constexpr auto kSides = std::to_array<Side>(
    {{&Padding::left, -1, 0}, {&Padding::right, 1, 0}, {&Padding::top, 0, -1}, {&Padding::bottom, 0, 1}});

// The search for one edge: how many pixels beyond the content still belong to the widget. low is known to, high not to.
struct Search {
    std::size_t node;
    const Side* side;
    std::int32_t low = 0, high = kWidest + 1;
    std::int32_t middle() const { return (low + high) / 2; }
    bool ended() const { return high - low <= 1; }
};

struct Spot {
    std::int32_t x, y;
};

// The point that lies `distance` beyond the middle of an edge of the content. The border box holds its edges, the right
// and the lower one too.
Spot spotAt(RawBox box, const Side& side, std::int32_t distance) {
    if (side.dx != 0) return {side.dx < 0 ? box.x - distance : box.x + box.width + distance, box.y + box.height / 2};
    return {box.x + box.width / 2, side.dy < 0 ? box.y - distance : box.y + box.height + distance};
}

void probe(Pipeline& pipeline, const NodeTree& tree, Search& search) {
    const Node& node = tree[search.node];
    const std::int32_t distance = search.middle();
    const Spot spot = spotAt(*node.raw, *search.side, distance);
    Call call;
    call.destination = node.reference.bus;
    call.path = tree.front().reference.path;
    call.interface = "org.a11y.atspi.Component";
    call.member = "GetAccessibleAtPoint";
    call.signature = "iiu";
    call.integers[0] = spot.x;
    call.integers[1] = spot.y;
    call.integers[2] = static_cast<std::int32_t>(Coordinates::window);
    pipeline.send(std::move(call), [&search, &node, distance](sd_bus_message* reply) {
        const std::optional<Reference> hit = readReference(reply);
        (hit && *hit == node.reference ? search.low : search.high) = distance;
    });
}

// An edge that two widgets share is hit in one of them only. And a switch is round at its ends, where the hit test
// misses the outermost point; its border is the same all around.
void evenOut(const Node& node, Padding& padding) {
    if (std::abs(padding.left - padding.right) == 1)
        padding.left = padding.right = std::max(padding.left, padding.right);
    if (std::abs(padding.top - padding.bottom) == 1)
        padding.top = padding.bottom = std::max(padding.top, padding.bottom);
    if (node.role != Role::checkBox || !node.children.empty()) return;
    padding.left = padding.right = padding.top = padding.bottom =
        std::max({padding.left, padding.right, padding.top, padding.bottom});
}

// The hit test passes over insensitive controls. One is padded like a sensitive control of its role: best one beside
// it, of its height; `wanted` are the places of all controls.
const Padding* paddingLike(const NodeTree& tree, const Node& node, const std::vector<std::size_t>& wanted,
                           const Paddings& known) {
    const Padding* best = nullptr;
    int bestLikeness = -1;
    for (const std::size_t i : wanted) {
        const Node& other = tree[i];
        if (other.role != node.role || !other.has(State::sensitive)) continue;
        const auto found = known.find(other.reference.path);
        if (found == known.end()) continue;
        const int likeness = (other.parent == node.parent ? 4 : 0) + (found->second.width == node.raw->width ? 2 : 0) +
                             (found->second.height == node.raw->height ? 1 : 0);
        if (likeness <= bestLikeness) continue;
        bestLikeness = likeness;
        best = &found->second;
    }
    return best;
}

}  // namespace

void BorderBoxes::widen(Pipeline& pipeline, NodeTree& tree, Paddings& known) {
    if (known.size() > kMostKnown) known.clear();
    std::vector<std::size_t> wanted;
    std::vector<Search> searches;
    for (std::size_t i = 1; i < tree.size(); ++i) {
        const Node& node = tree[i];
        if (!node.shows || !node.raw || node.raw->width <= 0 || node.raw->height <= 0 || !hasBorder(node.role))
            continue;
        wanted.push_back(i);
        const auto found = known.find(node.reference.path);
        const bool isKnown =
            found != known.end() && found->second.width == node.raw->width && found->second.height == node.raw->height;
        if (isKnown || !node.has(State::sensitive)) continue;
        for (const Side& side : kSides) searches.push_back({i, &side});
    }
    while (std::any_of(searches.begin(), searches.end(), [](const Search& s) { return !s.ended(); })) {
        for (Search& search : searches)
            if (!search.ended()) probe(pipeline, tree, search);
        pipeline.run();
        if (pipeline.timedOut() || pipeline.lost()) return;
    }
    for (const Search& search : searches) {
        const Node& node = tree[search.node];
        Padding& padding = known[node.reference.path];
        padding.width = node.raw->width;
        padding.height = node.raw->height;
        padding.*search.side->of = search.low;
    }
    for (const Search& search : searches) evenOut(tree[search.node], known[tree[search.node].reference.path]);
    std::vector<std::pair<std::size_t, Padding>> paddings;
    for (const std::size_t i : wanted) {
        const Node& node = tree[i];
        const auto found = known.find(node.reference.path);
        const Padding* padding = node.has(State::sensitive) && found != known.end()
                                     ? &found->second
                                     : paddingLike(tree, node, wanted, known);
        if (padding) paddings.emplace_back(i, *padding);
    }
    for (const auto& [i, padding] : paddings) {
        RawBox& box = *tree[i].raw;
        box.x -= padding.left;
        box.y -= padding.top;
        box.width += padding.left + padding.right;
        box.height += padding.top + padding.bottom;
    }
}

}  // namespace tarvix::atspi
