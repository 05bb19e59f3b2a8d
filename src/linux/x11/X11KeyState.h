// What keys are down, for the applications and on each keyboard, and how the two are brought together again.
//
// A grab of a single keyboard takes it away from the master keyboard, whose state is the one that applications see.
// What was down then stays down for them, and what goes down or up meanwhile passes them by.
#pragma once

#include <bitset>
#include <cstdint>
#include <vector>

#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Modifiers.h"
#include "linux/x11/XInputKeyboards.h"

namespace tarvix {

using Keycodes = std::bitset<256>;

// The keys that are down for the applications.
Keycodes keysDownForApplications(X11Connection& connection);
// The keys that are down on some of these keyboards.
Keycodes keysDownOn(X11Connection& connection, const std::vector<std::uint16_t>& devices);

// Lets the applications see these keys go up. Holds only while no attached keyboard has them down.
void releaseForApplications(X11Connection& connection, const Keycodes& keys);
// Lets them see those keys go up that are down for them and on no keyboard.
void releaseStuckKeys(X11Connection& connection);

struct ModifierState {
    std::uint8_t held = 0;  // down or latched
    std::uint8_t locked = 0;
    std::uint8_t lockedGroup = 0;

    std::uint8_t effective() const { return static_cast<std::uint8_t>(held | locked); }
};
// The device number of the master: the state that applications see.
inline constexpr std::uint16_t kMasterKeyboard = 0x100;
// One for each device, in order, in one round trip.
std::vector<ModifierState> modifierStates(X11Connection& connection, const std::vector<std::uint16_t>& devices);
// Those that are held on any of them.
std::uint8_t modifiersHeldOn(X11Connection& connection, const std::vector<std::uint16_t>& devices);

// Turns locks of the master on or off. Locked modifiers count for the applications as held ones do, and come without a
// key event, so that no lone Alt or Super opens a menu.
void lockModifiers(X11Connection& connection, std::uint8_t affected, std::uint8_t on);
// Changes the master's layout group for good.
void lockGroup(X11Connection& connection, std::uint8_t group);

}  // namespace tarvix
