#include "tests/desktop/play/ScreenImage.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace tarvix {

std::optional<ScreenImage> captureScreen() {
    const std::unique_ptr<xcb_connection_t, decltype([](xcb_connection_t* open) { xcb_disconnect(open); })> connection(
        xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(connection.get())) return std::nullopt;
    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data;
    const int width = screen.width_in_pixels, height = screen.height_in_pixels;
    const auto cookie = xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, screen.root, 0, 0,
                                      screen.width_in_pixels, screen.height_in_pixels, ~0u);
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

}  // namespace tarvix
