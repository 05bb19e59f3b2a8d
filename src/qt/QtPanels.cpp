#include "qt/QtPanels.h"

#include "qt/QtCanvasPanel.h"
#include "qt/QtDimmingPanel.h"
#include "qt/QtInputPanel.h"

namespace tarvix {

std::unique_ptr<InputPanel> QtPanels::makeInputPanel() { return makeQtInputPanel(services_); }
std::unique_ptr<CanvasPanel> QtPanels::makeCanvasPanel() { return makeQtCanvasPanel(services_); }
std::unique_ptr<DimmingPanel> QtPanels::makeDimmingPanel() { return makeQtDimmingPanel(services_); }

}  // namespace tarvix
