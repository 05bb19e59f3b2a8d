// A small window that the desktop's tray takes into its own.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Geometry.h"
#include "platform/Panels.h"

namespace tarvix {

// Row by row, 0xAARRGGBB, the colours multiplied by the transparency.
using TrayPicture = std::vector<std::uint32_t>;

struct TrayWindowUse {
    std::string title;
    // A picture of this size, in pixels, for a ground of this colour where it is known.
    std::function<TrayPicture(int width, int height, std::optional<Color> ground)> draw;
    // A button, 1 for the left one to 3 for the right one, has been clicked. `place` is the window's, in root pixels.
    std::function<void(int button, const AxRect& place)> clicked;
    // The pointer has come onto it, or has left it: absent.
    std::function<void(std::optional<AxRect> place)> pointed;
};

// Main thread. It shows wherever there is a tray, as soon as there is one, and goes with the object.
class TrayWindow {
public:
    virtual ~TrayWindow() = default;
    virtual void redraw() = 0;
};

using MakeTrayWindow = std::function<std::unique_ptr<TrayWindow>(TrayWindowUse use)>;

}  // namespace tarvix
