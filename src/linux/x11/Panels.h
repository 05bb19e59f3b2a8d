// Which windows are the desktop's panels, which of them a person sees, and which program is the dock.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "linux/x11/X11Windows.h"

namespace tarvix {

// A panel is a window of the type DOCK: what hosts status items, the list of tasks, or a dock's items.
bool isPanel(const X11Window& window);

// Whether its program is a dock and hosts no status items.
bool isDockProgram(const X11Window& panel);

// The panels that can be seen and clicked, front to back. `windows` are those on the screen, front to back. One that
// hides itself leaves a strip of a few pixels at the edge of the screen, or an empty input shape; one that is behind a
// single other window with the whole of itself isn't seen either.
std::vector<X11Window> panelsThatShow(const std::vector<X11Window>& windows);

// The process that is the dock: that of a program that is a dock and nothing else; without one, that of the panel that
// has the most buttons of tasks; where no panel says where it has any, that of the largest panel. A panel counts
// whether it shows or not, so that the desktop's dock isn't another one while it hides. Absent without a panel.
// `clients` are all windows that may have such a button.
std::optional<std::int32_t> dockProcess(const std::vector<X11Window>& windows, const std::vector<X11Window>& clients);

// The same as the X server has it now: none, or one.
std::vector<std::int32_t> dockProcesses(X11Windows& windows);

}  // namespace tarvix
