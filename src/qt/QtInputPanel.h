// The Input's window.
#pragma once

#include <memory>

#include "qt/PanelServices.h"

namespace tarvix {

// Main thread. The services outlive the panel; its native window, fonts and first painting are made here, so that
// showing it is quick.
//
// The panel's frame is never smaller than its content: the height is always the content's, the width at least that of
// the measuring text with the paddings. A frame set otherwise grows or shrinks at its top and right edges. The frame
// counts the empty margin around the rounded rectangle; the window has only what is painted.
std::unique_ptr<InputPanel> makeQtInputPanel(const PanelServices& services);

}  // namespace tarvix
