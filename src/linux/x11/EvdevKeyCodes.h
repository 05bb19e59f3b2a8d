// The hardware's key codes and the system's: positions on the table of `Key`.
#pragma once

#include <cstdint>
#include <optional>

namespace tarvix {

// The position of an evdev key; absent for a key that has none, such as a modifier or a media key.
std::optional<std::uint16_t> keyCodeOfEvdev(std::uint32_t evdev);
// The evdev key at a position.
std::optional<std::uint16_t> evdevOfKeyCode(std::uint32_t keyCode);

// Whether Num Lock decides what a key at that position types.
bool isOnKeypad(std::uint32_t keyCode);

// The same as the first two with the X server's keycodes, which are evdev's and 8 more.
std::optional<std::uint16_t> keyCodeOfX11(std::uint8_t keycode);
std::optional<std::uint8_t> x11OfKeyCode(std::uint32_t keyCode);

}  // namespace tarvix
