// The monitors and the pointer.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "base/Outcome.h"
#include "linux/x11/X11Connection.h"
#include "platform/Screens.h"

namespace tarvix {

// Units are pixels of the root window. Every answer is asked of the server anew, in one or two round trips.
class X11Screens final : public Screens {
public:
    // The connection outlives the screens.
    static Outcome<std::unique_ptr<X11Screens>> open(X11Connection& connection);

    std::vector<PanelRect> frames() override;
    std::optional<PanelRect> mainFrame() override;
    bool haveSeparateSpaces() override { return false; }
    PanelPoint mouseLocation() override;

private:
    X11Screens(X11Connection& connection, bool hasMonitors) : x_(connection), hasMonitors_(hasMonitors) {}
    // The monitors in root coordinates, the primary one first; the whole root window where the server knows of none.
    std::vector<AxRect> monitors();
    std::optional<AxRect> activeWindow();
    AxPoint pointer();

    X11Connection& x_;
    bool hasMonitors_;
};

}  // namespace tarvix
