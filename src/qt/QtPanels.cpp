#include "qt/QtPanels.h"

#include "qt/QtCanvasPanel.h"
#include "qt/QtDimmingPanel.h"
#include "qt/QtInputPanel.h"
#include "qt/QtInspectorPanel.h"
#include "qt/QtSplashPanel.h"

namespace tarvix {

std::unique_ptr<InputPanel> QtPanels::makeInputPanel() { return makeQtInputPanel(services_); }
std::unique_ptr<CanvasPanel> QtPanels::makeCanvasPanel(std::string_view drawn) {
    return makeQtCanvasPanel(services_, drawn);
}
std::unique_ptr<DimmingPanel> QtPanels::makeDimmingPanel() { return makeQtDimmingPanel(services_); }
std::unique_ptr<InspectorPanel> QtPanels::makeInspectorPanel() { return makeQtInspectorPanel(services_); }

std::unique_ptr<SplashPanel> QtPanels::makeSplashPanel() { return makeQtSplashPanel(services_); }

}  // namespace tarvix
