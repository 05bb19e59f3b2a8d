// The black window that dims a screen.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <string_view>
#include <vector>

#include "linux/x11/X11Connection.h"
#include "linux/x11/X11StackKeeper.h"
#include "platform/Panels.h"

namespace tarvix {

// Main thread. The server fills it with its background, so that showing it costs no painting.
class X11HazeSurface final : public HazeSurface {
public:
    // Connection and keeper outlive the surface.
    X11HazeSurface(X11Connection& connection, X11StackKeeper& keeper);
    ~X11HazeSurface() override;
    X11HazeSurface(const X11HazeSurface&) = delete;
    X11HazeSurface& operator=(const X11HazeSurface&) = delete;

    void setFrame(AxRect frame) override;
    void setAlpha(double alpha) override;
    void showBelow(std::uint32_t window) override;
    void showOverApplications() override;
    void hide() override;
    bool isShown() const override { return shown_ != nullptr; }

private:
    using By = X11Stacking::By;

    // One window for each way of getting a place, since a window manager may still have hold of the other one.
    struct Sheet {
        xcb_window_t window = XCB_WINDOW_NONE;
        By placedBy = By::us;
    };

    By whoPlaces();
    Sheet& sheetFor(By by) { return by == By::us ? free_ : managed_; }
    void create(Sheet& sheet);
    void place(const Sheet& sheet);
    void map(Sheet& sheet);
    void announce(xcb_window_t window);
    void setProperty(xcb_window_t window, std::string_view name, std::string_view type,
                     const std::vector<std::uint32_t>& items);

    X11Connection& x_;
    X11StackKeeper& keeper_;
    AxRect frame_{{0, 0}, {1, 1}};
    double alpha_ = 1;
    Sheet free_{XCB_WINDOW_NONE, By::us}, managed_{XCB_WINDOW_NONE, By::windowManager};
    const Sheet* shown_ = nullptr;
    Subscription compositorGone_;
};

}  // namespace tarvix
