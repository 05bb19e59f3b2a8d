#include "qt/FocusKeeper.h"

#include <QGuiApplication>
#include <QWidget>
#include <QWindow>
#include <cstdlib>
#include <memory>

#include "qt/FrontWindow.h"
#include "qt/XcbOfQt.h"

namespace tarvix {

namespace {

xcb_window_t numberOf(const QWidget& window) { return static_cast<xcb_window_t>(window.winId()); }

// Of our ordinary windows the one that has the focus by the server's word.
QWidget* windowWithFocus(xcb_connection_t* x) {
    const QList<QWidget*> windows = ordinaryWindows();
    if (windows.isEmpty()) return nullptr;
    const std::unique_ptr<xcb_get_input_focus_reply_t, decltype(&std::free)> focus(
        xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr), std::free);
    for (QWidget* window : windows)
        if (focus && numberOf(*window) == focus->focus) return window;
    return nullptr;
}

void tellFocus(xcb_connection_t* x, const QWidget& window) {
    char bytes[32] = {};
    auto& event = *reinterpret_cast<xcb_focus_in_event_t*>(bytes);
    event.response_type = XCB_FOCUS_IN;
    event.detail = XCB_NOTIFY_DETAIL_NONLINEAR;
    event.mode = XCB_NOTIFY_MODE_NORMAL;
    event.event = numberOf(window);
    xcb_send_event(x, 0, event.event, XCB_EVENT_MASK_NO_EVENT, bytes);
    xcb_flush(x);
}

}  // namespace

FocusKeeper::FocusKeeper(QWidget& panel) : panel_(panel) {
    QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, &connection_,
                     [this](QWindow* now) { focusChanged(now); });
}

// An ordinary window may be given the focus a moment after the panel has been told that it has it: window managers take
// their time. That the panel has it no longer leaves nobody with it, since it never really had.
void FocusKeeper::focusChanged(QWindow* now) {
    xcb_connection_t* x = connectionOfQt();
    if (!x) return;
    if (panelHasKeyboard_) {
        if (now != panel_.windowHandle()) tellFocus(x, panel_);
    } else if (!now) {
        if (const QWidget* window = windowWithFocus(x)) tellFocus(x, *window);
    }
}

}  // namespace tarvix
