#include "qt/ServerSync.h"

#include <cstdlib>

#include "qt/XcbOfQt.h"

namespace tarvix {

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
