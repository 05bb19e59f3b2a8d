// The factory of the simulated panels, which remembers the latest of each kind.
#pragma once

#include <cassert>

#include "platform/Milestones.h"
#include "simulated/SimulatedCanvasPanel.h"
#include "simulated/SimulatedDimmingPanel.h"
#include "simulated/SimulatedInputPanel.h"
#include "simulated/SimulatedInspectorPanel.h"
#include "simulated/SimulatedSplashPanel.h"

namespace tarvix {

class SimulatedColors : public SystemColors {
public:
    Color findHighlight() override { return highlight; }
    Color controlAccent() override { return accent; }
    Color selectedControl() override { return selected; }

    Color highlight{1, 1, 0, 1};
    Color accent{0, 0.48, 1, 1};
    Color selected{0.7, 0.84, 1, 1};
};

// The accessors are for as long as the panel's owner lives, and only once it has been made.
class SimulatedPanels : public Panels {
public:
    explicit SimulatedPanels(Journal& journal) : journal_(journal) {}

    std::unique_ptr<InputPanel> makeInputPanel() override { return make(input_); }
    std::unique_ptr<CanvasPanel> makeCanvasPanel(std::string_view drawn) override {
        return drawn == milestone::inspectorMarkerDrawn ? make(inspectorCanvas_, Topic::inspector, "inspector's canvas")
                                                        : make(canvas_, Topic::canvas, "canvas");
    }
    std::unique_ptr<DimmingPanel> makeDimmingPanel() override { return make(dimming_); }
    std::unique_ptr<InspectorPanel> makeInspectorPanel() override { return make(inspector_); }
    std::unique_ptr<SplashPanel> makeSplashPanel() override { return make(splash_); }
    SystemColors& colors() override { return systemColors; }

    bool hasInput() const { return input_ != nullptr; }
    SimulatedInputPanel& input() const { return *made(input_); }
    SimulatedCanvasPanel& canvas() const { return *made(canvas_); }
    SimulatedDimmingPanel& dimming() const { return *made(dimming_); }
    bool hasInspectorCanvas() const { return inspectorCanvas_ != nullptr; }
    SimulatedCanvasPanel& inspectorCanvas() const { return *made(inspectorCanvas_); }
    SimulatedInspectorPanel& inspector() const { return *made(inspector_); }
    bool hasSplash() const { return splash_ != nullptr; }
    SimulatedSplashPanel& splash() const { return *made(splash_); }

    SimulatedColors systemColors;

private:
    template <class Panel, class... More>
    std::unique_ptr<Panel> make(Panel*& latest, More... more) {
        auto panel = std::make_unique<Panel>(journal_, more...);
        latest = panel.get();
        return panel;
    }
    template <class Panel>
    static Panel* made(Panel* panel) {
        assert(panel);
        return panel;
    }

    Journal& journal_;
    SimulatedInputPanel* input_ = nullptr;
    SimulatedCanvasPanel* canvas_ = nullptr;
    SimulatedCanvasPanel* inspectorCanvas_ = nullptr;
    SimulatedDimmingPanel* dimming_ = nullptr;
    SimulatedInspectorPanel* inspector_ = nullptr;
    SimulatedSplashPanel* splash_ = nullptr;
};

}  // namespace tarvix
