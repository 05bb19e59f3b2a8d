#include "linux/x11/Panels.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <string>
#include <string_view>

namespace tarvix {

namespace {

constexpr std::array<std::string_view, 4> kDocks{"plank", "cairo-dock", "docky", "latte-dock"};

// The strip that a hidden panel leaves is of 1 to 6 pixels, by program and setting; no panel's icons are that small.
constexpr double kThinnest = 8;

bool contains(AxRect outer, AxRect inner) {
    return outer.minX() <= inner.minX() && outer.maxX() >= inner.maxX() && outer.minY() <= inner.minY() &&
           outer.maxY() >= inner.maxY();
}

// Popups are left out: most are shorter than the dock's hiding takes, and panels of ours cover the whole screen.
bool covers(const X11Window& window) {
    if (isPanel(window) || window.hasType("DESKTOP")) return false;
    return window.isFullScreen || !window.isOverrideRedirect;
}

double area(const AxRect& box) { return box.width() * box.height(); }

AxPoint centreOf(const AxRect& box) { return {(box.minX() + box.maxX()) / 2, (box.minY() + box.maxY()) / 2}; }

bool holds(const AxRect& box, AxPoint p) {
    return p.x >= box.minX() && p.x < box.maxX() && p.y >= box.minY() && p.y < box.maxY();
}

}  // namespace

bool isPanel(const X11Window& window) { return window.hasType("DOCK"); }

bool isDockProgram(const X11Window& panel) {
    std::string name = panel.windowClass;
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return std::ranges::count(kDocks, name) > 0;
}

std::vector<X11Window> panelsThatShow(const std::vector<X11Window>& windows) {
    std::vector<X11Window> panels;
    std::vector<AxRect> before;
    for (const X11Window& each : windows) {
        if (covers(each)) before.push_back(each.visible());
        if (!isPanel(each) || each.clickable.isNull()) continue;
        const bool isThick = each.clickable.width() >= kThinnest && each.clickable.height() >= kThinnest;
        const bool isCovered =
            std::ranges::any_of(before, [&](const AxRect& other) { return contains(other, each.clickable); });
        if (isThick && !isCovered) panels.push_back(each);
    }
    return panels;
}

std::optional<std::int32_t> dockProcess(const std::vector<X11Window>& windows, const std::vector<X11Window>& clients) {
    struct Weight {
        bool isDock = false;
        int tasks = 0;
        double area = 0;
        auto operator<=>(const Weight&) const = default;
    };
    std::map<std::int32_t, Weight> weights;
    for (const X11Window& panel : windows) {
        if (!isPanel(panel)) continue;
        Weight& weight = weights[panel.pid];
        weight.isDock = weight.isDock || isDockProgram(panel);
        weight.area = std::max(weight.area, area(panel.client));
        weight.tasks += static_cast<int>(std::ranges::count_if(clients, [&](const X11Window& client) {
            return client.iconGeometry && holds(panel.client, centreOf(*client.iconGeometry));
        }));
    }
    const auto heaviest = std::ranges::max_element(weights, {}, [](const auto& entry) { return entry.second; });
    if (heaviest == weights.end()) return std::nullopt;
    return heaviest->first;
}

std::vector<std::int32_t> dockProcesses(X11Windows& windows) {
    const auto dock = dockProcess(windows.onScreen(), windows.clients());
    return dock ? std::vector{*dock} : std::vector<std::int32_t>();
}

}  // namespace tarvix
