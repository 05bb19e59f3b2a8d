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

bool hasStatus(sd_bus* session, const char* property) {
    int value = 0;
    return sd_bus_get_property_trivial(session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status", property, nullptr,
                                       'b', &value) >= 0;
}

// Older buses keep accessibility enabled once it is, and are known by a property that the newer ones have not. They are
// left alone: while anybody listens, programs of Qt hold each key press back until the registry has seen it (5.15 to
// 6.4), our own field among them, whose letters would then come after the keys that are routed by.
bool takesAListener(sd_bus* session) {
    return hasStatus(session, "IsEnabled") && !hasStatus(session, "ScreenReaderEnabled");
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
    if (!session || !takesAListener(session.get())) return;
    const auto address = accessibilityBusAddress(session.get());
    Bus bus = address ? connectTo(*address, Peer::messageBus) : nullptr;
    if (bus && registerListener(bus.get())) bus_ = std::move(bus);
}

}  // namespace tarvix::atspi
