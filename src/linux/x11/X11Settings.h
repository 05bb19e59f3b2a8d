// The appearance, and the dots per inch, by the X settings, which most desktops keep for GTK programs.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <string>

#include "base/Listeners.h"
#include "linux/x11/X11Connection.h"
#include "platform/Appearance.h"

namespace tarvix {

// The settings are a property on a window of the desktop's service for them; where no such service runs nothing is
// told. Changes come by the loop that watches the connection. Main thread.
class X11Settings final : public AppearanceSource {
public:
    // The connection outlives it.
    explicit X11Settings(X11Connection& connection);

    AppearanceTold told() const override { return told_; }
    // Xft/DPI, in 1024ths; absent where it isn't told.
    std::optional<std::int32_t> dpi() const { return dpi_; }
    [[nodiscard]] Subscription onChange(std::function<void()> changed) override {
        return changed_.add(std::move(changed));
    }

private:
    X11Connection::Handled handle(const xcb_generic_event_t& event);
    void findService();
    void read();

    X11Connection& x_;
    std::string selection_;  // whose owner is the service
    xcb_window_t service_ = XCB_WINDOW_NONE;
    AppearanceTold told_;
    std::optional<std::int32_t> dpi_;
    Listeners<> changed_;
    Subscription events_;
};

}  // namespace tarvix
