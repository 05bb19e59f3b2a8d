// Points, sizes and rectangles on the desktop, with a type for each of its two coordinate planes.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarvix {

template <class Plane>
struct Point {
    double x = 0, y = 0;
    friend bool operator==(Point, Point) = default;
};

struct Size {
    double width = 0, height = 0;
    friend bool operator==(Size, Size) = default;
};

// Origin and extent. A negative extent is allowed and means the same area as its standardized form; min, max, width()
// and height() are those of the standardized form.
template <class Plane>
struct Rect {
    Point<Plane> origin;
    Size size;

    // The rectangle that is nowhere: it intersects nothing and adds nothing to a union. Other than an empty one, which
    // still has a place.
    static constexpr Rect null() {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        return {{infinity, infinity}, {0, 0}};
    }

    bool isNull() const { return std::isinf(origin.x) || std::isinf(origin.y); }
    bool isEmpty() const { return isNull() || size.width == 0 || size.height == 0; }

    double minX() const { return std::min(origin.x, origin.x + size.width); }
    double maxX() const { return std::max(origin.x, origin.x + size.width); }
    double minY() const { return std::min(origin.y, origin.y + size.height); }
    double maxY() const { return std::max(origin.y, origin.y + size.height); }
    double width() const { return std::abs(size.width); }
    double height() const { return std::abs(size.height); }

    friend bool operator==(Rect, Rect) = default;
};

// Accessibility coordinates: origin at the top left of the first screen, y downwards. Elements and mouse events.
using AxPoint = Point<struct AxPlane>;
using AxRect = Rect<struct AxPlane>;

// Panel coordinates: origin at the bottom left of the same screen, y upwards. Screens, panels and the mouse location.
using PanelPoint = Point<struct PanelPlane>;
using PanelRect = Rect<struct PanelPlane>;

// The one door between the two planes; `firstScreenHeight` is the first screen's, wherever the point lies.
inline PanelPoint flip(AxPoint p, double firstScreenHeight) { return {p.x, firstScreenHeight - p.y}; }
inline AxPoint flip(PanelPoint p, double firstScreenHeight) { return {p.x, firstScreenHeight - p.y}; }
template <class From, class To>
Rect<To> flipRect(Rect<From> r, double firstScreenHeight) {
    return {{r.minX(), firstScreenHeight - r.maxY()}, {r.width(), r.height()}};
}
inline PanelRect flip(AxRect r, double firstScreenHeight) {
    return flipRect<AxPlane, PanelPlane>(r, firstScreenHeight);
}
inline AxRect flip(PanelRect r, double firstScreenHeight) {
    return flipRect<PanelPlane, AxPlane>(r, firstScreenHeight);
}

// Rectangles that only touch along an edge or at a corner don't intersect. An empty rectangle (a line, a point)
// strictly inside another one does; one on the other's edge doesn't. The null rectangle, and any coordinate that is not
// a number, intersects nothing.
template <class Plane>
bool intersects(Rect<Plane> a, Rect<Plane> b) {
    if (a.isNull() || b.isNull()) return false;
    return a.minX() < b.maxX() && b.minX() < a.maxX() && a.minY() < b.maxY() && b.minY() < a.maxY();
}

// The smallest rectangle that holds both. A null rectangle adds nothing; an empty one counts with its place.
template <class Plane>
Rect<Plane> unite(Rect<Plane> a, Rect<Plane> b) {
    if (a.isNull()) return b;
    if (b.isNull()) return a;
    const double x = std::min(a.minX(), b.minX());
    const double y = std::min(a.minY(), b.minY());
    return {{x, y}, {std::max(a.maxX(), b.maxX()) - x, std::max(a.maxY(), b.maxY()) - y}};
}

// What both have in common; null where they don't intersect.
template <class Plane>
Rect<Plane> intersection(Rect<Plane> a, Rect<Plane> b) {
    if (!intersects(a, b)) return Rect<Plane>::null();
    const double x = std::max(a.minX(), b.minX());
    const double y = std::max(a.minY(), b.minY());
    return {{x, y}, {std::min(a.maxX(), b.maxX()) - x, std::min(a.maxY(), b.maxY()) - y}};
}

// The point test of the mouse, for a plane whose y runs upwards: the left and the top edge (minX, maxY) belong to the
// rectangle, the right and the bottom edge (maxX, minY) don't. It looks at numbers only, so that in a plane that runs
// downwards the upper edge is out and the lower edge is in.
template <class Plane>
bool mouseInRect(Point<Plane> p, Rect<Plane> r) {
    return p.x >= r.minX() && p.x < r.maxX() && p.y > r.minY() && p.y <= r.maxY();
}

}  // namespace tarvix
