// The windows on the screen with the desktop's own panels told apart.
#pragma once

#include <memory>

#include "base/Outcome.h"
#include "linux/x11/X11Windows.h"
#include "platform/WindowServer.h"

namespace tarvix {

// A panel has layer 25, since it is what hosts status items. The owner of the dock's panels is "Dock". Panels that
// hide, or are behind another window, aren't on the screen (linux/x11/Panels.h).
class X11WindowServer final : public WindowServer {
public:
    // The windows outlive the server.
    static Outcome<std::unique_ptr<X11WindowServer>> open(X11Windows& windows);

    std::optional<std::vector<WindowInfo>> onScreenWindows() override;

private:
    explicit X11WindowServer(X11Windows& windows) : windows_(windows) {}

    X11Windows& windows_;
};

}  // namespace tarvix
