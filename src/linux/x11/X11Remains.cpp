#include "linux/x11/X11Remains.h"

#include <xcb/res.h>
#include <xcb/xtest.h>

#include <chrono>
#include <thread>

#include "linux/x11/X11Connection.h"
#include "linux/x11/X11KeyState.h"
#include "linux/x11/XInputKeyboards.h"

namespace tarvix {

namespace {

constexpr auto kLookInterval = std::chrono::milliseconds(2);
constexpr int kMostLooks = 500;

bool isConnected(X11Connection& connection, std::uint32_t client) {
    // The server gives the numbers of a client that has gone to the next one that comes.
    if (client == xcb_get_setup(connection.get())->resource_id_base) return false;
    const auto answer = connection.reply<xcb_res_query_clients_reply>(xcb_res_query_clients(connection.get()));
    if (!answer) return false;
    for (auto i = xcb_res_query_clients_clients_iterator(answer.get()); i.rem > 0; xcb_res_client_next(&i))
        if (i.data->resource_base == client) return true;
    return false;
}

// A grab of it would keep what is posted from the applications.
void awaitEnd(X11Connection& connection, std::uint32_t client) {
    if (client == 0 || !connection.extension(xcb_res_id)) return;
    for (int looks = 0; looks < kMostLooks && isConnected(connection, client); ++looks)
        std::this_thread::sleep_for(kLookInterval);
}

void releasePosted(X11Connection& connection, const X11Remains& remains) {
    const auto keyboards = readKeyboards(connection);
    Keycodes noted;
    for (std::size_t k = 0; k < noted.size(); ++k) noted[k] = remains.hasKey(k);
    if (keyboards.xtest && noted.any())
        releaseForApplications(connection, noted & keysDownOn(connection, {*keyboards.xtest}));
    for (std::uint8_t button = 0; button < 32; ++button)
        if ((remains.buttons >> button & 1) != 0)
            xcb_test_fake_input(connection.get(), XCB_BUTTON_RELEASE, button, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0,
                                0);
}

// The server itself lets the keyboard follow the pointer when the window that had it goes.
void giveFocusBack(X11Connection& connection, const X11Remains& remains) {
    const auto focus = connection.reply<xcb_get_input_focus_reply>(xcb_get_input_focus(connection.get()));
    if (remains.focus != XCB_WINDOW_NONE && focus && focus->focus <= XCB_INPUT_FOCUS_POINTER_ROOT)
        xcb_set_input_focus(connection.get(), XCB_INPUT_FOCUS_POINTER_ROOT, remains.focus, XCB_CURRENT_TIME);
}

}  // namespace

void undo(X11Connection& connection, const X11Remains& remains) {
    if (!connection.extension(xcb_test_id)) return;
    const bool hasXInput = startXInput(connection);
    if (hasXInput) lockModifiers(connection, static_cast<std::uint8_t>(remains.lockedModifiers), 0);
    connection.flush();
    awaitEnd(connection, remains.client);
    if (hasXInput) {
        releasePosted(connection, remains);
        releaseStuckKeys(connection);
    }
    giveFocusBack(connection, remains);
    connection.sync();
}

}  // namespace tarvix
