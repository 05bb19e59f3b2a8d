// A keyboard and a mouse at the X server, as a person would use them: through XTEST.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace tarvix {

namespace keysym {
inline constexpr std::uint32_t shift = 0xffe1, control = 0xffe3, alt = 0xffe9, super = 0xffeb;
inline constexpr std::uint32_t returnKey = 0xff0d, escape = 0xff1b, tab = 0xff09, space = 0x20;
inline constexpr std::uint32_t keypadEnter = 0xff8d, f4 = 0xffc1;
inline constexpr std::uint32_t home = 0xff50, up = 0xff52, down = 0xff54, end = 0xff57;
inline constexpr std::uint32_t pageUp = 0xff55, pageDown = 0xff56;
}  // namespace keysym

struct ScreenPoint {
    int x = 0, y = 0;
};

class Keyboard {
public:
    // Without a display it ends the program: nothing can be played then.
    Keyboard();
    ~Keyboard();
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    // Presses keys one after the other and releases them in the opposite order; returns when the server has them.
    void chord(const std::vector<std::uint32_t>& keysyms);
    // Only the presses, and only the releases, in this order.
    void hold(const std::vector<std::uint32_t>& keysyms);
    void release(const std::vector<std::uint32_t>& keysyms);
    // Printable ASCII on the present layout.
    void type(std::string_view text);

    ScreenPoint pointer();
    void movePointer(ScreenPoint to);
    void click(std::uint8_t button = 1);

private:
    struct Key {
        std::uint8_t code = 0;
        bool shifted = false;
    };

    Key find(std::uint32_t keysym) const;
    void post(std::uint8_t type, std::uint8_t detail, ScreenPoint at = {});
    void sync();

    xcb_connection_t* x_ = nullptr;
    xcb_window_t root_ = XCB_WINDOW_NONE;
    std::uint8_t firstCode_ = 0;
    std::size_t columns_ = 0;
    std::vector<std::uint32_t> table_;  // keysyms by keycode and column
};

}  // namespace tarvix
