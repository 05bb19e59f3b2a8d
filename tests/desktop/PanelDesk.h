// What tests with real panels share.
#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "ax/AXEngine2.h"
#include "linux/atspi/SdBus.h"
#include "linux/x11/Panels.h"
#include "tests/desktop/RealServices.h"
#include "tests/desktop/play/Await.h"
#include "tests/desktop/play/Fixture.h"
#include "tests/desktop/play/Process.h"

namespace tarvix {

constexpr std::chrono::seconds kUntilShown{30};

// As await(), for what asks so much that asking at every moment would keep the panel from answering.
template <class Condition>
bool eventually(std::chrono::milliseconds limit, Condition condition) {
    return await(limit, [&] {
        if (condition()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return false;
    });
}

// A folder of configuration files of its own.
class Configuration {
public:
    void write(const std::string& name, const std::string& text) const {
        const std::filesystem::path path = folder_.file(name);
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }
    std::string file(const std::string& name) const { return folder_.file(name); }
    Process::Environment environment() const { return {{"XDG_CONFIG_HOME", folder_.file("")}}; }

private:
    ScratchFolder folder_;
};

// What reads the panels, and knows which of them is the dock. `services` outlive it.
inline AXEngine2 engineWithDock(RealServices& services) {
    X11Windows& windows = *services.windows;
    services.workspace->setRole("com.apple.dock", [&windows] { return dockProcesses(windows); });
    return AXEngine2(services.platform());
}

// Whether somebody shows what tells of itself on the session bus. A program of Qt that starts before that embeds a
// window.
inline bool hasNotifierHost() {
    constexpr const char* name = "org.kde.StatusNotifierWatcher";
    const atspi::Bus session = atspi::connectToSession();
    return eventually(kUntilShown, [&] {
        int isThere = 0;
        return sd_bus_get_property_trivial(session.get(), name, "/StatusNotifierWatcher", name,
                                           "IsStatusNotifierHostRegistered", nullptr, 'b', &isThere) >= 0 &&
               isThere != 0;
    });
}

}  // namespace tarvix
