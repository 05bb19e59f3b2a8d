#include "qt/XcbOfQt.h"

#include <QGuiApplication>
#include <cstdlib>
#include <memory>

namespace tarvix {

xcb_connection_t* connectionOfQt() {
    const auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atomOf(xcb_connection_t* connection, std::string_view name) {
    const auto asked = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, asked, nullptr), std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace tarvix
