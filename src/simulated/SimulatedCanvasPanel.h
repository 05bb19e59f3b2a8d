// A canvas of markers, painted when the test looks at it.
#pragma once

#include <string>
#include <utility>

#include "platform/Panels.h"
#include "simulated/Journal.h"

namespace tarvix {

class SimulatedCanvasPanel : public CanvasPanel {
public:
    SimulatedCanvasPanel(Journal& journal, Topic topic, std::string name)
        : journal_(journal), topic_(topic), name_(std::move(name)) {}

    void setFrame(PanelRect frame) override {
        frame_ = frame;
        journal_.note(topic_, name_ + " at " + numeral(frame.origin.x) + "," + numeral(frame.origin.y) + " " +
                                  numeral(frame.size.width) + "x" + numeral(frame.size.height));
    }
    PanelRect frame() const override { return frame_; }
    void orderFrontRegardless() override {
        if (!visible_) needsDisplay_ = true;
        visible_ = true;
        journal_.note(topic_, name_ + " in front");
    }
    void orderOut() override {
        visible_ = false;
        journal_.note(topic_, name_ + " hidden");
    }
    void setNeedsDisplay() override { needsDisplay_ = true; }
    void setContent(std::function<std::vector<MarkerDrawing>()> content) override { content_ = std::move(content); }

    bool isVisible() const { return visible_; }
    // What stands on the screen: painted anew only if that was asked for since the last look, so that a forgotten
    // request shows.
    const std::vector<MarkerDrawing>& markers() {
        if (needsDisplay_ && content_) markers_ = content_();
        needsDisplay_ = false;
        return markers_;
    }
    bool needsDisplay() const { return needsDisplay_; }

private:
    Journal& journal_;
    Topic topic_;
    std::string name_;
    PanelRect frame_;
    bool visible_ = false;
    bool needsDisplay_ = false;
    std::function<std::vector<MarkerDrawing>()> content_;
    std::vector<MarkerDrawing> markers_;
};

}  // namespace tarvix
