// Applications with a special behaviour.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace tarvix {

// What an application wants to be asked by before it shows its tree.
enum class SpecialAXAttribute { enhancedUserInterface, manual, both };

struct AppDetail {
    std::string_view name;  // for whoever reads the table
    std::string_view bundleIdentifier;
    std::optional<SpecialAXAttribute> specialAXAttribute;
    friend bool operator==(const AppDetail&, const AppDetail&) = default;
};

// The applications that show no usable tree until they are asked for it.
struct AppCatalog {
    // Of all that are known. Any thread.
    static const AppCatalog& shared();

    // The row with exactly this identifier; an absent identifier has none.
    std::optional<AppDetail> detail(const std::optional<std::string>& bundleIdentifier) const;

    std::vector<AppDetail> apps;
};

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
