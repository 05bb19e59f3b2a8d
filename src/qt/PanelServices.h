// What the panels of this folder are given, and where a panel's frame lies among the root window's pixels.
#pragma once

#include <QRect>

#include "platform/Appearance.h"
#include "platform/Milestones.h"
#include "platform/Panels.h"
#include "platform/Screens.h"

namespace tarvix {

class AfterTheInput;

struct PanelServices {
    PanelWindowing& windowing;
    Screens& screens;
    Milestones& milestones;
    Appearance& appearance;
    AfterTheInput* afterTheInput = nullptr;  // without it everything is shown at once
};

// The height that flips between the two coordinate planes; 0 while there is no screen at all.
inline double firstScreenHeight(Screens& screens) {
    const auto frames = screens.frames();
    return frames.empty() ? 0 : frames.front().height();
}

// The pixels that a rectangle touches.
inline QRect pixelsOf(const AxRect& rect) {
    const int left = static_cast<int>(std::floor(rect.minX()));
    const int top = static_cast<int>(std::floor(rect.minY()));
    const int right = static_cast<int>(std::ceil(rect.maxX()));
    const int bottom = static_cast<int>(std::ceil(rect.maxY()));
    return {left, top, right - left, bottom - top};
}

}  // namespace tarvix
