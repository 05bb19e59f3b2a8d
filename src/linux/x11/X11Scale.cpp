#include "linux/x11/X11Scale.h"

#include <utility>

namespace tarvix {

X11Scale::X11Scale(X11Connection& connection, X11Settings& settings, std::string gdkScale, std::string qtScaleFactor)
    : x_(connection),
      settings_(settings),
      told_{std::nullopt, "", std::move(gdkScale), std::move(qtScaleFactor)},
      settingsChanged_(settings.onChange([this] { refresh(); })) {
    x_.selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE);
    events_ = x_.onEvent([this](const xcb_generic_event_t& event) {
        const auto& changed = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if ((event.response_type & 0x7f) == XCB_PROPERTY_NOTIFY && changed.window == x_.root() &&
            changed.atom == XCB_ATOM_RESOURCE_MANAGER)
            readResources();
        return X11Connection::Handled::no;
    });
    readResources();
}

void X11Scale::readResources() {
    told_.resources = x_.text(x_.root(), "RESOURCE_MANAGER").value_or("");
    refresh();
}

void X11Scale::refresh() {
    told_.settingsDpi = settings_.dpi();
    const double now = desktopScale(told_);
    if (now == value_) return;
    value_ = now;
    changed_();
}

}  // namespace tarvix
