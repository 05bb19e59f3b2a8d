#include "linux/x11/X11Compositor.h"

#include <xcb/xfixes.h>

#include <string>
#include <utility>

namespace tarvix {

namespace {

xcb_atom_t selectionOfCompositor(X11Connection& connection) {
    return connection.atom("_NET_WM_CM_S" + std::to_string(connection.screenNumber()));
}

}  // namespace

bool isComposited(X11Connection& connection) {
    const auto owner = connection.reply<xcb_get_selection_owner_reply>(
        xcb_get_selection_owner(connection.get(), selectionOfCompositor(connection)));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

Subscription onCompositorGone(X11Connection& connection, std::function<void()> gone) {
    const auto* fixes = connection.extension(xcb_xfixes_id);
    if (!fixes) return {};
    // The server answers the extension's requests only to clients that have told their version.
    connection.reply<xcb_xfixes_query_version_reply>(
        xcb_xfixes_query_version(connection.get(), XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION));
    const xcb_atom_t selection = selectionOfCompositor(connection);
    xcb_xfixes_select_selection_input(connection.get(), connection.root(), selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    const int told = fixes->first_event + XCB_XFIXES_SELECTION_NOTIFY;
    return connection.onEvent([selection, told, gone = std::move(gone)](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != told) return X11Connection::Handled::no;
        const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
        if (change.selection == selection && change.owner == XCB_WINDOW_NONE) gone();
        return X11Connection::Handled::no;
    });
}

}  // namespace tarvix
