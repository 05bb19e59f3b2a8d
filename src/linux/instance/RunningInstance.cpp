#include "linux/instance/RunningInstance.h"

#include <array>
#include <cerrno>
#include <string_view>
#include <thread>
#include <utility>

namespace tarvix {

namespace {

using atspi::Bus;
using atspi::Clock;
using atspi::Message;
using atspi::Milliseconds;

constexpr auto kName = "org.tarvix.Tarvix";
constexpr auto kPath = "/org/tarvix/Tarvix";
constexpr auto kInterface = "org.freedesktop.Application";
constexpr std::chrono::seconds kLimit{5};
constexpr Milliseconds kPause{10};

// A call of the running program, to be filled; null without a session bus.
Message callOf(sd_bus* bus, const char* method) {
    sd_bus_message* raw = nullptr;
    if (!bus || sd_bus_message_new_method_call(bus, &raw, kName, kPath, kInterface, method) < 0) return nullptr;
    Message call(raw);
    return sd_bus_message_set_auto_start(raw, 0) < 0 ? nullptr : std::move(call);
}

Asked send(sd_bus* bus, const Message& call) {
    sd_bus_error error = SD_BUS_ERROR_NULL;
    constexpr auto limit = static_cast<std::uint64_t>(std::chrono::microseconds(kLimit).count());
    const int called = sd_bus_call(bus, call.get(), limit, &error, nullptr);
    // The bus itself says that there will be no reply, once who was called has left it.
    const bool isGone = sd_bus_error_has_name(&error, SD_BUS_ERROR_SERVICE_UNKNOWN) != 0 ||
                        sd_bus_error_has_name(&error, SD_BUS_ERROR_NAME_HAS_NO_OWNER) != 0 ||
                        sd_bus_error_has_name(&error, SD_BUS_ERROR_NO_REPLY) != 0;
    sd_bus_error_free(&error);
    if (called >= 0) return Asked::answered;
    return isGone ? Asked::nobodyRuns : Asked::isSilent;
}

bool isRunning(sd_bus* bus) {
    const Message reply = atspi::callBlocking(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                              "org.freedesktop.DBus", "NameHasOwner", kLimit, kName);
    int hasOwner = 0;
    return reply && sd_bus_message_read_basic(reply.get(), 'b', &hasOwner) >= 0 && hasOwner != 0;
}

}  // namespace

// Each answers, and leaves what it is asked for until the bus has been dealt with: that may take its time, have a loop
// of its own, or end the program.
struct RunningInstance::Methods {
    static RunningInstance& of(void* data) { return *static_cast<RunningInstance*>(data); }

    static int activate(sd_bus_message* message, void* data, sd_bus_error*) {
        of(data).asked_.push_back(of(data).requests_.activate);
        return sd_bus_reply_method_return(message, nullptr);
    }

    static int open(sd_bus_message* message, void* data, sd_bus_error*) {
        if (const int entered = sd_bus_message_enter_container(message, 'a', "s"); entered < 0) return entered;
        std::vector<std::string> addresses;
        const char* address = nullptr;
        while (sd_bus_message_read_basic(message, 's', &address) > 0) addresses.emplace_back(address);
        of(data).asked_.push_back(
            [open = of(data).requests_.open, addresses = std::move(addresses)] { open(addresses); });
        return sd_bus_reply_method_return(message, nullptr);
    }

    static int activateAction(sd_bus_message* message, void* data, sd_bus_error* error) {
        const char* name = nullptr;
        if (const int read = sd_bus_message_read_basic(message, 's', &name); read < 0) return read;
        const std::string_view action = name;
        if (action != "settings" && action != "quit")
            return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "There is no such action");
        const InstanceRequests& requests = of(data).requests_;
        of(data).asked_.push_back(action == "quit" ? requests.quit : requests.showSettings);
        return sd_bus_reply_method_return(message, nullptr);
    }

    static inline const std::array<sd_bus_vtable, 5> table{{
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("Activate", "a{sv}", "", activate, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("Open", "asa{sv}", "", open, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("ActivateAction", "sava{sv}", "", activateAction, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END,
    }};
};

std::unique_ptr<RunningInstance> RunningInstance::claim() {
    Bus bus = atspi::connectToSession();
    if (bus && sd_bus_request_name(bus.get(), kName, 0) == -EEXIST) return nullptr;
    return std::unique_ptr<RunningInstance>(new RunningInstance(std::move(bus)));
}

Subscription RunningInstance::serve(ReadWatcher& watcher, InstanceRequests requests) {
    if (!bus_) return {};
    requests_ = std::move(requests);
    sd_bus_slot* raw = nullptr;
    if (sd_bus_add_object_vtable(bus_.get(), &raw, kPath, kInterface, Methods::table.data(), this) >= 0)
        object_.reset(raw);
    watching_ = watcher.onReadable(sd_bus_get_fd(bus_.get()), [this] { answer(); });
    answer();
    return Subscription([this] {
        watching_.reset();
        object_.reset();
    });
}

void RunningInstance::answer() {
    int processed = 0;
    do processed = sd_bus_process(bus_.get(), nullptr);
    while (processed > 0);
    if (processed < 0) watching_.reset();  // the bus has gone; its socket would be readable for ever
    sd_bus_flush(bus_.get());
    for (const auto& request : std::exchange(asked_, {})) request();
}

Asked askToOpen(std::span<const std::string> addresses) {
    const Bus bus = atspi::connectToSession();
    const Message call = callOf(bus.get(), "Open");
    if (!call) return Asked::nobodyRuns;
    bool isFilled = sd_bus_message_open_container(call.get(), 'a', "s") >= 0;
    for (const std::string& address : addresses)
        isFilled = isFilled && sd_bus_message_append_basic(call.get(), 's', address.c_str()) >= 0;
    isFilled = isFilled && sd_bus_message_close_container(call.get()) >= 0 &&
               sd_bus_message_append(call.get(), "a{sv}", 0) >= 0;
    return isFilled ? send(bus.get(), call) : Asked::isSilent;
}

Asked askToActivate() {
    const Bus bus = atspi::connectToSession();
    const Message call = callOf(bus.get(), "Activate");
    if (!call || sd_bus_message_append(call.get(), "a{sv}", 0) < 0) return Asked::nobodyRuns;
    return send(bus.get(), call);
}

Asked askToQuit() {
    const Bus bus = atspi::connectToSession();
    const Message call = callOf(bus.get(), "ActivateAction");
    if (!call || sd_bus_message_append(call.get(), "sava{sv}", "quit", 0, 0) < 0) return Asked::nobodyRuns;
    const Asked asked = send(bus.get(), call);
    const Clock::time_point deadline = Clock::now() + kLimit;
    while (asked == Asked::answered && isRunning(bus.get())) {
        if (Clock::now() > deadline) return Asked::isSilent;
        std::this_thread::sleep_for(kPause);
    }
    return asked;
}

}  // namespace tarvix
