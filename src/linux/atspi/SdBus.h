// Owners for sd-bus objects, and the ways to connect.
#pragma once

#include <systemd/sd-bus.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace tarvix::atspi {

template <auto Free>
struct FreeWith {
    void operator()(auto* p) const noexcept { Free(p); }
};
using Bus = std::unique_ptr<sd_bus, FreeWith<sd_bus_close_unref>>;
using Message = std::unique_ptr<sd_bus_message, FreeWith<sd_bus_message_unref>>;
using Slot = std::unique_ptr<sd_bus_slot, FreeWith<sd_bus_slot_unref>>;

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

// Whether an address names a message bus, which must be greeted, or one program's own socket.
enum class Peer { messageBus, program };

// Connects to a D-Bus address. Null when nobody listens there, or a message bus doesn't greet back within half a
// second. A program is not waited for: whether it answers shows at the first call.
Bus connectTo(const std::string& address, Peer peer);
// A connection of our own to the user's session bus. Null without one.
Bus connectToSession();
// The address of the accessibility bus, asked of the session bus; absent where there is none.
std::optional<std::string> accessibilityBusAddress(sd_bus* session);

// One blocking call without arguments or with one text; null on any failure.
Message callBlocking(sd_bus* bus, const char* destination, const char* path, const char* interface, const char* member,
                     Milliseconds limit, const char* argument = nullptr);

}  // namespace tarvix::atspi
