#include "display/Canvas.h"

#include <utility>

namespace tarvix {

Canvas::Canvas(Panels& panels, std::string_view drawn) : panel_(panels.makeCanvasPanel(drawn)) {
    panel_->setContent([this] { return drawings(); });
}

void Canvas::setFrame(PanelRect frame) {
    panel_->setFrame(frame);
    setNeedsDisplay();
}

void Canvas::addSubview(std::shared_ptr<TargetView> view) {
    view->superview_ = this;
    subviews_.push_back(std::move(view));
    setNeedsDisplay();
}

void Canvas::removeSubviews() {
    if (subviews_.empty()) return;
    for (const auto& view : subviews_) view->superview_ = nullptr;  // a Primary Target outlives the canvas's hold on it
    subviews_.clear();
    setNeedsDisplay();
}

std::vector<MarkerDrawing> Canvas::drawings() {
    std::vector<MarkerDrawing> drawings;
    drawings.reserve(subviews_.size());
    for (const auto& view : subviews_) drawings.push_back(view->drawing());
    return drawings;
}

}  // namespace tarvix
