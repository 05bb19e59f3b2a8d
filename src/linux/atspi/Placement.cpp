#include "linux/atspi/Placement.h"

#include <cmath>

namespace tarvix::atspi {

namespace {

constexpr std::int32_t kLargestSide = 1 << 26;  // the longest page that a browser lays out is half of that

constexpr double kPlainDpi = 96;

double wholeScale(double pixels, std::int32_t units) {
    return units > 0 ? std::max(1.0, std::round(pixels / units)) : 1;
}

// The pixel edge that a toolkit draws at where its own units end between two.
double wholePixel(double at) { return std::floor(at + 0.5); }

// A window's size has been rounded to pixels, so that its quotient is off by more the smaller the window is. Scales are
// made of dots per inch, which are whole, as 150 % and 125 % are; the quotient stands where it isn't near such a one.
double exactScale(double pixels, std::int32_t units) {
    if (units <= 0 || pixels <= 0) return 1;
    const double quotient = pixels / units;
    const double inDots = std::round(quotient * kPlainDpi) / kPlainDpi;
    return inDots > 0 && std::abs(inDots * units - pixels) < 1 ? inDots : quotient;
}

// GTK 4 reports boxes relative to the top level's content box; the SCREEN origin is silently the same one (4.8) or
// always 0,0 (4.18). What lies between the X window and the content is the shadow that the client draws, or, where the
// window manager makes it draw none, the border of its own style.
Placement placeGtk4(const X11Window& window, RawBox frame) {
    const double scale = wholeScale(window.client.size.width, frame.width);
    const double borderX = (window.client.size.width - scale * frame.width) / 2;
    const double borderY = (window.client.size.height - scale * frame.height) / 2;
    const auto shadow = window.gtkFrameExtents;
    return {window.client.origin.x + (shadow ? shadow->left : borderX),
            window.client.origin.y + (shadow ? shadow->top : borderY), scale, scale};
}

// GTK 3 reports places on the screen, in its own units; that of the window has been rounded towards the origin, and
// those of what is in it have lost as much.
Placement placeGtk3(const X11Window& window, RawBox frame) {
    const double scale = wholeScale(window.client.size.width, frame.width);
    return {std::fmod(window.client.origin.x, scale), std::fmod(window.client.origin.y, scale), scale, scale};
}

// Qt's logical origin of a screen is its physical one, so that scaling an absolute position is wrong on a second
// screen: only distances within the window scale.
Placement placeQt(const X11Window& window, RawBox frame) {
    const double scale = exactScale(window.client.size.width, frame.width);
    return {window.client.origin.x - scale * frame.x, window.client.origin.y - scale * frame.y, scale, scale};
}

}  // namespace

AxRect Placement::toRoot(RawBox box, bool inWebContent) const {
    const double s = inWebContent ? webScale : scale;
    const double left = wholePixel(offsetX + s * box.x), top = wholePixel(offsetY + s * box.y);
    return {
        {left, top},
        {wholePixel(offsetX + s * (box.x + box.width)) - left, wholePixel(offsetY + s * (box.y + box.height)) - top}};
}

RawBox Placement::fromRoot(AxPoint point, bool inWebContent) const {
    const double s = inWebContent ? webScale : scale;
    return {static_cast<std::int32_t>(std::floor((point.x - offsetX) / s)),
            static_cast<std::int32_t>(std::floor((point.y - offsetY) / s)), 0, 0};
}

Coordinates coordinatesOf(Toolkit toolkit) {
    return toolkit == Toolkit::gtk4 ? Coordinates::window : Coordinates::screen;
}

Placement place(Toolkit toolkit, const X11Window& window, RawBox frame) {
    switch (toolkit) {
        case Toolkit::gtk4:
            return placeGtk4(window, frame);
        case Toolkit::qt:
            return placeQt(window, frame);
        case Toolkit::chromium:
            return {0, 0, exactScale(window.client.size.width, frame.width), 1};
        case Toolkit::gtk3:
            return placeGtk3(window, frame);
        case Toolkit::gecko:
        case Toolkit::libreOffice: {
            const double scale = wholeScale(window.client.size.width, frame.width);
            return {0, 0, scale, scale};
        }
        case Toolkit::clutter:
        case Toolkit::java:
        case Toolkit::other:
            break;
    }
    return {};
}

bool isSane(RawBox box) {
    return box.width >= 0 && box.height >= 0 && box.width <= kLargestSide && box.height <= kLargestSide &&
           std::abs(static_cast<long>(box.x)) < (1L << 30) && std::abs(static_cast<long>(box.y)) < (1L << 30) &&
           !(box.x == -1 && box.y == -1 && box.width <= 1 && box.height <= 1);
}

}  // namespace tarvix::atspi
