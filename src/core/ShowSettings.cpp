#include "core/ShowSettings.h"

#include <algorithm>
#include <functional>
#include <string_view>

#include "ax/AXEngine2.h"
#include "platform/Application.h"
#include "platform/RunLoop.h"

namespace tarvix {

namespace {

constexpr std::string_view kSettingsTitle = "Settings";

// The action of the entry in this program's own menu, which does whatever the window's menu does.
std::function<void()> actionOfMenu(const Menu& mainMenu) {
    if (mainMenu.empty()) return nullptr;
    const Menu& first = mainMenu.front().submenu;
    const auto entry = std::find_if(first.begin(), first.end(),
                                    [](const MenuItem& item) { return item.title.starts_with(kSettingsTitle); });
    return entry == first.end() ? nullptr : entry->action;
}

// What it finds is of no use: the walk is what wakes the tree of the window that has just opened. In the background,
// since that window is this program's own, and its main thread has to answer.
void walkWhatHasTheFocus(const Platform& platform) {
    platform.runLoop.inBackground([engine = AXEngine2(platform)] {
        if (const auto pid = engine.focusedApplicationProcessIdentifier()) engine.frontmostWindowElements(*pid);
    });
}

}  // namespace

void showSettings(const Platform& platform) {
    if (const auto action = actionOfMenu(platform.application.mainMenu()))
        action();
    else
        platform.application.showSettingsWindow();
    platform.application.activate();
    platform.runLoop.onMain([platform] { walkWhatHasTheFocus(platform); });
}

}  // namespace tarvix
