// Every question of geometry on the desktop, with the answers remembered for one search session.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "ax/AccessibilityElement.h"
#include "display/FocusedObject.h"
#include "display/Screen.h"
#include "platform/Accessibility.h"

namespace tarvix {

// A first answer stands until resetCaches(), also for another argument; an absent one is asked for again. Main thread.
class DisplayEngineProtocol {
public:
    virtual ~DisplayEngineProtocol() = default;

    // In the desktop's order; the height of the first one is what every flip of y uses.
    virtual std::vector<Screen> screens() = 0;
    virtual std::optional<Screen> firstScreen() = 0;
    // The screen with the keyboard focus.
    virtual std::optional<Screen> mainScreen() = 0;
    virtual bool screensHaveSeparateSpaces() = 0;

    // Cached. Where the mouse stood when first asked.
    virtual FocusedMouse focusedMouse() = 0;
    // Not cached. Absent where the focused element tells no caret.
    virtual std::optional<FocusedCaret> focusedCaret() = 0;
    // Cached. The focused element's top left corner; for a text area its parent's, which is what scrolls it.
    virtual std::optional<FocusedInput> focusedInput() = 0;
    // Cached. The focused window of the application with the accessibility focus.
    virtual std::optional<FocusedWindow> focusedWindow() = 0;
    // Cached. The main window of the frontmost application.
    virtual std::optional<FocusedWindow> mainWindow() = 0;
    // Not cached. The main window of an application that need not be frontmost.
    virtual std::optional<FocusedWindow> mainWindowOf(std::int32_t pid) = 0;
    virtual std::optional<std::uint32_t> windowNumber(const UIElement& element) = 0;

    // Cached. The screen under a point in panel coordinates; with fewer than two screens the first one.
    virtual std::optional<Screen> screenContaining(double x, double y) = 0;
    // Cached. The screen that a window belongs to, by its corners.
    virtual std::optional<Screen> screenFor(const std::optional<FocusedWindow>& window) = 0;

    virtual void resetCaches() = 0;

    std::optional<FocusedMouse> cachedFocusedMouse;
    std::optional<FocusedInput> cachedFocusedInput;
    std::optional<FocusedWindow> cachedFocusedWindow;
    std::optional<FocusedWindow> cachedMainWindow;
    std::optional<Screen> cachedScreenForPoint;
    std::optional<Screen> cachedScreenForWindow;
};

// Where an element's marker has its bottom left corner, relative to that of a canvas with this frame.
inline PanelPoint markerOrigin(const AccessibilityElement& element, PanelRect canvasFrame, const Screen& firstScreen) {
    return {element.position.x - canvasFrame.origin.x,
            (firstScreen.height() - canvasFrame.origin.y) - (element.position.y + element.size.height)};
}

}  // namespace tarvix
