// An element that matched, and its marker.
#pragma once

#include <memory>

#include "ax/AccessibilityElement.h"
#include "display/TargetView.h"

namespace tarvix {

struct Target {
    AccessibilityElement element;
    std::shared_ptr<TargetView> view;

    // The very same view, so that a Target of an earlier query is none of this one's.
    friend bool operator==(const Target& a, const Target& b) { return a.element == b.element && a.view == b.view; }
};

}  // namespace tarvix

template <>
struct std::hash<tarvix::Target> {
    std::size_t operator()(const tarvix::Target& target) const {
        return std::hash<tarvix::AccessibilityElement>{}(target.element);
    }
};
