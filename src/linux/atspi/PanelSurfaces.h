// The tray and the dock, as rows of elements.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "linux/atspi/ApplicationReads.h"
#include "linux/atspi/Applications.h"
#include "linux/atspi/PanelItems.h"
#include "linux/atspi/PanelTrees.h"
#include "linux/atspi/StatusNotifiers.h"
#include "linux/x11/DesktopEntries.h"
#include "linux/x11/X11Windows.h"

namespace tarvix::atspi {

// Any thread. Reads only panels that show (linux/x11/Panels.h), and waits for a program that doesn't answer at most
// four tenths of a second the first time, later on for next to nothing.
class PanelSurfaces {
public:
    PanelSurfaces(Applications& applications, X11Windows& windows) : windows_(windows), trees_(applications) {}

    // What the panels of a process show in this row. Absent where that is nothing; the dock's row is the dock's alone.
    std::optional<Surface> surfaceOf(std::int32_t pid, PanelRow row);

private:
    std::vector<PanelItem> itemsOf(std::int32_t pid, const std::vector<X11Window>& panels,
                                   std::vector<X11Window> clients);
    DesktopEntries& entries();

    X11Windows& windows_;
    PanelTrees trees_;
    StatusNotifiers notifiers_;
    std::mutex mutex_;
    std::unique_ptr<DesktopEntries> entries_;  // read when a panel is first met; guarded by mutex_
};

}  // namespace tarvix::atspi
