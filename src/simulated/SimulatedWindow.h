// A window as a test states it.
#pragma once

#include <cstdint>
#include <string>

#include "simulated/SimulatedAccessibility.h"

namespace tarvix {

// Elements are added one after another and lie in the window in that order. Frames are on the desktop, in accessibility
// coordinates.
struct SimulatedWindow {
    SimulatedWindow& button(const std::string& title, AxRect frame) {
        return add({.role = "AXButton", .title = title, .frame = frame, .children = {}});
    }
    SimulatedWindow& add(const SimulatedElement& child) {
        last = accessibility->add(element, child);
        return *this;
    }
    // What a read of the attribute of the window itself gives from now on.
    SimulatedWindow& set(std::string_view attribute, AxValue value) {
        accessibility->set(element, attribute, std::move(value));
        return *this;
    }

    SimulatedAccessibility* accessibility;
    std::int32_t pid;
    std::uint32_t number;
    UIElement element;
    UIElement last = element;  // the element that was added last
};

}  // namespace tarvix
