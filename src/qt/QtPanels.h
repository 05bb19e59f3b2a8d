// The panels as Qt windows.
#pragma once

#include "qt/AfterTheInput.h"
#include "qt/PanelAccessibility.h"
#include "qt/PanelServices.h"
#include "qt/QtSystemColors.h"

namespace tarvix {

// Main thread. The services outlive the panels made here.
class QtPanels : public Panels {
public:
    explicit QtPanels(const PanelServices& services) : services_(services), colors_(services.appearance) {
        services_.afterTheInput = &afterTheInput_;
        describePanelsToScreenReaders();
    }

    std::unique_ptr<InputPanel> makeInputPanel() override;
    std::unique_ptr<CanvasPanel> makeCanvasPanel(std::string_view drawn) override;
    std::unique_ptr<DimmingPanel> makeDimmingPanel() override;
    std::unique_ptr<InspectorPanel> makeInspectorPanel() override;
    std::unique_ptr<SplashPanel> makeSplashPanel() override;
    SystemColors& colors() override { return colors_; }

private:
    AfterTheInput afterTheInput_;
    PanelServices services_;
    QtSystemColors colors_;
};

}  // namespace tarvix
