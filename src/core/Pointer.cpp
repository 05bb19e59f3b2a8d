#include "core/Pointer.h"

#include "platform/Accessibility.h"
#include "platform/Events.h"
#include "platform/Screens.h"

namespace tarvix {

namespace {

constexpr double kLinkInset = 9;

}  // namespace

AxPoint clickPoint(const AccessibilityElement& element) {
    const auto [x, y] = element.position;
    const auto [width, height] = element.size;
    if (element.role == AccessibilityElementRole::link) return {x + kLinkInset, y + (height - kLinkInset)};
    return {x + width * 0.5, y + height * 0.5};
}

bool isPressed(const AccessibilityElement& element) {
    return element.role == AccessibilityElementRole::radioButton && element.subrole != "AXTabButton";
}

std::optional<AxPoint> Pointer::currentMousePosition() const {
    const std::vector<PanelRect> screens = platform_.screens.frames();
    if (screens.empty()) return std::nullopt;
    return flip(platform_.screens.mouseLocation(), screens.front().height());
}

void Pointer::postMove(AxPoint point) const {
    platform_.events.post(MouseEvent{.type = MouseEventType::mouseMoved, .point = point});
}

void Pointer::postClick(MouseButton button, AxPoint point) const {
    const bool right = button == MouseButton::right;
    MouseEvent event{.type = right ? MouseEventType::rightMouseDown : MouseEventType::leftMouseDown,
                     .point = point,
                     .button = right ? 1 : 0,
                     .clickState = 1};
    platform_.events.post(event);
    event.type = right ? MouseEventType::rightMouseUp : MouseEventType::leftMouseUp;
    platform_.events.post(event);
}

void Pointer::pressAt(AxPoint point) const {
    const AxResult<std::optional<UIElement>> found = platform_.accessibility.elementAt(point);
    if (found.ok() && found.value) {
        platform_.accessibility.perform(*found.value, ax::press);
    } else {
        postClick(MouseButton::left, point);
    }
}

void Pointer::act(const std::optional<AccessibilityElement>& element, MouseButton button, AxPoint point) const {
    if (element && isPressed(*element)) {
        pressAt(point);
    } else {
        postClick(button, point);
    }
}

}  // namespace tarvix
