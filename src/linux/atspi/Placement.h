// From the boxes that a toolkit reports to root pixels.
#pragma once

#include "linux/atspi/Node.h"
#include "linux/x11/X11Windows.h"

namespace tarvix::atspi {

// root = offset + scale * raw, edges on whole pixels. Web content has a scale of its own, since Chromium gives it in
// physical pixels while its own toolbar is in device-independent ones.
struct Placement {
    double offsetX = 0, offsetY = 0;
    double scale = 1;
    double webScale = 1;

    AxRect toRoot(RawBox box, bool inWebContent) const;
    // The raw point that lies at a root point.
    RawBox fromRoot(AxPoint point, bool inWebContent) const;
};

// Which origin this toolkit can be asked for with a meaningful answer.
Coordinates coordinatesOf(Toolkit toolkit);

// How the boxes of a window's objects lie on the screen. `frame` is the accessible frame's own box in coordinatesOf().
Placement place(Toolkit toolkit, const X11Window& window, RawBox frame);

// A box that is an answer at all: toolkits report what isn't laid out by the smallest integer, by -1 all over, or by
// sizes of uninitialised memory (GTK 4.18's hidden pages: 1372435568 x 21904).
bool isSane(RawBox box);

}  // namespace tarvix::atspi
