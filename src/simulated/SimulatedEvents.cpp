#include "simulated/SimulatedEvents.h"

#include <array>

namespace tarvix {

namespace {

constexpr std::array kMouseWords = {"", "left down", "left up", "right down", "right up", "moved"};

std::string place(AxPoint point) { return numeral(point.x) + "," + numeral(point.y); }

// "moved to 90,20", "left down", "left down at 90,20" away from the pointer, ", click 2", ", flags 0".
std::string describe(const MouseEvent& event, AxPoint pointer) {
    std::string text = kMouseWords.at(static_cast<std::size_t>(event.type));
    if (event.type == MouseEventType::mouseMoved) {
        text += " to " + place(event.point);
    } else if (event.point != pointer) {
        text += " at " + place(event.point);
    }
    if (event.clickState > 1) text += ", click " + std::to_string(event.clickState);
    if (event.flags) text += ", flags " + std::to_string(*event.flags);
    return text;
}

}  // namespace

bool SimulatedEvents::post(const MouseEvent& event) {
    if (faults_.strike("postMouse")) return false;
    mouseEvents.push_back(event);
    journal_.note(Topic::mouse, describe(event, flip(screens_.pointer, screens_.firstHeight())));
    screens_.pointer = flip(event.point, screens_.firstHeight());
    return true;
}

bool SimulatedEvents::post(const KeyEvent& event) {
    if (faults_.strike("postKey")) return false;
    keyEvents.push_back(event);
    journal_.note(Topic::key, std::string(event.type == KeyEventType::keyDown ? "key down " : "key up ") +
                                  std::to_string(event.keyCode) + " flags " + std::to_string(event.flags));
    deliver_(event);
    return true;
}

Subscription SimulatedEvents::monitorKeyDown(std::function<Verdict(const KeyEvent&)> seen) {
    monitor_ = std::make_shared<Monitor>(std::move(seen));
    return Subscription([monitor = std::weak_ptr(monitor_)] {
        if (const auto alive = monitor.lock()) *alive = nullptr;
    });
}

Verdict SimulatedEvents::offer(const KeyEvent& event) {
    const Monitor monitor = isMonitored() ? *monitor_ : nullptr;  // it may be removed while it runs
    return monitor ? monitor(event) : Verdict::pass;
}

}  // namespace tarvix
