#include "linux/atspi/SdBus.h"

namespace tarvix::atspi {

namespace {

constexpr Milliseconds kConnectLimit{500};

std::uint64_t microseconds(Milliseconds limit) {
    return static_cast<std::uint64_t>(std::chrono::microseconds(limit).count());
}

// A bus that takes connections and then says nothing would keep the first call waiting for minutes.
bool getsReady(sd_bus* bus) {
    const Clock::time_point deadline = Clock::now() + kConnectLimit;
    for (;;) {
        if (const int ready = sd_bus_is_ready(bus); ready != 0) return ready > 0;
        const int processed = sd_bus_process(bus, nullptr);
        if (processed < 0) return false;
        if (processed > 0) continue;
        const auto left = std::chrono::duration_cast<Milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 || sd_bus_wait(bus, microseconds(left)) < 0) return false;
    }
}

}  // namespace

Bus connectTo(const std::string& address, Peer peer) {
    sd_bus* raw = nullptr;
    if (sd_bus_new(&raw) < 0) return nullptr;
    Bus bus(raw);
    if (sd_bus_set_address(raw, address.c_str()) < 0) return nullptr;
    if (sd_bus_set_bus_client(raw, peer == Peer::messageBus) < 0) return nullptr;
    sd_bus_set_method_call_timeout(raw, microseconds(kConnectLimit));
    if (sd_bus_start(raw) < 0) return nullptr;
    if (peer == Peer::messageBus && !getsReady(raw)) return nullptr;
    return bus;
}

Bus connectToSession() {
    sd_bus* raw = nullptr;
    if (sd_bus_open_user(&raw) < 0) return nullptr;
    Bus bus(raw);
    sd_bus_set_method_call_timeout(raw, microseconds(kConnectLimit));
    if (!getsReady(raw)) return nullptr;
    return bus;
}

std::optional<std::string> accessibilityBusAddress(sd_bus* session) {
    const Message reply =
        callBlocking(session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", Milliseconds(1000));
    const char* address = nullptr;
    if (!reply || sd_bus_message_read(reply.get(), "s", &address) < 0 || *address == '\0') return std::nullopt;
    return address;
}

Message callBlocking(sd_bus* bus, const char* destination, const char* path, const char* interface, const char* member,
                     Milliseconds limit, const char* argument) {
    sd_bus_message* raw = nullptr;
    if (sd_bus_message_new_method_call(bus, &raw, destination, path, interface, member) < 0) return nullptr;
    const Message call(raw);
    if (argument && sd_bus_message_append(raw, "s", argument) < 0) return nullptr;
    sd_bus_message* reply = nullptr;
    if (sd_bus_call(bus, raw, microseconds(limit), nullptr, &reply) < 0) return nullptr;
    return Message(reply);
}

}  // namespace tarvix::atspi
