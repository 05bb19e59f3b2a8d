#include "display/TargetView.h"

#include "display/Canvas.h"

namespace tarvix {

namespace {

constexpr double kScreenReaderMargin = 3;
constexpr double kDefaultHue = 0.5;  // until the user moves the slider, which stands at 0.28 by then
constexpr Color kBlack{0, 0, 0, 1};
constexpr Color kWhite{1, 1, 1, 1};

MarkerShape fill(Color color) { return {0, 0, color}; }
MarkerShape stroke(double lineWidth, Color color, double inset) { return {inset, lineWidth, color}; }

PanelRect grown(PanelRect frame, double margin) {
    return {{frame.minX() - margin, frame.minY() - margin}, {frame.width() + 2 * margin, frame.height() + 2 * margin}};
}

}  // namespace

TargetLook::TargetLook(UserDefaults& defaults, SystemColors& system)
    : targetsColor_(defaults, {"targetsColor", TargetsColor::findHighlight}),
      targetsCustomColorHue_(defaults, {"targetsCustomColorHue", kDefaultHue}),
      system_(system) {}

TargetView::TargetView(const TargetLook& look, bool primary, PanelRect frame)
    : isPrimary(primary), look_(look), frame_(look.isVoiceOver() ? grown(frame, kScreenReaderMargin) : frame) {
    drawing_.frame = frame_;
}

void TargetView::setNeedsDisplay() {
    needsDisplay_ = true;
    if (superview_) superview_->setNeedsDisplay();
}

const MarkerDrawing& TargetView::drawing() {
    if (needsDisplay_) draw();
    needsDisplay_ = false;
    return drawing_;
}

void TargetView::draw() {
    if (look_.isVoiceOver()) {
        drawForScreenReader();
    } else {
        drawInColor();
    }
}

void TargetView::drawInColor() {
    const Color color = look_.color();
    drawing_.shapes = {isPrimary ? fill(color) : stroke(2, color, 2)};
    drawing_.cornerRadius = isPrimary ? 5 : 8;
    drawing_.alpha = isPrimary ? 0.6 : 0.9;
}

void TargetView::drawForScreenReader() {
    if (isPrimary) {
        drawing_.shapes = {fill(kWhite), stroke(2.5, kBlack, 2.5)};
        drawing_.cornerRadius = 5;
        drawing_.alpha = 0.6;
    } else {
        drawing_.shapes = {stroke(1.5, kWhite, 1.5), stroke(2.5, kBlack, 3.5), stroke(1.5, kWhite, 5.5)};
        drawing_.alpha = 0.9;  // the corners stay as they are: square, unless the marker has been primary
    }
}

}  // namespace tarvix
