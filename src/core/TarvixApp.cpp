#include "core/TarvixApp.h"

#include "platform/Workspace.h"

namespace tarvix {

TarvixApp::TarvixApp(const Platform& platform)
    : launchAtLogin_(platform.userDefaults, platform.loginItems, platform.workspace.ownBundleIdentifier()),
      core_(platform),
      appDelegate_(platform, core_) {
    launchAtLogin_.migrateIfNeeded();
}

}  // namespace tarvix
