#include "linux/atspi/FrameMatching.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "linux/atspi/Placement.h"

namespace tarvix::atspi {

namespace {

constexpr double kRounding = 2;  // pixels
constexpr double kSmallestScale = 0.5, kLargestScale = 4;
// Below this, only what every frame has speaks for it.
constexpr int kEvidence = 4;

bool near(double a, double b, double tolerance = kRounding) { return std::abs(a - b) <= tolerance; }

// What toolkits call their window: with the shadow that they draw, without it, or with the manager's decoration.
std::array<AxRect, 3> outlinesOf(const X11Window& window) {
    const X11Window::Extents frame = window.frameExtents.value_or(X11Window::Extents{});
    const AxRect& client = window.client;
    return {client, window.visible(),
            AxRect{{client.origin.x - frame.left, client.origin.y - frame.top},
                   {client.size.width + frame.left + frame.right, client.size.height + frame.top + frame.bottom}}};
}

bool isDialog(Role role) {
    return role == Role::dialog || role == Role::alert || role == Role::fileChooser || role == Role::colorChooser;
}

bool isDialog(const X11Window& window) { return std::ranges::count(window.types, "DIALOG") > 0; }

bool isEvidence(const Likeness& likeness) { return likeness.isPossible && likeness.score() >= kEvidence; }

}  // namespace

// A title outweighs the activity, which may lag behind a change of the active window; both together with a place
// outweigh everything else.
int Likeness::score() const {
    if (!isPossible) return -1;
    return (title ? 18 : 0) + (active ? 16 : 0) +
           (size    ? 10
            : shape ? 4
                    : 0) +
           (place ? 8 : 0) + (kind ? 2 : 0) + (showing ? 1 : 0);
}

Likeness likeness(const FrameTraits& frame, const WindowTraits& of) {
    const X11Window& window = of.window;
    Likeness found;
    found.isPossible = frame.box && frame.role != Role::toolTip && (!frame.isPopup || window.isOverrideRedirect);
    if (!found.isPossible) return found;
    found.title = !window.title.empty() && frame.title == window.title;
    found.active = frame.isActive && of.isActive;
    found.kind = isDialog(frame.role) ? isDialog(window) : frame.isPopup;
    found.showing = frame.isShowing;
    const RawBox box = *frame.box;
    if (box.width <= 0 || box.height <= 0) return found;
    for (const AxRect& outline : outlinesOf(window)) {
        const double scale = outline.size.width / box.width;
        const bool isSize = near(outline.size.width, box.width) && near(outline.size.height, box.height);
        const bool isShape = scale >= kSmallestScale && scale <= kLargestScale &&
                             near(outline.size.height, scale * box.height, kRounding * scale);
        found.size = found.size || isSize;
        found.shape = found.shape || isShape;
        const double s = isSize ? 1 : scale;
        found.place = found.place || (frame.isPlaced && isShape && near(outline.origin.x, s * box.x, kRounding * s) &&
                                      near(outline.origin.y, s * box.y, kRounding * s));
    }
    return found;
}

std::optional<FrameMatch> frameOf(std::size_t asked, std::span<const WindowTraits> windows,
                                  std::span<const FrameTraits> frames) {
    struct Pair {
        std::size_t window, frame;
        Likeness likeness;
    };
    std::vector<Pair> pairs;
    for (std::size_t w = 0; w < windows.size(); ++w)
        for (std::size_t f = 0; f < frames.size(); ++f)
            if (const Likeness found = likeness(frames[f], windows[w]); found.isPossible)
                pairs.push_back({w, f, found});
    const bool isOnlyChoice = windows.size() == 1 && pairs.size() == 1;
    std::ranges::stable_sort(pairs, [&](const Pair& a, const Pair& b) {
        if (a.likeness.score() != b.likeness.score()) return a.likeness.score() > b.likeness.score();
        return windows[a.window].window.number < windows[b.window].window.number;
    });
    std::vector<bool> hasFrame(windows.size()), isTaken(frames.size());
    for (const Pair& pair : pairs) {
        if (hasFrame[pair.window] || isTaken[pair.frame]) continue;
        if (!isOnlyChoice && !isEvidence(pair.likeness)) return std::nullopt;
        if (pair.window == asked) return FrameMatch{pair.frame, pair.likeness};
        hasFrame[pair.window] = isTaken[pair.frame] = true;
    }
    return std::nullopt;
}

std::optional<FrameMatch> obviousFrameOf(const X11Window& window, std::span<const FrameTraits> frames) {
    std::optional<FrameMatch> only;
    for (std::size_t f = 0; f < frames.size(); ++f) {
        const Likeness found = likeness(frames[f], {window, false});
        if (!found.title && !found.shape) continue;
        if (only) return std::nullopt;
        only = FrameMatch{f, found};
    }
    return only && only->likeness.title && only->likeness.shape ? only : std::nullopt;
}

bool mayBePopup(const FrameTraits& frame) {
    return frame.isShowing && frame.role != Role::toolTip && (frame.isPopup || frame.title.empty()) && frame.box &&
           isSane(*frame.box) && frame.box->width > 0 && frame.box->height > 0;
}

std::vector<std::size_t> popupsBeside(std::size_t own, std::span<const WindowTraits> windows,
                                      std::span<const FrameTraits> frames) {
    std::vector<std::size_t> popups;
    for (std::size_t f = 0; f < frames.size(); ++f) {
        if (f == own || !mayBePopup(frames[f])) continue;
        const bool isSeen = std::ranges::any_of(windows, [&](const WindowTraits& each) {
            const X11Window& window = each.window;
            const bool isOther = std::ranges::count(window.types, "TOOLTIP") + std::ranges::count(window.types, "DND") +
                                     std::ranges::count(window.types, "NOTIFICATION") >
                                 0;
            return window.isOverrideRedirect && !isOther && likeness(frames[f], each).place;
        });
        if (isSeen) popups.push_back(f);
    }
    return popups;
}

bool maySpeakFor(const Likeness& likeness) {
    if (!likeness.isPossible) return false;
    return (likeness.title && likeness.shape) || (likeness.active && likeness.size && likeness.place);
}

}  // namespace tarvix::atspi
