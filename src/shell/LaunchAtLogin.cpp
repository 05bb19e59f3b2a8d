#include "shell/LaunchAtLogin.h"

#include <cstdio>
#include <utility>

namespace tarvix {

LaunchAtLogin::LaunchAtLogin(UserDefaults& defaults, LoginItems& loginItems, std::string_view ownBundleIdentifier)
    : defaults_(defaults),
      loginItems_(loginItems),
      helperIdentifier_(std::string(ownBundleIdentifier) + "-LaunchAtLoginHelper") {}

void LaunchAtLogin::setEnabled(bool isEnabled) {
    announced_();
    willChange_();
    write(isEnabled);
    changed_();
    latest_ = isEnabled;
    received_(isEnabled);
}

void LaunchAtLogin::write(bool isEnabled) {
    if (isEnabled && loginItems_.isEnabled()) loginItems_.disable();
    const auto failure = isEnabled ? loginItems_.enable() : loginItems_.disable();
    if (failure)
        std::fprintf(stderr, "Failed to %s launch at login: %s\n", isEnabled ? "enable" : "disable", failure->c_str());
}

void LaunchAtLogin::migrateIfNeeded() {
    const auto migrated = defaults_.get(kHasMigrated);
    if (migrated == UserDefaults::Value(true)) return;
    defaults_.set(kHasMigrated, true);
    if (loginItems_.isHelperEnabled(helperIdentifier_)) write(true);
    loginItems_.removeHelper(helperIdentifier_);
}

Subscription LaunchAtLogin::onAnnounced(std::function<void()> announced) {
    return announced_.add(std::move(announced));
}

Subscription LaunchAtLogin::onWillChange(std::function<void()> willChange) {
    return willChange_.add(std::move(willChange));
}

Subscription LaunchAtLogin::onChange(std::function<void()> changed) { return changed_.add(std::move(changed)); }

Subscription LaunchAtLogin::onValue(std::function<void(bool)> received) {
    received(latest());
    return received_.add(std::move(received));
}

bool LaunchAtLogin::latest() {
    if (!latest_) latest_ = loginItems_.isEnabled();
    return *latest_;
}

}  // namespace tarvix
