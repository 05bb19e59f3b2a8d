#include "display/FocusedApplication.h"

#include "ax/AXEngine2.h"
#include "ax/AppCatalog.h"
#include "platform/Workspace.h"

namespace tarvix {

std::optional<FocusedApplication> focusedApplication(const Platform& platform) {
    const auto pid = AXEngine2(platform).focusedApplicationProcessIdentifier();
    if (!pid) return std::nullopt;
    const auto application = platform.workspace.runningApplication(*pid);
    if (!application || !application->bundleIdentifier) return std::nullopt;
    return FocusedApplication{*pid,
                              AppsWithNonActivatingPanelThatDoesNotHideAutomatically::bundleIdentifiers().contains(
                                  *application->bundleIdentifier)};
}

std::optional<FocusedWindow> windowOf(const FocusedApplication& application, DisplayEngineProtocol& displayEngine) {
    return application.hasNonActivatingPanel ? displayEngine.focusedWindow() : displayEngine.mainWindow();
}

}  // namespace tarvix
