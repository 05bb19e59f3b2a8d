// Which desktop file a running program belongs to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "linux/x11/DesktopEntries.h"
#include "linux/x11/X11Windows.h"

namespace tarvix {

// Any thread.
class ProgramEntries {
public:
    // By all that a process and one of its windows, which may be null, tell of it. A sandboxed program has an entry
    // even where its file can't be seen. Absent when nothing installed fits.
    std::optional<DesktopEntry> of(std::int32_t pid, const X11Window* window);

private:
    DesktopEntry ofSnap(const std::string& snap);

    DesktopEntries entries_;
};

}  // namespace tarvix
