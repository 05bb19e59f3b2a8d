#include "core/Pointer.h"

#include <array>

#include "platform/Accessibility.h"
#include "platform/Screens.h"

namespace tarvix {

namespace {

constexpr double kLinkInset = 9;

struct ButtonRow {
    MouseEventType down, up;
    int number;
};

// In the order of the cases of MouseButton.
constexpr std::array<ButtonRow, 2> kButtons = {{
    {MouseEventType::leftMouseDown, MouseEventType::leftMouseUp, 0},
    {MouseEventType::rightMouseDown, MouseEventType::rightMouseUp, 1},
}};

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
    postDownAndUp({.point = point, .clickState = 1}, button);
}

void Pointer::postDoubleClick(MouseButton button, AxPoint point) const {
    postMove(point);
    for (const int clickState : {1, 2}) postDownAndUp({.point = point, .clickState = clickState, .flags = 0}, button);
}

void Pointer::postDownAndUp(MouseEvent event, MouseButton button) const {
    const ButtonRow& row = kButtons.at(static_cast<std::size_t>(button));
    event.button = row.number;
    for (const MouseEventType type : {row.down, row.up}) {
        event.type = type;
        platform_.events.post(event);
    }
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
