#include "core/AppActivation.h"

namespace tarvix {

void anAppHasBeenActivated(const RunningApplication& application, const AXEngine2& axEngine,
                           const AppCatalog& catalog) {
    const std::optional<AppDetail> detail = catalog.detail(application.bundleIdentifier);
    if (!detail || !detail->specialAXAttribute) return;
    switch (*detail->specialAXAttribute) {
        case SpecialAXAttribute::enhancedUserInterface:
            return axEngine.keepEnhancedUserInterfaceSet(application.processIdentifier);
        case SpecialAXAttribute::manual:
            return axEngine.keepManualAccessibilitySet(application.processIdentifier);
        case SpecialAXAttribute::both:
            return axEngine.keepBothAttributesSet(application.processIdentifier);
    }
}

}  // namespace tarvix
