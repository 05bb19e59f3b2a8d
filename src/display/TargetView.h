// The marker of one Target.
#pragma once

#include "base/Geometry.h"
#include "display/TargetsColor.h"
#include "platform/Panels.h"
#include "platform/UserDefaults.h"
#include "shell/Setting.h"

namespace tarvix {

class Canvas;

// How markers look by the settings, read at the moment of use. Shared by all markers of a canvas, and outlives them.
class TargetLook {
public:
    TargetLook(UserDefaults& defaults, SystemColors& system);

    bool isVoiceOver() const { return targetsColor_.value() == TargetsColor::voiceOver; }
    Color color() const { return colorOf(targetsColor_.value(), targetsCustomColorHue_.value(), system_); }

private:
    Setting<TargetsColor> targetsColor_;
    Setting<double> targetsCustomColorHue_;
    SystemColors& system_;
};

// A marker is painted again only after setNeedsDisplay(), so that a changed setting shows from then on. Main thread.
class TargetView {
public:
    // `frame` is relative to the canvas's bottom left corner. The screen-reader look makes the marker 3 larger on each
    // side, now and never again.
    TargetView(const TargetLook& look, bool primary, PanelRect frame);
    TargetView(const TargetView&) = delete;
    TargetView& operator=(const TargetView&) = delete;

    PanelRect frame() const { return frame_; }
    void setNeedsDisplay();
    // What stands on the canvas: drawn anew if that was asked for.
    const MarkerDrawing& drawing();

    // A plain flag: whoever changes it asks for the redraw.
    bool isPrimary;

private:
    friend class Canvas;

    void draw();
    void drawInColor();
    void drawForScreenReader();

    const TargetLook& look_;
    PanelRect frame_;
    Canvas* superview_ = nullptr;
    bool needsDisplay_ = true;
    MarkerDrawing drawing_;  // as last drawn; alpha and corners hold until a drawing sets them
};

}  // namespace tarvix
