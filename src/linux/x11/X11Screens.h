// The monitors and the pointer.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "base/Outcome.h"
#include "base/Subscription.h"
#include "linux/x11/X11Connection.h"
#include "platform/Screens.h"

namespace tarvix {

// Units are pixels of the root window. The monitors are asked for once and kept until the server says that they have
// changed; the pointer and the active window are asked for each time, in one or two round trips.
class X11Screens final : public Screens {
public:
    // The connection outlives the screens.
    static Outcome<std::unique_ptr<X11Screens>> open(X11Connection& connection);

    std::vector<PanelRect> frames() override;
    std::optional<PanelRect> mainFrame() override;
    bool haveSeparateSpaces() override { return false; }
    PanelPoint mouseLocation() override;

private:
    X11Screens(X11Connection& connection, bool hasMonitors);
    // The monitors in root coordinates, the primary one first; the whole root window where the server knows of none.
    std::vector<AxRect> monitors();
    std::vector<AxRect> readMonitors(X11Connection& x) const;
    bool tellsOfMonitors(const xcb_generic_event_t& event) const;
    std::optional<PanelRect> mainFrameElsewhere();

    X11Connection& x_;
    bool hasMonitors_;
    std::uint8_t firstEvent_ = 0;   // of the extension that tells of monitors
    std::vector<AxRect> monitors_;  // empty until they are asked for
    std::thread::id mainThread_ = std::this_thread::get_id();
    std::mutex mutex_;                          // guards the next
    std::unique_ptr<X11Connection> elsewhere_;  // what other threads ask on; none until one does
    Subscription changes_;
};

}  // namespace tarvix
