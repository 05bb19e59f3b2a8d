// Operating other applications at a point of the desktop.
#pragma once

#include <optional>

#include "ax/AccessibilityElement.h"
#include "core/TarvixEngineProtocol.h"
#include "platform/Events.h"
#include "platform/Platform.h"

namespace tarvix {

// Where a click on the element goes: its centre, but for a link near its lower left corner, as the frame of a link that
// runs over two lines has its middle beside the text.
AxPoint clickPoint(const AccessibilityElement& element);

// A radio button is pressed and never clicked; a tab, which is a radio button with a subrole of its own, is clicked.
bool isPressed(const AccessibilityElement& element);

// Posts without waiting for delivery. An event that can't be made is left out, and the rest of the action goes on. Main
// thread.
class Pointer {
public:
    explicit Pointer(const Platform& platform) : platform_(platform) {}

    // Absent without a screen.
    std::optional<AxPoint> currentMousePosition() const;
    void postMove(AxPoint point) const;
    // The modifiers that the user holds stay in effect.
    void postClick(MouseButton button, AxPoint point) const;
    // With a move to the point first, and without any modifier.
    void postDoubleClick(MouseButton button, AxPoint point) const;
    // Presses the element at the point through the accessibility interface; where there is none, a left click.
    void pressAt(AxPoint point) const;
    // Whichever of the two the element wants; none is clicked.
    void act(const std::optional<AccessibilityElement>& element, MouseButton button, AxPoint point) const;

private:
    void postDownAndUp(MouseEvent event, MouseButton button) const;

    Platform platform_;
};

}  // namespace tarvix
