// How long the candidates of the active window take to gather, beside the same reading done one blocking call at a
// time, and beside the floor: the very calls of the reading, sent by a bare pipelined loop.
//
// usage: bench_gather NAME   (on the display where the application is running; prints one row, or the header without
// NAME)

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "linux/atspi/AtspiService.h"
#include "linux/atspi/WindowFetch.h"
#include "linux/x11/X11WindowServer.h"
#include "linux/x11/X11Windows.h"
#include "search/SearchEngine.h"
#include "simulated/SimulatedDesktop.h"

namespace tarvix {
namespace {

constexpr int kRounds = 15;

double milliseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

// The recorded calls again, all at once, with nothing done with the replies.
void replay(atspi::Applications& applications, const atspi::WindowTree& tree) {
    const auto deadline = atspi::Clock::now() + atspi::Milliseconds(5000);
    auto lease = applications.connect(tree.application, deadline);
    if (!lease) return;
    atspi::Pipeline pipeline(lease->bus(), deadline);
    for (const atspi::Call& call : tree.record) pipeline.send(call, [](sd_bus_message*) {});
    pipeline.run();
}

struct Row {
    std::size_t candidates = 0, calls = 0, blockingCalls = 0;
    std::vector<double> ours, blocking, floor;
};

int measure(const char* name) {
    auto windows = X11Windows::open();
    if (!windows) return std::fprintf(stderr, "bench_gather: %s\n", windows.reason().c_str()), 1;
    const auto active = windows.value()->active();
    if (!active) return std::fprintf(stderr, "bench_gather: no active window\n"), 1;
    auto service = AtspiService::open(*windows.value());
    // What isn't measured is simulated: settings, and an application that is frontmost.
    SimulatedDesktop desktop;
    Platform platform = desktop.platform();
    const Platform measured{.accessibility = *service.value(),
                            .application = platform.application,
                            .workspace = platform.workspace,
                            .windowServer = platform.windowServer,
                            .screens = platform.screens,
                            .events = platform.events,
                            .eventTaps = platform.eventTaps,
                            .hotKeys = platform.hotKeys,
                            .inputSources = platform.inputSources,
                            .panels = platform.panels,
                            .runLoop = platform.runLoop,
                            .userDefaults = platform.userDefaults,
                            .pasteboard = platform.pasteboard,
                            .notificationCenter = platform.notificationCenter,
                            .milestones = platform.milestones,
                            .statusBar = platform.statusBar,
                            .loginItems = platform.loginItems,
                            .updater = platform.updater};
    const SearchEngine search(measured);
    atspi::Applications applications;
    atspi::FetchOptions recorded, blocking;
    recorded.record = true;
    blocking.mode = atspi::Pipeline::Mode::oneAtATime;
    blocking.overBus = true;
    blocking.bulk = false;
    blocking.limit = atspi::Milliseconds(30'000);
    Row row;
    search.candidates(active->pid);  // the first contact is not what a search costs
    atspi::fetchWindow(applications, *active, recorded);
    for (int round = 0; round < kRounds; ++round) {
        row.ours.push_back(milliseconds([&] { row.candidates = search.candidates(active->pid).size(); }));
        const auto tree = atspi::fetchWindow(applications, *active, recorded);
        if (!tree) return std::fprintf(stderr, "bench_gather: %s shows no tree\n", name), 1;
        row.calls = tree->calls;
        row.floor.push_back(milliseconds([&] { replay(applications, *tree); }));
        if (round % 3 == 0)
            row.blocking.push_back(milliseconds([&] {
                if (const auto slow = atspi::fetchWindow(applications, *active, blocking))
                    row.blockingCalls = slow->calls;
            }));
    }
    const double ours = median(row.ours), slow = median(row.blocking), floor = median(row.floor);
    std::printf("%-22s %10zu %9.1f %6zu %11.1f %6zu %8.1f %9.1f %8.2f\n", name, row.candidates, ours, row.calls, slow,
                row.blockingCalls, slow / ours, floor, ours / floor);
    return 0;
}

}  // namespace
}  // namespace tarvix

int main(int argc, char** argv) {
    if (argc < 2) {
        std::printf("%-22s %10s %9s %6s %11s %6s %8s %9s %8s\n", "gather", "candidates", "ms", "calls", "blocking ms",
                    "calls", "times", "floor ms", "of floor");
        return 0;
    }
    return tarvix::measure(argv[1]);
}
