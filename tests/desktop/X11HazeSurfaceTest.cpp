#include <algorithm>
#include <optional>

#include "linux/x11/X11Compositor.h"
#include "linux/x11/X11HazeSurface.h"
#include "tests/desktop/X11Desk.h"

namespace tarvix {
namespace {

class X11HazeSurfaceOnDesktop : public X11Desk {
protected:
    // Windows are blended, or nobody does it but the application says so.
    void setComposited(bool composited) {
        if (isComposited(*connection) == composited) return;
        const std::string selection = "_NET_WM_CM_S" + std::to_string(connection->screenNumber());
        xcb_set_selection_owner(application.connection().get(),
                                composited ? application.window() : xcb_window_t{XCB_WINDOW_NONE},
                                application.connection().atom(selection), XCB_CURRENT_TIME);
        application.connection().sync();
    }

    // The child of the root that is the surface, while it is mapped.
    std::optional<xcb_window_t> shownWindow() {
        for (const xcb_window_t window : rootStack(*connection)) {
            const auto attributes = connection->reply<xcb_get_window_attributes_reply>(
                xcb_get_window_attributes(connection->get(), window));
            if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE) continue;
            if (!connection->items(window, "_NET_WM_WINDOW_OPACITY").empty()) return window;
        }
        return std::nullopt;
    }
    std::optional<AxRect> shownFrame() {
        const auto window = shownWindow();
        if (!window) return std::nullopt;
        const auto g = connection->reply<xcb_get_geometry_reply>(xcb_get_geometry(connection->get(), *window));
        return AxRect{{double(g->x), double(g->y)}, {double(g->width), double(g->height)}};
    }
    xcb_window_t windowAt(std::int16_t x, std::int16_t y) {
        hardware.movePointer(x, y);
        return connection->reply<xcb_query_pointer_reply>(xcb_query_pointer(connection->get(), connection->root()))
            ->child;
    }

    X11StackKeeper keeper{*connection};
    X11HazeSurface haze{*connection, keeper};
};

TEST_F(X11HazeSurfaceOnDesktop, ItIsShownInItsFrameAndTakenAway) {
    setComposited(true);
    haze.setFrame({{10, 20}, {1000, 900}});
    EXPECT_FALSE(shownFrame());
    haze.showBelow(application.window());
    connection->sync();
    EXPECT_TRUE(haze.isShown());
    EXPECT_EQ(shownFrame(), (AxRect{{10, 20}, {1000, 900}}));
    haze.setFrame({{0, 0}, {500, 400}});
    connection->sync();
    EXPECT_EQ(shownFrame(), (AxRect{{0, 0}, {500, 400}}));
    haze.hide();
    connection->sync();
    EXPECT_FALSE(haze.isShown());
    EXPECT_FALSE(shownFrame());
}

TEST_F(X11HazeSurfaceOnDesktop, BelowItselfItKeepsItsPlace) {
    setComposited(true);
    haze.setFrame({{0, 0}, {1920, 1080}});
    haze.showBelow(application.window());
    connection->sync();
    const auto itself = shownWindow();
    ASSERT_TRUE(itself);
    haze.showBelow(*itself);
    // Raised above the application, it is seen by its keeper and goes back below.
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(application.connection().get(), *itself, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    application.connection().sync();
    const xcb_window_t top = childrenOfRoot(*connection, {application.window()}).front();
    EXPECT_TRUE(loop.runUntil([&] {
        const auto stack = rootStack(*connection);
        return std::ranges::find(stack, *itself) < std::ranges::find(stack, top);
    }));
}

TEST_F(X11HazeSurfaceOnDesktop, ThePointerGoesThroughIt) {
    setComposited(true);
    haze.setFrame({{0, 0}, {1920, 1080}});
    haze.showOverApplications();
    connection->sync();
    ASSERT_TRUE(shownFrame());
    EXPECT_EQ(windowAt(200, 200), childrenOfRoot(*connection, {application.window()}).front());
}

TEST_F(X11HazeSurfaceOnDesktop, WithoutACompositorItStaysAway) {
    if (isComposited(*connection)) GTEST_SKIP() << "a compositor runs, and is left alone";
    haze.setFrame({{0, 0}, {1920, 1080}});
    haze.showBelow(application.window());
    connection->sync();
    EXPECT_FALSE(haze.isShown());
    EXPECT_FALSE(shownFrame());
    haze.showOverApplications();
    connection->sync();
    EXPECT_FALSE(shownFrame());
}

TEST_F(X11HazeSurfaceOnDesktop, ItGoesWithTheCompositorAndComesAgainWithTheNext) {
    if (isComposited(*connection)) GTEST_SKIP() << "a compositor runs, and is left alone";
    haze.setFrame({{0, 0}, {1920, 1080}});
    setComposited(true);
    haze.showBelow(application.window());
    ASSERT_TRUE(haze.isShown());
    setComposited(false);
    EXPECT_TRUE(loop.runUntil([&] { return !haze.isShown() && !shownFrame(); }));
    setComposited(true);
    haze.showBelow(application.window());
    connection->sync();
    EXPECT_TRUE(shownFrame());
}

}  // namespace
}  // namespace tarvix
