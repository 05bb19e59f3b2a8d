#include "linux/x11/X11Settings.h"

#include "linux/desktops/GtkAppearance.h"
#include "linux/desktops/XSettings.h"

namespace tarvix {

using Handled = X11Connection::Handled;

X11Settings::X11Settings(X11Connection& connection)
    : x_(connection), selection_("_XSETTINGS_S" + std::to_string(connection.screenNumber())) {
    x_.intern({selection_, "MANAGER", "_XSETTINGS_SETTINGS"});
    x_.selectOnRoot(XCB_EVENT_MASK_STRUCTURE_NOTIFY);  // a service that starts tells the root window
    events_ = x_.onEvent([this](const xcb_generic_event_t& event) { return handle(event); });
    findService();
}

Handled X11Settings::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
        case XCB_CLIENT_MESSAGE: {
            const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
            if (message.type == x_.atom("MANAGER") && message.data.data32[1] == x_.atom(selection_)) findService();
            break;
        }
        case XCB_PROPERTY_NOTIFY: {
            const auto& changed = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            if (changed.window == service_ && changed.atom == x_.atom("_XSETTINGS_SETTINGS")) read();
            break;
        }
        case XCB_DESTROY_NOTIFY:
            if (reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == service_) findService();
            break;
        default:
            break;
    }
    return Handled::no;
}

void X11Settings::findService() {
    const auto owner = x_.reply<xcb_get_selection_owner_reply>(xcb_get_selection_owner(x_.get(), x_.atom(selection_)));
    service_ = owner ? owner->owner : xcb_window_t{XCB_WINDOW_NONE};
    if (service_ != XCB_WINDOW_NONE) {
        const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(x_.get(), service_, XCB_CW_EVENT_MASK, &mask);
    }
    read();
}

void X11Settings::read() {
    AppearanceTold told;
    std::optional<std::int32_t> dpi;
    const auto bytes = service_ != XCB_WINDOW_NONE ? x_.text(service_, "_XSETTINGS_SETTINGS") : std::nullopt;
    if (bytes) {
        const XSettings settings = xSettings(*bytes);
        told = gtkAppearance(gtkChoice(settings), installedGtkThemeSheet);
        const auto found = settings.find("Xft/DPI");
        const auto* number = found != settings.end() ? std::get_if<std::int32_t>(&found->second) : nullptr;
        if (number) dpi = *number;
    }
    if (told == told_ && dpi == dpi_) return;
    told_ = told;
    dpi_ = dpi;
    changed_();
}

}  // namespace tarvix
