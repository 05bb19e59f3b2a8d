// From an X11 window to the tree of what shows in it.
#pragma once

#include <optional>
#include <vector>

#include "linux/atspi/Applications.h"
#include "linux/atspi/Pipeline.h"
#include "linux/atspi/Placement.h"

namespace tarvix::atspi {

struct WindowTree {
    Application application;
    Placement placement;
    NodeTree nodes;               // index 0 is the frame
    std::optional<AxRect> reach;  // of the window with the popups that hang out of it, where some do
    std::size_t calls = 0;        // bus calls that it took, those to the bus and the registry not counted
    std::vector<Call> record;     // these calls, when asked to be kept
};

struct FetchOptions {
    Pipeline::Mode mode = Pipeline::Mode::pipelined;
    bool overBus = false;  // never the application's own socket
    bool bulk = true;      // all objects in one call where the toolkit can; else each by itself
    bool record = false;
    bool waitsForTree = true;      // at a first contact, for what a toolkit makes on demand
    X11Windows* screen = nullptr;  // tells the windows of a process apart, and where popups stand
    Milliseconds limit{1500};
};

// Fetches the window's tree; blocks up to options.limit, and at a first contact with a browser, which makes its tree on
// demand, somewhat longer. What had arrived when the time was up stands. Absent when the window's process shows no
// frame. The open menus and lists of the window are in its tree, those that are windows of their own included.
std::optional<WindowTree> fetchWindow(Applications& applications, const X11Window& window, const FetchOptions& options);

// The accessible frame of a window: among those of its process, or, where that shows none on the bus, as a sandboxed
// program doesn't, the one that is the window for all that can be seen. `screen` as in FetchOptions.
struct FrameFound {
    Application application;
    Reference reference;
    RawBox box;
    std::vector<Reference> popups;  // open ones that the application lists beside its frames
};
std::optional<FrameFound> findFrame(Applications& applications, const X11Window& window, X11Windows* screen,
                                    Clock::time_point deadline);

}  // namespace tarvix::atspi
