#include "linux/atspi/AccessibilitySwitch.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "linux/atspi/SdBus.h"

namespace tarvix::atspi {

namespace {

constexpr auto kLauncher = "org.a11y.Bus";
constexpr auto kPath = "/org/a11y/bus";
constexpr auto kStatus = "org.a11y.Status";
constexpr std::chrono::seconds kLimit{3};  // it may have to be started, while a session comes up

bool isEnabled(sd_bus* session) {
    int enabled = 0;
    sd_bus_error error = SD_BUS_ERROR_NULL;
    sd_bus_set_method_call_timeout(session, static_cast<std::uint64_t>(std::chrono::microseconds(kLimit).count()));
    const int got = sd_bus_get_property_trivial(session, kLauncher, kPath, kStatus, "IsEnabled", &error, 'b', &enabled);
    sd_bus_error_free(&error);
    return got >= 0 && enabled != 0;
}

void setEnabled(sd_bus* session) {
    sd_bus_message* raw = nullptr;
    if (sd_bus_message_new_method_call(session, &raw, kLauncher, kPath, "org.freedesktop.DBus.Properties", "Set") < 0)
        return;
    const Message call(raw);
    if (sd_bus_message_set_expect_reply(raw, 0) < 0) return;
    if (sd_bus_message_append(raw, "ssv", kStatus, "IsEnabled", "b", 1) < 0) return;
    sd_bus_send(session, raw, nullptr);
    sd_bus_flush(session);
}

// Where GNOME and GTK look when a session begins. Most launchers of the accessibility bus set it by themselves; the
// newest ones don't.
void keepEnabled() {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&actions, standard, "/dev/null", O_RDWR, 0);
    const char* command[] = {"gsettings", "set",  "org.gnome.desktop.interface", "toolkit-accessibility",
                             "true",      nullptr};
    pid_t pid = -1;
    if (posix_spawnp(&pid, command[0], &actions, nullptr, const_cast<char* const*>(command), environ) == 0)
        waitpid(pid, nullptr, 0);
    posix_spawn_file_actions_destroy(&actions);
}

}  // namespace

bool isAccessibilityOn(sd_bus* session) {
    if (!isEnabled(session)) return false;
    const auto address = accessibilityBusAddress(session);
    return address && connectTo(*address, Peer::messageBus);
}

void switchAccessibilityOn(sd_bus* session) {
    setEnabled(session);
    std::thread(keepEnabled).detach();
}

}  // namespace tarvix::atspi
