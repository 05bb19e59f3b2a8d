// Applications with a special behaviour.
#pragma once

#include <string>
#include <unordered_set>

namespace tarvix {

// Applications whose panel takes the keyboard without becoming frontmost, so that the process with the accessibility
// focus tells more than the frontmost application does.
struct AppsWithNonActivatingPanelThatDoesNotHideAutomatically {
    static const std::unordered_set<std::string>& bundleIdentifiers() {
        static const std::unordered_set<std::string> identifiers = {"com.apple.Spotlight",
                                                                    "com.culturedcode.ThingsMac"};
        return identifiers;
    }
};

}  // namespace tarvix
