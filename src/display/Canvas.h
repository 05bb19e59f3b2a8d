// A transparent panel that carries markers: the one over the screen, or the one over the inspected element.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "base/Geometry.h"
#include "display/TargetView.h"
#include "platform/Milestones.h"
#include "platform/Panels.h"

namespace tarvix {

// Main thread. `panels` outlives the canvas.
class Canvas {
public:
    // `drawn` is the milestone that the markers stand on the screen.
    explicit Canvas(Panels& panels, std::string_view drawn = milestone::markersDrawn);
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
