// The appearance that the parts of a desktop tell of, put together.
#pragma once

#include <string>
#include <vector>

#include "base/Listeners.h"
#include "platform/Appearance.h"

namespace tarvix {

// What each part says. The toolkit is the one that this program itself is drawn with: it always has an answer, and
// knows least of the desktop.
struct AppearancesTold {
    AppearanceTold portal, xsettings, kde, gtk;
    AppearanceValues toolkit;
};

// Each value comes from the first that tells it: the settings portal, which desktops of today have and where the user's
// choice itself stands; the X settings; KDE's file; GTK's file; the toolkit. On KDE its own file comes right after the
// portal, since the X settings are there for GTK programs alone and their theme has one name for light and dark.
// A selection that nobody tells is a pale tint of an accent that somebody tells.
AppearanceValues appearanceOf(const AppearancesTold& told, const std::string& currentDesktop);

// Main thread. Sources outlive it.
class DesktopAppearance final : public Appearance {
public:
    struct Sources {
        AppearanceSource &portal, &xsettings, &kde, &gtk;
        AppearanceSource& toolkit;  // tells everything
    };

    // `currentDesktop` is the value of XDG_CURRENT_DESKTOP: names, with colons between.
    DesktopAppearance(const Sources& sources, std::string currentDesktop);

    const AppearanceValues& values() const override { return values_; }
    // The sources tell nothing of the scale.
    void setScale(double scale);
    [[nodiscard]] Subscription onChange(std::function<void()> changed) override {
        return changed_.add(std::move(changed));
    }

private:
    AppearanceValues read() const;
    void refresh();
    void change(const AppearanceValues& now);

    Sources sources_;
    std::string currentDesktop_;
    AppearanceValues values_;
    Listeners<> changed_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace tarvix
