#include "qt/FrontWindow.h"

#include <xcb/xcb.h>

#include <QApplication>
#include <QWidget>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace tarvix {

namespace {

constexpr std::uint32_t kPager = 2;  // who is taken at its word

bool isOrdinary(const QWidget& window) {
    const Qt::WindowFlags flags = window.windowFlags();
    const Qt::WindowType type = window.windowType();
    return (type == Qt::Window || type == Qt::Dialog) && !flags.testFlag(Qt::X11BypassWindowManagerHint);
}

xcb_atom_t atom(xcb_connection_t* x, std::string_view name) {
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(x, xcb_intern_atom(x, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr),
        std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

// On Qt's own connection, so that it comes after the window's mapping.
void askWindowManager(xcb_connection_t* x, xcb_window_t window) {
    xcb_client_message_event_t wish{};
    wish.response_type = XCB_CLIENT_MESSAGE;
    wish.format = 32;
    wish.window = window;
    wish.type = atom(x, "_NET_ACTIVE_WINDOW");
    wish.data.data32[0] = kPager;
    for (auto screen = xcb_setup_roots_iterator(xcb_get_setup(x)); screen.rem > 0; xcb_screen_next(&screen))
        xcb_send_event(x, 0, screen.data->root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&wish));
    xcb_flush(x);
}

}  // namespace

QList<QWidget*> ordinaryWindows() {
    QList<QWidget*> windows = QApplication::topLevelWidgets();
    windows.removeIf([](const QWidget* window) { return !window->isVisible() || !isOrdinary(*window); });
    return windows;
}

QWidget* frontWindow() {
    if (QWidget* modal = QApplication::activeModalWidget()) return modal;
    const QList<QWidget*> windows = ordinaryWindows();
    const auto onTop = std::ranges::find_if(
        windows, [](const QWidget* window) { return window->windowFlags().testFlag(Qt::WindowStaysOnTopHint); });
    if (onTop != windows.end()) return *onTop;
    return windows.isEmpty() ? nullptr : windows.constLast();
}

void makeActive(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.raise();
    window.activateWindow();  // enough where there is no window manager
    if (auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>())
        askWindowManager(x11->connection(), static_cast<xcb_window_t>(window.winId()));
}

}  // namespace tarvix
