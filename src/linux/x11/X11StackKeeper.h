// The places of windows of ours in the stack of windows, kept against what other programs do to it.
#pragma once

#include <xcb/xcb.h>

#include <optional>
#include <vector>

#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Stacking.h"

namespace tarvix {

// Window managers restack at each raise, and whatever is mapped comes to the top. A window is kept in its place until
// it is seen unmapped; but another program that answers each of our changes with one of its own wins after a few.
// It sees to the stack once for all that has happened to it since the last time. Main thread.
class X11StackKeeper {
public:
    // The connection outlives the keeper.
    explicit X11StackKeeper(X11Connection& connection);
    ~X11StackKeeper();
    X11StackKeeper(const X11StackKeeper&) = delete;
    X11StackKeeper& operator=(const X11StackKeeper&) = delete;

    // Each puts a window, which is mapped or about to be, in its place.
    // Above everything, those that were put there before included.
    void keepOnTop(xcb_window_t window);
    // Above everything but the windows that are kept on top.
    void keepUnderThose(xcb_window_t window);
    // Directly below another one, its frame included; for one window at a time.
    void keepBelow(xcb_window_t window, xcb_window_t sibling, X11Stacking::By by);
    void letGo(xcb_window_t window);

private:
    struct Below {
        xcb_window_t window = XCB_WINDOW_NONE, sibling = XCB_WINDOW_NONE;
        X11Stacking::By by = X11Stacking::By::us;
    };

    void watch();
    void lookLater();
    void look();
    void lookAtTop(const std::vector<xcb_window_t>& stack);
    void lookBelow(const std::vector<xcb_window_t>& stack);
    void forgetUnmapped();
    void raiseTop();
    bool isOurs(xcb_window_t window) const;
    bool anyCovers(const std::vector<xcb_window_t>& windows, const std::vector<xcb_window_t>& covered);

    X11Connection& x_;
    X11Stacking stacking_;
    std::vector<xcb_window_t> top_;  // bottom to top
    std::optional<Below> below_;
    bool isWatching_ = false;
    int timesRaised_ = 0, timesLowered_ = 0;  // since the watching began
    Subscription events_, looking_;
};

}  // namespace tarvix
