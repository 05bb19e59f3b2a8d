// The window in the desktop's tray (_NET_SYSTEM_TRAY_S0, XEmbed).
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "linux/x11/X11Connection.h"
#include "platform/TrayWindow.h"

namespace tarvix {

class X11TrayWindow : public TrayWindow {
public:
    // The connection must outlive it.
    X11TrayWindow(X11Connection& connection, TrayWindowUse use);
    ~X11TrayWindow() override;
    X11TrayWindow(const X11TrayWindow&) = delete;
    X11TrayWindow& operator=(const X11TrayWindow&) = delete;

    void redraw() override;

private:
    X11Connection::Handled handle(const xcb_generic_event_t& event);
    void handleOwn(const xcb_generic_event_t& event);
    void findTray();
    void make();
    void makeWith(xcb_visualid_t visual, std::uint8_t depth, bool isTransparent);
    void describe();
    void askForPlace();
    void remove();
    void paint();
    void paintWhenAtRest();
    void put(const TrayPicture& picture);
    std::optional<AxRect> place();
    // The pixels of a part of a drawable; empty where the server has none to give.
    std::vector<std::uint32_t> pixels(xcb_drawable_t of, int x, int y);

    X11Connection& x_;
    TrayWindowUse use_;
    std::string selection_;
    xcb_window_t tray_ = XCB_WINDOW_NONE, window_ = XCB_WINDOW_NONE;
    xcb_colormap_t colormap_ = XCB_NONE;
    std::uint8_t depth_ = 0;
    bool isTransparent_ = false;  // its pixels have a transparency of their own, else the tray shows around the picture
    int width_ = 0, height_ = 0;
    Subscription events_, painting_;
};

}  // namespace tarvix
