// The desktop's scale, followed as it changes.
#pragma once

#include "base/Listeners.h"
#include "linux/desktops/DesktopScale.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Settings.h"

namespace tarvix {

// Main thread. Held, so that asking costs nothing; changes come by the loop that watches the connection.
class X11Scale {
public:
    // With what the environment tells. The connection and the settings outlive it.
    X11Scale(X11Connection& connection, X11Settings& settings, std::string gdkScale, std::string qtScaleFactor);

    // Pixels for a point.
    double value() const { return value_; }
    [[nodiscard]] Subscription onChange(std::function<void()> changed) { return changed_.add(std::move(changed)); }

private:
    void readResources();
    void refresh();

    X11Connection& x_;
    X11Settings& settings_;
    ScaleTold told_;
    double value_ = 1;
    Listeners<> changed_;
    Subscription events_, settingsChanged_;
};

}  // namespace tarvix
