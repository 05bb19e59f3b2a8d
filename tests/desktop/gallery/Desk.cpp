#include "tests/desktop/gallery/Desk.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "tests/desktop/play/Await.h"

namespace tarvix {

namespace {

template <class T>
using Reply = std::unique_ptr<T, decltype([](T* reply) { std::free(reply); })>;
using Connection = std::unique_ptr<xcb_connection_t, decltype([](xcb_connection_t* open) { xcb_disconnect(open); })>;

const xcb_screen_t& screenOf(xcb_connection_t* x) { return *xcb_setup_roots_iterator(xcb_get_setup(x)).data; }

std::uint32_t between(std::uint32_t from, std::uint32_t to, int place, int length) {
    std::uint32_t mixed = 0;
    for (const int shift : {16, 8, 0}) {
        const int first = static_cast<int>((from >> shift) & 0xff), last = static_cast<int>((to >> shift) & 0xff);
        mixed |= static_cast<std::uint32_t>(first + (last - first) * place / length) << shift;
    }
    return mixed;
}

}  // namespace

Backdrop::Backdrop(const std::vector<ScreenPart>& monitors, std::uint32_t above, std::uint32_t below)
    : x_(xcb_connect(nullptr, nullptr)) {
    const xcb_screen_t& screen = screenOf(x_);
    const xcb_pixmap_t pixmap = xcb_generate_id(x_);
    const xcb_gcontext_t brush = xcb_generate_id(x_);
    xcb_create_pixmap(x_, screen.root_depth, pixmap, screen.root, screen.width_in_pixels, screen.height_in_pixels);
    xcb_create_gc(x_, brush, pixmap, XCB_GC_FOREGROUND, &screen.black_pixel);
    const xcb_rectangle_t all{0, 0, screen.width_in_pixels, screen.height_in_pixels};
    xcb_poly_fill_rectangle(x_, pixmap, brush, 1, &all);
    for (const ScreenPart& monitor : monitors)
        for (int y = 0; y < monitor.height; ++y) {
            const std::uint32_t color = between(above, below, y, monitor.height);
            xcb_change_gc(x_, brush, XCB_GC_FOREGROUND, &color);
            const xcb_rectangle_t row{static_cast<std::int16_t>(monitor.x), static_cast<std::int16_t>(monitor.y + y),
                                      static_cast<std::uint16_t>(monitor.width), 1};
            xcb_poly_fill_rectangle(x_, pixmap, brush, 1, &row);
        }
    // Servers show the background, compositors the pixmap that this property names.
    xcb_change_window_attributes(x_, screen.root, XCB_CW_BACK_PIXMAP, &pixmap);
    xcb_clear_area(x_, 0, screen.root, 0, 0, 0, 0);
    constexpr std::string_view name = "_XROOTPMAP_ID";
    const Reply<xcb_intern_atom_reply_t> atom(
        xcb_intern_atom_reply(x_, xcb_intern_atom(x_, 0, name.size(), name.data()), nullptr));
    if (atom) xcb_change_property(x_, XCB_PROP_MODE_REPLACE, screen.root, atom->atom, XCB_ATOM_PIXMAP, 32, 1, &pixmap);
    xcb_flush(x_);
}

Backdrop::~Backdrop() { xcb_disconnect(x_); }

bool moveWindow(std::uint32_t window, ScreenPoint to) {
    const Connection x(xcb_connect(nullptr, nullptr));
    const std::array values{static_cast<std::uint32_t>(to.x), static_cast<std::uint32_t>(to.y)};
    xcb_configure_window(x.get(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values.data());
    xcb_flush(x.get());
    // The manager may take the place for that of its own frame, or of the window within.
    constexpr int kFrame = 40;
    return await(std::chrono::seconds(5), [&] {
        const Reply<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
            x.get(), xcb_translate_coordinates(x.get(), window, screenOf(x.get()).root, 0, 0), nullptr));
        return place && std::abs(place->dst_x - to.x) <= kFrame && std::abs(place->dst_y - to.y) <= kFrame;
    });
}

}  // namespace tarvix
