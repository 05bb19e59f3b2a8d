#include "qt/ServerSync.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <cstdlib>

namespace tarvix {

namespace {

xcb_connection_t* connectionOfQt() {
    const auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

}  // namespace

void flushToServer() {
    if (auto* connection = connectionOfQt()) xcb_flush(connection);
}

// QGuiApplication::sync() would also deliver events, in the middle of whatever is going on.
void syncWithServer() {
    auto* connection = connectionOfQt();
    if (!connection) return;
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

}  // namespace tarvix
