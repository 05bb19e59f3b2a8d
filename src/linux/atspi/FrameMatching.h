// Which accessible frame is which window on the screen.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "linux/atspi/Node.h"
#include "linux/x11/X11Windows.h"

namespace tarvix::atspi {

// What an application says of one of its frames.
struct FrameTraits {
    Role role = Role::invalid;
    std::string title;
    bool isActive = false, isShowing = false;
    bool isPopup = false;       // its window is an override-redirect one for certain
    bool isPlaced = true;       // its box has a place on the screen, not a size alone
    std::optional<RawBox> box;  // in the toolkit's own units; absent: the frame can't be read
};

// What the window server says of one of the windows.
struct WindowTraits {
    X11Window window;
    bool isActive = false;
};

// What speaks for a frame's being a window.
struct Likeness {
    bool isPossible = false;
    bool title = false, active = false;
    bool size = false;   // the very size
    bool shape = false;  // a size that some scale makes the same
    bool place = false;
    bool kind = false;     // a dialog and a dialog, a popup and a popup
    bool showing = false;  // the frame claims to be on the screen

    int score() const;
};
Likeness likeness(const FrameTraits& frame, const WindowTraits& window);

struct FrameMatch {
    std::size_t frame = 0;
    Likeness likeness;
};

// The frame of `windows[asked]` among those of one application, where the windows are all that its process shows. Each
// window gets the frame that is most like it, the surest pairs first, so that of two windows with the same title and
// size the active one can't be taken for the other. What nothing tells apart stands in the same order on both sides:
// that in which it was made. Absent where no frame is left that anything speaks for.
std::optional<FrameMatch> frameOf(std::size_t asked, std::span<const WindowTraits> windows,
                                  std::span<const FrameTraits> frames);

// The same without a look at the other windows, where one frame alone has the window's title and size; absent where
// it takes that look.
std::optional<FrameMatch> obviousFrameOf(const X11Window& window, std::span<const FrameTraits> frames);

// Which of an application's other frames are popups of its windows: those that are open and stand where a window does
// that no manager has placed there. `own` is the frame that they are popups of.
std::vector<std::size_t> popupsBeside(std::size_t own, std::span<const WindowTraits> windows,
                                      std::span<const FrameTraits> frames);

// Whether a frame may be open as a popup, so that a look at the windows is worth it: windows of another kind have
// titles.
bool mayBePopup(const FrameTraits& frame);

// Whether a frame may be the window although its application is, by its process, another: what a sandbox has between
// itself and the bus has a process of its own.
bool maySpeakFor(const Likeness& likeness);

}  // namespace tarvix::atspi
