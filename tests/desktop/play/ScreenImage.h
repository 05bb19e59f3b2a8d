// What stands on the screen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/Geometry.h"

namespace tarvix {

struct ScreenImage {
    int width = 0, height = 0;
    std::vector<std::uint32_t> pixels;  // 0x00RRGGBB, row by row

    std::uint32_t at(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
    friend bool operator==(const ScreenImage&, const ScreenImage&) = default;
};

// The screen with all windows as they are shown; nothing when the server refuses.
std::optional<ScreenImage> captureScreen();
// One pixel of it, in far less time.
std::optional<std::uint32_t> capturePixel(int x, int y);

// The least box around what differs between two pictures of the screen within a region; nothing where they are the
// same. Root pixels.
std::optional<AxRect> difference(const ScreenImage& a, const ScreenImage& b, const AxRect& region);

}  // namespace tarvix
