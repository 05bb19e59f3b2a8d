// The transparent panel over a screen that carries the markers.
#pragma once

#include <memory>
#include <vector>

#include "base/Geometry.h"
#include "display/TargetView.h"
#include "platform/Panels.h"

namespace tarvix {

// Main thread. `panels` outlives the canvas.
class Canvas {
public:
    explicit Canvas(Panels& panels);
    ~Canvas() { removeSubviews(); }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    PanelRect frame() const { return panel_->frame(); }
    void setFrame(PanelRect frame);
    void orderFrontRegardless() { panel_->orderFrontRegardless(); }
    void orderOut() { panel_->orderOut(); }
    void setNeedsDisplay() { panel_->setNeedsDisplay(); }

    const std::vector<std::shared_ptr<TargetView>>& subviews() const { return subviews_; }
    void addSubview(std::shared_ptr<TargetView> view);
    void removeSubviews();

private:
    std::vector<MarkerDrawing> drawings();

    std::vector<std::shared_ptr<TargetView>> subviews_;  // in painting order
    std::unique_ptr<CanvasPanel> panel_;
};

}  // namespace tarvix
