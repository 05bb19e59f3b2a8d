#include "linux/atspi/Listening.h"

namespace tarvix::atspi {

namespace {

constexpr Milliseconds kRegistryLimit{300};

// Takes in what has come meanwhile: the end of the connection shows only then.
bool isThere(sd_bus* bus) {
    int processed = 0;
    while ((processed = sd_bus_process(bus, nullptr)) > 0) {
    }
    return processed == 0 && sd_bus_is_ready(bus) > 0;
}

bool registerListener(sd_bus* bus) {
    sd_bus_message* raw = nullptr;
    if (sd_bus_message_new_method_call(bus, &raw, "org.a11y.atspi.Registry", "/org/a11y/atspi/registry",
                                       "org.a11y.atspi.Registry", "RegisterEvent") < 0)
        return false;
    const Message call(raw);
    // Of the events, one that seldom comes; it is delivered to nobody, as no match asks for it.
    if (sd_bus_message_append(raw, "sass", "window:activate", 0, "") < 0) return false;
    const auto limit = static_cast<std::uint64_t>(std::chrono::microseconds(kRegistryLimit).count());
    return sd_bus_call(bus, raw, limit, nullptr, nullptr) >= 0;
}

}  // namespace

void Listening::keep() {
    if (bus_ && isThere(bus_.get())) return;
    bus_.reset();
    const Bus session = connectToSession();
    const auto address = session ? accessibilityBusAddress(session.get()) : std::nullopt;
    Bus bus = address ? connectTo(*address, Peer::messageBus) : nullptr;
    if (bus && registerListener(bus.get())) bus_ = std::move(bus);
}

}  // namespace tarvix::atspi
