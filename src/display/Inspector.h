// The inspector: picks out the element under the pointer with a marker, and lists its texts beside it.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "display/Canvas.h"
#include "display/DisplayEngineProtocol.h"
#include "display/InspectorProtocol.h"
#include "display/TheInputProtocol.h"
#include "platform/Panels.h"
#include "platform/Platform.h"

namespace tarvix {

// The element's texts, one to a line, each behind "≢ " and with a line feed at its end. An absent or empty text has no
// line; a value is cut to its first 128 characters as a reader counts them.
std::string inspectorText(const AccessibilityElement& element);

std::string inspectorHeading(const AccessibilityElement& element);

// Main thread. What is given outlives it. The marker and the view take the looks of the settings as they stand.
class Inspector : public InspectorProtocol {
public:
    Inspector(const Platform& platform, DisplayEngineProtocol& displayEngine, const TheInputProtocol& theInput);

    void showInspector(const AccessibilityElement& element) override;
    // Takes the marker and the view away.
    void close();

private:
    void showTexts(const AccessibilityElement& element, PanelRect marker);
    Canvas& canvas();

    Platform platform_;
    DisplayEngineProtocol& displayEngine_;
    const TheInputProtocol& theInput_;
    TargetLook targetLook_;
    std::optional<Canvas> canvas_;  // from the first use on: most searches are over without one
    std::unique_ptr<InspectorPanel> panel_;
};

}  // namespace tarvix
