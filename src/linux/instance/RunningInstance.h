// The one running program of a session, known by its name on the session bus.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/Subscription.h"
#include "linux/atspi/SdBus.h"
#include "platform/RunLoop.h"

namespace tarvix {

// What others may ask of it: another start of the program, a launcher, a script. Main thread.
struct InstanceRequests {
    std::function<void()> activate;  // it is started again
    std::function<void(const std::vector<std::string>& addresses)> open;
    std::function<void()> showSettings, quit;  // its actions "settings" and "quit"
};

// Has the name as long as it exists, and exports the interface org.freedesktop.Application.
class RunningInstance {
public:
    // Takes the name, at once; who calls it before it serves waits. Null where another process has the name. Without a
    // session bus nobody can have it: then every process is an instance, and nobody ever calls.
    static std::unique_ptr<RunningInstance> claim();

    // Answers what has been asked so far, before it returns, and from then on whatever comes, until the token is
    // dropped.
    [[nodiscard]] Subscription serve(ReadWatcher& watcher, InstanceRequests requests);

private:
    struct Methods;

    explicit RunningInstance(atspi::Bus bus) : bus_(std::move(bus)) {}
    void answer();

    atspi::Bus bus_;  // null without a session bus
    InstanceRequests requests_;
    std::vector<std::function<void()>> asked_;  // answered, and still to be done
    atspi::Slot object_;
    Subscription watching_;
};

// How asking the running program went. Each waits for its answer for five seconds at most, and starts nothing.
enum class Asked : std::uint8_t {
    answered,
    nobodyRuns,  // or it has ended instead of answering
    isSilent,
};
// An address that is no valid UTF-8 can't be handed over, and nothing is then.
Asked askToOpen(std::span<const std::string> addresses);
Asked askToActivate();
// Waits for its end besides; isSilent if it doesn't come.
Asked askToQuit();

}  // namespace tarvix
