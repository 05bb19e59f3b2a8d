#include <unistd.h>
#include <xcb/shape.h>

#include <algorithm>

#include "linux/x11/X11WindowServer.h"
#include "linux/x11/X11Windows.h"
#include "tests/desktop/X11Desk.h"

namespace tarvix {
namespace {

class X11WindowsOnDesktop : public X11Desk {
protected:
    bool isManaged() { return hasWindowManager(*connection); }
    std::vector<std::uint32_t> numbersOnScreen() {
        std::vector<std::uint32_t> numbers;
        for (const X11Window& w : windows->onScreen()) numbers.push_back(w.number);
        return numbers;
    }
    std::optional<WindowInfo> inServer(std::uint32_t number) {
        const auto all = server->onScreenWindows();
        for (const WindowInfo& w : all.value())
            if (w.number == number) return w;
        return std::nullopt;
    }
    void raise(X11Victim& victim) {
        const std::uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(victim.connection().get(), victim.window(), XCB_CONFIG_WINDOW_STACK_MODE, &above);
        victim.connection().sync();
    }

    std::unique_ptr<X11Windows> windows = std::move(X11Windows::open().value());
    std::unique_ptr<X11WindowServer> server = std::move(X11WindowServer::open(*windows).value());
};

TEST_F(X11WindowsOnDesktop, TheActiveWindowIsTheOneWithTheKeyboard) {
    const auto active = windows->active();
    ASSERT_TRUE(active);
    EXPECT_EQ(active->number, application.window());
    EXPECT_EQ(active->pid, getpid());
    EXPECT_EQ(active->windowClass, "Victim");
    EXPECT_EQ(active->windowInstance, "victim");
    EXPECT_FALSE(active->isOverrideRedirect);
    EXPECT_FALSE(active->isMinimized);
    EXPECT_EQ(active->frameExtents.has_value(), isManaged());
}

// What was read of the active window is kept, but never beyond a change.
TEST_F(X11WindowsOnDesktop, WhateverChangesAboutTheActiveWindowIsSeenAtOnce) {
    ASSERT_TRUE(windows->active());
    for (const char* title : {"one", "two"}) {
        application.setText("WM_NAME", title);
        application.setText("_GTK_APPLICATION_ID", title);
        application.connection().sync();
        const auto active = windows->active();
        ASSERT_TRUE(active);
        EXPECT_EQ(active->title, title);
        EXPECT_EQ(active->gtkApplicationId, title);
        EXPECT_EQ(windows->window(application.window())->title, title);
    }
    const std::uint32_t size[] = {333, 222};
    xcb_configure_window(application.connection().get(), application.window(),
                         XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
    application.connection().sync();
    EXPECT_TRUE(loop.runUntil([&] {
        return windows->active()->client.size == Size{333, 222};
    })) << "once the window manager has agreed";
}

TEST_F(X11WindowsOnDesktop, AnotherActiveWindowIsSeenAndSoIsItsEnd) {
    ASSERT_TRUE(windows->active());
    std::uint32_t number = 0;
    {
        X11Victim other({150, 450, 200, 100, false});
        other.setText("WM_NAME", "other");
        ASSERT_TRUE(other.show());
        ASSERT_TRUE(other.focus());
        number = other.window();
        ASSERT_TRUE(windows->active());
        EXPECT_EQ(windows->active()->number, number);
        EXPECT_EQ(windows->active()->title, "other");
    }
    EXPECT_TRUE(loop.runUntil([&] {
        const auto active = windows->active();
        return !active || active->number != number;
    }));
    EXPECT_FALSE(windows->window(number));
}

TEST_F(X11WindowsOnDesktop, ItStandsWhereAClickReachesItsCorner) {
    const auto active = windows->active();
    ASSERT_TRUE(active);
    EXPECT_EQ(active->client.size, (Size{400, 300}));
    const auto at = connection->reply<xcb_translate_coordinates_reply>(
        xcb_translate_coordinates(connection->get(), application.window(), connection->root(), 0, 0));
    EXPECT_EQ(active->client.origin, (AxPoint{double(at->dst_x), double(at->dst_y)}));
}

TEST_F(X11WindowsOnDesktop, APanelWithTheKeyboardDoesNotChangeTheActiveWindow) {
    ASSERT_TRUE(take());
    ASSERT_TRUE(windows->active());
    EXPECT_EQ(windows->active()->number, application.window());
}

TEST_F(X11WindowsOnDesktop, WindowsAreListedFrontToBackWithPopups) {
    X11Victim other({150, 150, 200, 200, false});
    ASSERT_TRUE(other.show());
    raise(other);
    const auto isInOrder = [&](std::vector<std::uint32_t> order) {
        auto numbers = numbersOnScreen();
        std::erase_if(numbers, [&](std::uint32_t n) { return std::ranges::count(order, n) == 0; });
        return numbers == order;
    };
    raise(panel);
    EXPECT_TRUE(loop.runUntil([&] { return isInOrder({panel.window(), other.window(), application.window()}); }));
    raise(application);
    raise(panel);
    EXPECT_TRUE(loop.runUntil([&] { return isInOrder({panel.window(), application.window(), other.window()}); }));
    other.hide();
    EXPECT_TRUE(loop.runUntil([&] { return isInOrder({panel.window(), application.window()}); }));
    EXPECT_EQ(std::ranges::count(numbersOnScreen(), other.window()), 0);
}

TEST_F(X11WindowsOnDesktop, AWindowThatHasGoneIsAbsent) {
    std::uint32_t number = 0;
    {
        X11Victim gone({0, 0, 10, 10, true});
        ASSERT_TRUE(gone.show());
        number = gone.window();
        EXPECT_TRUE(windows->window(number));
    }
    EXPECT_TRUE(loop.runUntil([&] { return !windows->window(number); }));
    EXPECT_FALSE(windows->window(0x7fffffff));
}

TEST_F(X11WindowsOnDesktop, TitlesTypesStatesAndShadowsAreRead) {
    X11Victim dialog({300, 300, 220, 120, true});
    dialog.setText("WM_NAME", "old name");
    EXPECT_EQ(windows->window(dialog.window())->title, "");  // not sent yet
    dialog.connection().sync();
    EXPECT_EQ(windows->window(dialog.window())->title, "old name");
    dialog.setText("_NET_WM_NAME", "Größe");
    dialog.setText("_GTK_APPLICATION_ID", "org.example.Victim");
    dialog.set32("_GTK_FRAME_EXTENTS", "CARDINAL", {10, 12, 8, 20});
    dialog.set32("_NET_WM_WINDOW_TYPE", "ATOM",
                 {dialog.connection().atom("_NET_WM_WINDOW_TYPE_UTILITY"),
                  dialog.connection().atom("_NET_WM_WINDOW_TYPE_NORMAL")});
    dialog.set32("_NET_WM_STATE", "ATOM", {dialog.connection().atom("_NET_WM_STATE_FULLSCREEN")});
    ASSERT_TRUE(dialog.show());
    const auto seen = windows->window(dialog.window());
    ASSERT_TRUE(seen);
    EXPECT_EQ(seen->title, "Größe");
    EXPECT_EQ(seen->gtkApplicationId, "org.example.Victim");
    EXPECT_EQ(seen->types, (std::vector<std::string>{"UTILITY", "NORMAL"}));
    EXPECT_TRUE(seen->isFullScreen);
    EXPECT_TRUE(seen->isOverrideRedirect);
    EXPECT_EQ(seen->client, (AxRect{{300, 300}, {220, 120}}));
    EXPECT_EQ(seen->visible(), (AxRect{{310, 308}, {198, 92}}));
}

TEST_F(X11WindowsOnDesktop, ThePidIsTheServersWordAndNotTheWindows) {
    application.set32("_NET_WM_PID", "CARDINAL", {1});
    application.connection().sync();
    EXPECT_EQ(windows->window(application.window())->pid, getpid());
}

TEST_F(X11WindowsOnDesktop, WithoutAManagerThePointerDecidesWhereTheKeyboardFollowsIt) {
    if (isManaged()) GTEST_SKIP() << "a window manager says which window is active";
    xcb_set_input_focus(connection->get(), XCB_INPUT_FOCUS_POINTER_ROOT, XCB_INPUT_FOCUS_POINTER_ROOT,
                        XCB_CURRENT_TIME);
    connection->sync();
    hardware.movePointer(200, 200);
    ASSERT_TRUE(windows->active());
    EXPECT_EQ(windows->active()->number, application.window());
    hardware.movePointer(1800, 900);
    EXPECT_FALSE(windows->active());
    // A popup isn't what a search is about; the window below it is.
    X11Victim popup({120, 120, 200, 200, true});
    ASSERT_TRUE(popup.show());
    hardware.movePointer(200, 200);
    ASSERT_TRUE(windows->active());
    EXPECT_EQ(windows->active()->number, application.window());
}

TEST_F(X11WindowsOnDesktop, APanelOfTheDesktopHasTheLayerOfStatusItemsAndStandsForTheDock) {
    EXPECT_EQ(inServer(application.window())->layer, 0);
    EXPECT_EQ(inServer(application.window())->ownerName, "Victim");
    EXPECT_EQ(inServer(application.window())->ownerPid, getpid());

    X11Victim bar({0, 0, 1920, 30, false});
    bar.set32("_NET_WM_WINDOW_TYPE", "ATOM", {bar.connection().atom("_NET_WM_WINDOW_TYPE_DOCK")});
    ASSERT_TRUE(bar.show());
    EXPECT_TRUE(loop.runUntil([&] { return inServer(bar.window()).has_value(); }));
    EXPECT_EQ(inServer(bar.window())->layer, 25);
    EXPECT_EQ(inServer(bar.window())->ownerName, "Dock");

    X11Victim dock({800, 1000, 300, 80, false});
    dock.set32("_NET_WM_WINDOW_TYPE", "ATOM", {dock.connection().atom("_NET_WM_WINDOW_TYPE_DOCK")});
    dock.setText("WM_CLASS", std::string("plank\0Plank\0", 12));
    ASSERT_TRUE(dock.show());
    EXPECT_TRUE(loop.runUntil([&] { return inServer(dock.window()).has_value(); }));
    EXPECT_NE(inServer(dock.window())->layer, 25);
    EXPECT_EQ(inServer(dock.window())->ownerName, "Dock");
    EXPECT_EQ(inServer(bar.window())->layer, 25);
}

TEST_F(X11WindowsOnDesktop, ADockThatLetsAllClicksThroughButAStripIsNotOnTheScreen) {
    X11Victim dock({0, 900, 1920, 140, false});
    dock.set32("_NET_WM_WINDOW_TYPE", "ATOM", {dock.connection().atom("_NET_WM_WINDOW_TYPE_DOCK")});
    const auto takeClicksIn = [&](const xcb_rectangle_t& box) {
        xcb_shape_rectangles(dock.connection().get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                             dock.window(), 0, 0, 1, &box);
        dock.connection().sync();
    };
    takeClicksIn({800, 80, 300, 60});
    ASSERT_TRUE(dock.show());
    EXPECT_TRUE(loop.runUntil([&] { return inServer(dock.window()).has_value(); }));
    const auto listed = windows->onScreen();
    const auto seen = std::ranges::find(listed, dock.window(), &X11Window::number);
    ASSERT_NE(seen, listed.end());
    EXPECT_EQ(seen->clickable, (AxRect{{seen->client.minX() + 800, seen->client.minY() + 80}, {300, 60}}));
    takeClicksIn({800, 139, 300, 1});
    EXPECT_FALSE(inServer(dock.window()));
    takeClicksIn({0, 0, 0, 0});
    EXPECT_FALSE(inServer(dock.window()));
    takeClicksIn({800, 80, 300, 60});
    EXPECT_TRUE(inServer(dock.window()));
}

TEST_F(X11WindowsOnDesktop, WhereAPanelShowsTheButtonOfAWindowIsReadOfMinimizedOnesToo) {
    application.set32("_NET_WM_ICON_GEOMETRY", "CARDINAL", {140, 1050, 200, 30});
    application.connection().sync();
    const auto buttonOf = [&](const std::vector<X11Window>& listed) -> std::optional<AxRect> {
        const auto found = std::ranges::find(listed, application.window(), &X11Window::number);
        return found == listed.end() ? std::nullopt : found->iconGeometry;
    };
    const AxRect button{{140, 1050}, {200, 30}};
    EXPECT_EQ(buttonOf(windows->onScreen()), button);
    if (!isManaged()) GTEST_SKIP() << "nobody keeps a list of windows";
    EXPECT_EQ(buttonOf(windows->clients()), button);
    application.hide();
    EXPECT_TRUE(loop.runUntil([&] { return !buttonOf(windows->clients()); })) << "a window that has been withdrawn";
}

TEST_F(X11WindowsOnDesktop, WindowsThatOthersPutIntoAWindowAreFoundAtAnyDepth) {
    X11Victim bar({0, 0, 1920, 30, false});
    ASSERT_TRUE(bar.show());
    const xcb_window_t socket = xcb_generate_id(bar.connection().get());
    xcb_create_window(bar.connection().get(), XCB_COPY_FROM_PARENT, socket, bar.window(), 100, 4, 22, 22, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(bar.connection().get(), socket);
    bar.connection().sync();
    X11Victim icon({0, 0, 22, 22, true});
    icon.setText("_NET_WM_NAME", "an icon");
    xcb_reparent_window(icon.connection().get(), icon.window(), socket, 0, 0);
    ASSERT_TRUE(icon.show());
    const auto inner = windows->embeddedIn(bar.window());
    ASSERT_EQ(inner.size(), 1u);
    EXPECT_EQ(inner.front().number, icon.window());
    EXPECT_EQ(inner.front().title, "an icon");
    EXPECT_EQ(inner.front().client.size, (Size{22, 22}));
    icon.hide();
    EXPECT_TRUE(windows->embeddedIn(bar.window()).empty());
    EXPECT_TRUE(windows->embeddedIn(icon.window()).empty());
}

TEST_F(X11WindowsOnDesktop, TheDesktopsBackgroundIsLeftOut) {
    X11Victim background({0, 0, 1920, 1080, false});
    background.set32("_NET_WM_WINDOW_TYPE", "ATOM", {background.connection().atom("_NET_WM_WINDOW_TYPE_DESKTOP")});
    ASSERT_TRUE(background.show());
    EXPECT_TRUE(loop.runUntil([&] { return std::ranges::count(numbersOnScreen(), background.window()) == 1; }));
    EXPECT_FALSE(inServer(background.window()));
}

TEST_F(X11WindowsOnDesktop, APanelBelowAFullScreenWindowIsNotOnTheScreen) {
    X11Victim bar({0, 0, 1920, 30, true});
    bar.set32("_NET_WM_WINDOW_TYPE", "ATOM", {bar.connection().atom("_NET_WM_WINDOW_TYPE_DOCK")});
    ASSERT_TRUE(bar.show());
    EXPECT_TRUE(inServer(bar.window()));
    X11Victim film({0, 0, 1920, 1080, true});
    film.set32("_NET_WM_STATE", "ATOM", {film.connection().atom("_NET_WM_STATE_FULLSCREEN")});
    ASSERT_TRUE(film.show());
    EXPECT_FALSE(inServer(bar.window()));
    EXPECT_TRUE(inServer(film.window()));
}

TEST_F(X11WindowsOnDesktop, WindowsAreBlendedWhileACompositorOwnsTheScreen) {
    const std::string selection = "_NET_WM_CM_S" + std::to_string(connection->screenNumber());
    const bool before = keyboard->isComposited();
    auto other = std::move(X11Connection::open().value());
    if (before) GTEST_SKIP() << "a compositor runs, and is left alone";
    xcb_set_selection_owner(application.connection().get(), application.window(),
                            application.connection().atom(selection), XCB_CURRENT_TIME);
    application.connection().sync();
    EXPECT_TRUE(keyboard->isComposited());
    xcb_set_selection_owner(application.connection().get(), XCB_WINDOW_NONE, application.connection().atom(selection),
                            XCB_CURRENT_TIME);
    application.connection().sync();
    EXPECT_FALSE(keyboard->isComposited());
}

}  // namespace
}  // namespace tarvix
