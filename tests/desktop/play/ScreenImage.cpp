#include "tests/desktop/play/ScreenImage.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace tarvix {

namespace {

using Connection = std::unique_ptr<xcb_connection_t, decltype([](xcb_connection_t* open) { xcb_disconnect(open); })>;

// A width or height of 0 goes as far as the screen.
std::optional<ScreenImage> capture(int x, int y, int width, int height) {
    static const Connection connection(xcb_connect(nullptr, nullptr));  // for all pictures: some tests take thousands
    if (xcb_connection_has_error(connection.get())) return std::nullopt;
    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data;
    if (width == 0) width = screen.width_in_pixels - x;
    if (height == 0) height = screen.height_in_pixels - y;
    const auto cookie = xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, screen.root,
                                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), ~0u);
    const std::unique_ptr<xcb_get_image_reply_t, decltype([](xcb_get_image_reply_t* reply) { std::free(reply); })>
        reply(xcb_get_image_reply(connection.get(), cookie, nullptr));
    const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    // A depth of 24 bits comes as 32 bits for each pixel on every server that has true colour.
    if (!reply || static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) < count * 4) return std::nullopt;
    ScreenImage image{width, height, std::vector<std::uint32_t>(count)};
    std::memcpy(image.pixels.data(), xcb_get_image_data(reply.get()), count * 4);
    for (std::uint32_t& pixel : image.pixels) pixel &= 0xffffffu;
    return image;
}

}  // namespace

std::optional<ScreenImage> captureScreen() { return capture(0, 0, 0, 0); }

std::optional<std::uint32_t> capturePixel(int x, int y) {
    const auto image = capture(x, y, 1, 1);
    return image ? std::optional(image->pixels.front()) : std::nullopt;
}

std::optional<AxRect> difference(const ScreenImage& a, const ScreenImage& b, const AxRect& region) {
    int left = a.width, top = a.height, right = -1, bottom = -1;
    for (int y = static_cast<int>(region.minY()); y < static_cast<int>(region.maxY()); ++y)
        for (int x = static_cast<int>(region.minX()); x < static_cast<int>(region.maxX()); ++x)
            if (a.at(x, y) != b.at(x, y)) {
                left = std::min(left, x), right = std::max(right, x);
                top = std::min(top, y), bottom = std::max(bottom, y);
            }
    if (right < left) return std::nullopt;
    return AxRect{{double(left), double(top)}, {double(right - left + 1), double(bottom - top + 1)}};
}

}  // namespace tarvix
