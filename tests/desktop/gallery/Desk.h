// What stands on the gallery's screen besides applications, and where these stand.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <vector>

#include "tests/desktop/gallery/GalleryTable.h"

namespace tarvix {

// A background in two colours that pass into each other, on each of these parts of the screen, and black elsewhere. It
// goes with the object.
class Backdrop {
public:
    Backdrop(const std::vector<ScreenPart>& monitors, std::uint32_t above, std::uint32_t below);
    ~Backdrop();
    Backdrop(const Backdrop&) = delete;
    Backdrop& operator=(const Backdrop&) = delete;

private:
    xcb_connection_t* x_ = nullptr;
};

// Moves the window of an application, and waits until it has arrived.
bool moveWindow(std::uint32_t window, ScreenPoint to);

}  // namespace tarvix
