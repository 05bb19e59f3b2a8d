// The inspector's floating view.
#pragma once

#include <algorithm>

#include "platform/Panels.h"
#include "simulated/Journal.h"

namespace tarvix {

class SimulatedInspectorPanel : public InspectorPanel {
public:
    explicit SimulatedInspectorPanel(Journal& journal) : journal_(journal) {}

    void setContent(const InspectorContent& content) override { content_ = content; }
    Size fittingSize(Size most) override {
        return {std::min(contentSize.width, most.width), std::min(contentSize.height, most.height)};
    }
    void setFrame(PanelRect frame) override {
        frame_ = frame;
        journal_.note(Topic::inspector, "inspector at " + numeral(frame.origin.x) + "," + numeral(frame.origin.y) +
                                            " " + numeral(frame.size.width) + "x" + numeral(frame.size.height));
    }
    void orderFrontRegardless() override {
        visible_ = true;
        journal_.note(Topic::inspector, "inspector in front");
    }
    void orderOut() override {
        visible_ = false;
        journal_.note(Topic::inspector, "inspector hidden");
    }

    bool isVisible() const { return visible_; }
    PanelRect frame() const { return frame_; }
    const InspectorContent& content() const { return content_; }

    Size contentSize = {200, 100};  // what any content takes up

private:
    Journal& journal_;
    PanelRect frame_;
    bool visible_ = false;
    InspectorContent content_;
};

}  // namespace tarvix
