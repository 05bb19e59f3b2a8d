#include "linux/x11/X11StackKeeper.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <utility>

#include "linux/x11/X11WindowTree.h"

namespace tarvix {

using Handled = X11Connection::Handled;

namespace {

constexpr int kMostTimes = 20;

constexpr std::array<int, 5> kChangesOfTheStack{XCB_MAP_NOTIFY, XCB_UNMAP_NOTIFY, XCB_REPARENT_NOTIFY,
                                                XCB_CONFIGURE_NOTIFY, XCB_CIRCULATE_NOTIFY};

struct Box {
    int left = 0, top = 0, right = 0, bottom = 0;
    bool overlaps(const Box& other) const {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
};

// The boxes of those windows of the root that show something.
std::vector<Box> shownBoxes(X11Connection& x, const std::vector<xcb_window_t>& windows) {
    std::vector<std::pair<xcb_get_window_attributes_cookie_t, xcb_get_geometry_cookie_t>> asked;
    asked.reserve(windows.size());
    for (const xcb_window_t window : windows)
        asked.emplace_back(xcb_get_window_attributes(x.get(), window), xcb_get_geometry(x.get(), window));
    std::vector<Box> boxes;
    for (const auto& [attributesAsked, geometryAsked] : asked) {
        const auto attributes = x.reply<xcb_get_window_attributes_reply>(attributesAsked);
        const auto place = x.reply<xcb_get_geometry_reply>(geometryAsked);
        if (!attributes || !place || attributes->map_state != XCB_MAP_STATE_VIEWABLE) continue;
        if (attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY) continue;
        const int border = 2 * place->border_width;
        boxes.push_back({place->x, place->y, place->x + place->width + border, place->y + place->height + border});
    }
    return boxes;
}

}  // namespace

X11StackKeeper::X11StackKeeper(X11Connection& connection) : x_(connection), stacking_(connection) {
    events_ = x_.onEvent([this](const xcb_generic_event_t& event) {
        if (isWatching_ && std::ranges::count(kChangesOfTheStack, event.response_type & 0x7f) > 0) lookLater();
        return Handled::no;
    });
}

X11StackKeeper::~X11StackKeeper() {
    top_.clear();
    below_.reset();
    watch();
}

void X11StackKeeper::keepOnTop(xcb_window_t window) {
    std::erase(top_, window);
    top_.push_back(window);
    watch();
    stacking_.stackOnTop(window);
}

void X11StackKeeper::keepUnderThose(xcb_window_t window) {
    std::erase(top_, window);
    top_.insert(top_.begin(), window);
    watch();
    raiseTop();
}

void X11StackKeeper::keepBelow(xcb_window_t window, xcb_window_t sibling, X11Stacking::By by) {
    std::erase(top_, window);
    below_ = {window, sibling, by};
    watch();
    stacking_.stackBelow(window, sibling, by);
}

void X11StackKeeper::letGo(xcb_window_t window) {
    std::erase(top_, window);
    if (below_ && below_->window == window) below_.reset();
    watch();
}

// The server tells of every window that moves anywhere, so it is asked only while there is something to keep.
void X11StackKeeper::watch() {
    const bool wanted = !top_.empty() || below_;
    if (wanted == isWatching_) return;
    isWatching_ = wanted;
    timesRaised_ = timesLowered_ = 0;
    if (wanted) {
        x_.selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    } else {
        x_.deselectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
        looking_.reset();
    }
    x_.flush();
}

void X11StackKeeper::lookLater() {
    if (looking_) return;
    looking_ = x_.after(std::chrono::milliseconds(0), [this] {
        looking_.reset();
        look();
    });
}

void X11StackKeeper::look() {
    const auto stack = rootStack(x_);
    forgetUnmapped();
    lookAtTop(stack);
    lookBelow(stack);
    watch();
}

void X11StackKeeper::forgetUnmapped() {
    std::vector<xcb_get_window_attributes_cookie_t> asked;
    asked.reserve(top_.size());
    for (const xcb_window_t window : top_) asked.push_back(xcb_get_window_attributes(x_.get(), window));
    std::vector<xcb_window_t> mapped;
    for (std::size_t i = 0; i < asked.size(); ++i) {
        const auto answer = x_.reply<xcb_get_window_attributes_reply>(asked[i]);
        if (answer && answer->map_state != XCB_MAP_STATE_UNMAPPED) mapped.push_back(top_[i]);
    }
    top_ = std::move(mapped);
}

void X11StackKeeper::lookAtTop(const std::vector<xcb_window_t>& stack) {
    if (timesRaised_ == kMostTimes) return;
    const auto isKept = [&](xcb_window_t window) { return std::ranges::count(top_, window) > 0; };
    std::vector<xcb_window_t> over;
    std::copy_if(std::ranges::find_if(stack, isKept), stack.end(), std::back_inserter(over),
                 [&](xcb_window_t window) { return !isOurs(window); });
    if (!anyCovers(over, top_)) return;
    ++timesRaised_;
    raiseTop();
}

void X11StackKeeper::lookBelow(const std::vector<xcb_window_t>& stack) {
    if (!below_ || timesLowered_ == kMostTimes) return;
    const auto tops = childrenOfRoot(x_, {below_->window, below_->sibling});
    const auto own = std::ranges::find(stack, tops[0]), sibling = std::ranges::find(stack, tops[1]);
    if (own == stack.end() || sibling == stack.end()) return;
    std::vector<xcb_window_t> between;
    std::copy_if(std::min(own, sibling) + 1, std::max(own, sibling), std::back_inserter(between),
                 [&](xcb_window_t window) { return !isOurs(window); });
    if (own < sibling && !anyCovers(between, {tops[0]})) return;
    ++timesLowered_;
    stacking_.stackBelow(below_->window, below_->sibling, below_->by);
}

void X11StackKeeper::raiseTop() {
    for (const xcb_window_t window : top_) stacking_.stackOnTop(window);
}

// The panels are made by another connection of ours, all of them by the same.
bool X11StackKeeper::isOurs(xcb_window_t window) const {
    const std::uint32_t own = xcb_get_setup(x_.get())->resource_id_mask;
    const auto isOfTheSame = [&](xcb_window_t other) { return (window & ~own) == (other & ~own); };
    return (window & ~own) == xcb_get_setup(x_.get())->resource_id_base || std::ranges::any_of(top_, isOfTheSame);
}

bool X11StackKeeper::anyCovers(const std::vector<xcb_window_t>& windows, const std::vector<xcb_window_t>& covered) {
    if (windows.empty() || covered.empty()) return false;
    const auto boxes = shownBoxes(x_, windows), coveredBoxes = shownBoxes(x_, covered);
    return std::ranges::any_of(boxes, [&](const Box& box) {
        return std::ranges::any_of(coveredBoxes, [&](const Box& other) { return box.overlaps(other); });
    });
}

}  // namespace tarvix
