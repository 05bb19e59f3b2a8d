// What is on the screen, as the window server sees it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Geometry.h"

namespace tarvix {

struct WindowInfo {
    std::uint32_t number = 0;
    std::int32_t ownerPid = -1;  // -1 where it is not known
    std::string ownerName;       // "Dock" for the desktop's dock, whatever program it is
    int layer = 0;               // 25 for panels that host status items
    AxRect bounds;
    friend bool operator==(const WindowInfo&, const WindowInfo&) = default;
};

// Any thread.
class WindowServer {
public:
    virtual ~WindowServer() = default;
    // The windows that are on the screen, front to back, without the desktop's own background; nothing when the window
    // server doesn't say.
    virtual std::optional<std::vector<WindowInfo>> onScreenWindows() = 0;
};

}  // namespace tarvix
