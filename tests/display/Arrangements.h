// Desktops of one, two and three screens in every arrangement.
#pragma once

#include <ostream>
#include <vector>

#include "base/Geometry.h"

namespace tarvix {

// The first screen comes first; it has the origin of the plane.
using Arrangement = std::vector<PanelRect>;

inline constexpr PanelRect kFirstOfAll{{0, 0}, {1600, 1000}};

// Where a screen of a size may stand beside another one: on each side with an edge in line, with none, reaching beyond
// it at both ends or at a single point; at each corner; and with a gap.
inline std::vector<PanelRect> placesBeside(PanelRect other, Size size) {
    const double left = other.minX() - size.width, right = other.maxX();
    const double below = other.minY() - size.height, above = other.maxY();
    const double inLineX = other.minX(), inLineY = other.minY();
    const double endX = other.maxX() - size.width, endY = other.maxY() - size.height;
    constexpr double shift = 170, gap = 60;
    std::vector<PanelRect> places;
    for (const double x : {left, right, left - gap, right + gap})
        for (const double y : {inLineY, endY, inLineY + shift, inLineY - shift}) places.push_back({{x, y}, size});
    for (const double y : {below, above, below - gap, above + gap})
        for (const double x : {inLineX, endX, inLineX + shift, inLineX - shift}) places.push_back({{x, y}, size});
    for (const double x : {left, right})
        for (const double y : {below, above}) places.push_back({{x, y}, size});
    return places;
}

inline std::vector<PanelRect> placesBesideTheFirst() {
    std::vector<PanelRect> places;
    for (const Size size : {Size{1600, 1000}, Size{2560, 1440}, Size{800, 600}}) {
        const auto more = placesBeside(kFirstOfAll, size);
        places.insert(places.end(), more.begin(), more.end());
    }
    return places;
}

inline std::vector<Arrangement> arrangements(std::size_t screens) {
    if (screens == 1) return {{kFirstOfAll}};
    std::vector<Arrangement> all;
    for (const PanelRect& second : placesBesideTheFirst()) {
        if (screens == 2) all.push_back({kFirstOfAll, second});
        if (screens < 3) continue;
        for (const PanelRect& third : placesBesideTheFirst())
            if (!intersects(second, third)) all.push_back({kFirstOfAll, second, third});
    }
    return all;
}

inline std::vector<Arrangement> everyArrangement() {
    std::vector<Arrangement> all;
    for (const std::size_t screens : {1, 2, 3}) {
        const auto more = arrangements(screens);
        all.insert(all.end(), more.begin(), more.end());
    }
    return all;
}

// As GoogleTest prints a rectangle.
template <class Plane>
void PrintTo(const Rect<Plane>& rect, std::ostream* out) {
    *out << rect.size.width << "x" << rect.size.height << " at " << rect.origin.x << "," << rect.origin.y;
}

}  // namespace tarvix
