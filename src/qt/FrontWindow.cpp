#include "qt/FrontWindow.h"

#include <QApplication>
#include <QWidget>

#include "qt/XcbOfQt.h"

namespace tarvix {

namespace {

constexpr std::uint32_t kPager = 2;  // who is taken at its word

bool isManaged(const QWidget& window) {
    const Qt::WindowType type = window.windowType();
    const bool isPanel = window.windowFlags().testFlag(Qt::X11BypassWindowManagerHint);
    return window.isVisible() && (type == Qt::Window || type == Qt::Dialog) && !isPanel;
}

bool isOnTop(const QWidget& window) { return window.windowFlags().testFlag(Qt::WindowStaysOnTopHint); }

void askWindowManager(xcb_connection_t* x, xcb_window_t window) {
    xcb_client_message_event_t wish{};
    wish.response_type = XCB_CLIENT_MESSAGE;
    wish.format = 32;
    wish.window = window;
    wish.type = atomOf(x, "_NET_ACTIVE_WINDOW");
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
    windows.removeIf([](const QWidget* window) { return !isManaged(*window) || isOnTop(*window); });
    return windows;
}

QWidget* frontWindow() {
    if (QWidget* modal = QApplication::activeModalWidget()) return modal;
    for (QWidget* window : QApplication::topLevelWidgets())
        if (isManaged(*window) && isOnTop(*window)) return window;
    const QList<QWidget*> windows = ordinaryWindows();
    return windows.isEmpty() ? nullptr : windows.constLast();
}

void makeActive(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.raise();
    window.activateWindow();  // enough where there is no window manager
    if (auto* x = connectionOfQt()) askWindowManager(x, static_cast<xcb_window_t>(window.winId()));
}

}  // namespace tarvix
