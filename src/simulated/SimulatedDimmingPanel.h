// The dimming panel; its alpha changes at once, faded or not.
#pragma once

#include <optional>

#include "platform/Panels.h"
#include "simulated/Journal.h"

namespace tarvix {

class SimulatedDimmingPanel : public DimmingPanel {
public:
    explicit SimulatedDimmingPanel(Journal& journal) : journal_(journal) {}

    void setFrame(PanelRect frame) override {
        frame_ = frame;
        note("at " + numeral(frame.origin.x) + "," + numeral(frame.origin.y) + " " + numeral(frame.size.width) + "x" +
             numeral(frame.size.height));
    }
    void setLevel(int level) override {
        level_ = level;
        note("level " + std::to_string(level));
    }
    void setAlpha(double alpha) override {
        alpha_ = alpha;
        note("alpha " + numeral(alpha));
    }
    void animateAlpha(double alpha) override {
        alpha_ = alpha;
        note("fades to " + numeral(alpha));
    }
    void orderFront() override {
        below_.reset();
        note("in front");
    }
    void orderBelow(std::uint32_t windowNumber) override {
        below_ = windowNumber;
        note("below window " + std::to_string(windowNumber));
    }

    PanelRect frame() const { return frame_; }
    int level() const { return level_; }
    double alpha() const { return alpha_; }
    std::optional<std::uint32_t> below() const { return below_; }

private:
    void note(const std::string& text) { journal_.note(Topic::dimming, "dimming " + text); }

    Journal& journal_;
    PanelRect frame_;
    int level_ = 0;
    double alpha_ = 0;
    std::optional<std::uint32_t> below_;
};

}  // namespace tarvix
