#include "tests/desktop/play/DesktopScale.h"

#include <signal.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>

#include "tests/desktop/play/Await.h"

namespace tarvix {

namespace {

constexpr int kPerDot = 1024;  // of the settings' units

void loadResources(const std::string& text) {
    const int status = std::system(("printf '%b' '" + text + "' | xrdb -load -").c_str());
    if (status != 0) std::abort();  // nothing that follows would mean anything
}

bool isThereASettingsManager() {
    constexpr const char* name = "_XSETTINGS_S0";
    xcb_connection_t* x = xcb_connect(nullptr, nullptr);
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(x, xcb_intern_atom(x, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr),
        &std::free);
    bool isThere = false;
    if (atom) {
        const std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&std::free)> owner(
            xcb_get_selection_owner_reply(x, xcb_get_selection_owner(x, atom->atom), nullptr), &std::free);
        isThere = owner && owner->owner != XCB_WINDOW_NONE;
    }
    xcb_disconnect(x);
    return isThere;
}

}  // namespace

ResourceDpi::ResourceDpi(int dpi) { loadResources("Xft.dpi: " + std::to_string(dpi) + "\\n"); }

ResourceDpi::~ResourceDpi() { loadResources(""); }

SettingsManager::SettingsManager(int dpi, int windowScale) {
    setDpi(dpi, windowScale);
    process_.emplace(std::vector<std::string>{"xsettingsd", "--config", folder_.file("settings")});
}

bool SettingsManager::isReady() { return await(std::chrono::seconds(5), isThereASettingsManager); }

void SettingsManager::setDpi(int dpi, int windowScale) {
    {
        std::ofstream file(folder_.file("settings"));
        file << "Xft/DPI " << dpi * kPerDot << "\n"
             << "Gdk/UnscaledDPI " << dpi * kPerDot / windowScale << "\n"
             << "Gdk/WindowScalingFactor " << windowScale << "\n";
    }
    if (process_) process_->send(SIGHUP);  // it reads its file again
}

}  // namespace tarvix
