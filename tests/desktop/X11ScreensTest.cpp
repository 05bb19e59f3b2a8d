#include <cstdlib>
#include <set>

#include "linux/x11/X11Screens.h"
#include "tests/contract/ScreensContract.h"
#include "tests/desktop/X11Desk.h"

namespace tarvix {
namespace {

class X11ScreensOnDesktop : public X11Desk {
protected:
    void TearDown() override {
        removeMonitors();
        X11Desk::TearDown();
    }
    void removeMonitors() {
        for (const std::string& name : defined_) EXPECT_EQ(std::system(("xrandr --delmonitor " + name).c_str()), 0);
        defined_.clear();
    }

    // A monitor as a user may define one over a part of the root window; with the server's output, it takes the place
    // of the server's own monitor.
    void defineMonitor(const std::string& name, const std::string& area, bool primary, const std::string& output) {
        const std::string command =
            std::string("xrandr --setmonitor '") + (primary ? "*" : "") + name + "' " + area + " " + output;
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        defined_.insert(name);
    }
    void placeApplication(std::int16_t x, std::int16_t y) {
        const std::uint32_t place[] = {static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)};
        xcb_configure_window(application.connection().get(), application.window(),
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, place);
        application.connection().sync();
    }

    std::unique_ptr<X11Screens> screens = std::move(X11Screens::open(*connection).value());

private:
    std::set<std::string> defined_;
};

TEST_F(X11ScreensOnDesktop, OneMonitorIsTheWholeRoot) {
    EXPECT_EQ(screens->frames(), (std::vector<PanelRect>{{{0, 0}, {1920, 1080}}}));
    EXPECT_EQ(screens->mainFrame(), (PanelRect{{0, 0}, {1920, 1080}}));
    EXPECT_FALSE(screens->haveSeparateSpaces());
}

TEST_F(X11ScreensOnDesktop, ThePointerIsCountedFromBelow) {
    hardware.movePointer(10, 0);
    EXPECT_EQ(screens->mouseLocation(), (PanelPoint{10, 1080}));
    hardware.movePointer(1919, 1079);
    EXPECT_EQ(screens->mouseLocation(), (PanelPoint{1919, 1}));
}

TEST_F(X11ScreensOnDesktop, ThePrimaryMonitorIsFirstAndItsHeightFlipsAll) {
    defineMonitor("LEFT", "800/200x600/150+0+0", false, "screen");
    defineMonitor("RIGHT", "1120/280x1080/270+800+0", true, "none");
    EXPECT_EQ(screens->frames(), (std::vector<PanelRect>{{{800, 0}, {1120, 1080}}, {{0, 1080 - 600}, {800, 600}}}));
}

TEST_F(X11ScreensOnDesktop, TheMainScreenHasTheActiveWindowWhereverThePointerIs) {
    defineMonitor("LEFT", "960/240x1080/270+0+0", true, "screen");
    defineMonitor("RIGHT", "960/240x1080/270+960+0", false, "none");
    const PanelRect left{{0, 0}, {960, 1080}}, right{{960, 0}, {960, 1080}};
    hardware.movePointer(1500, 500);
    EXPECT_EQ(screens->mainFrame(), left);
    placeApplication(1200, 200);
    hardware.movePointer(10, 10);
    EXPECT_TRUE(loop.runUntil([&] { return screens->mainFrame() == right; }));
}

TEST_F(X11ScreensOnDesktop, TheServerIsAskedForTheMonitorsOnce) {
    screens->frames();
    const unsigned before = xcb_no_operation(connection->get()).sequence;
    for (int i = 0; i < 10; ++i) EXPECT_EQ(screens->frames().size(), 1u);
    EXPECT_EQ(xcb_no_operation(connection->get()).sequence, before + 1);
}

// Known as soon as whoever changed them knows of it, also before any event has been handed out.
TEST_F(X11ScreensOnDesktop, EachChangeOfTheMonitorsIsKnownAtOnce) {
    const PanelRect whole{{0, 0}, {1920, 1080}};
    EXPECT_EQ(screens->frames(), (std::vector<PanelRect>{whole}));
    for (int i = 0; i < 5; ++i) {
        defineMonitor("LEFT", "800/200x600/150+0+0", true, "screen");
        EXPECT_EQ(screens->frames(), (std::vector<PanelRect>{{{0, 0}, {800, 600}}}));
        defineMonitor("RIGHT", "1120/280x1080/270+800+0", false, "none");
        EXPECT_EQ(screens->frames(), (std::vector<PanelRect>{{{0, 0}, {800, 600}}, {{800, -480}, {1120, 1080}}}));
        removeMonitors();
        defineMonitor("LEFT", "800/200x600/150+0+0", false, "screen");
        defineMonitor("RIGHT", "1120/280x1080/270+800+0", true, "none");
        EXPECT_EQ(screens->frames(), (std::vector<PanelRect>{{{800, 0}, {1120, 1080}}, {{0, 480}, {800, 600}}}));
        removeMonitors();
        EXPECT_EQ(screens->frames(), (std::vector<PanelRect>{whole}));
        if (i % 2 == 0) settle();
    }
}

TEST_F(X11ScreensOnDesktop, AnotherSizeOfTheRootWindowIsKnownAtOnce) {
    const auto run = [](const char* command) { return std::system(command); };
    EXPECT_EQ(screens->frames().front().size, (Size{1920, 1080}));
    ASSERT_EQ(run("xrandr --newmode small 0 1280 0 0 0 720 0 0 0 && xrandr --addmode screen small"), 0);
    ASSERT_EQ(run("xrandr --output screen --mode small"), 0);
    EXPECT_EQ(screens->frames().front().size, (Size{1280, 720}));
    ASSERT_EQ(run("xrandr --output screen --mode 1920x1080"), 0);
    EXPECT_EQ(screens->frames().front().size, (Size{1920, 1080}));
    EXPECT_EQ(run("xrandr --delmode screen small && xrandr --rmmode small"), 0);
}

INSTANTIATE_TEST_SUITE_P(OnX11, ScreensContract, testing::Values([] {
                             struct World {
                                 std::unique_ptr<X11Connection> connection = std::move(X11Connection::open().value());
                                 std::unique_ptr<X11Screens> screens = std::move(X11Screens::open(*connection).value());
                             };
                             const auto world = std::make_shared<World>();
                             return ContractSubject<Screens>{
                                 world, *world->screens, [](const std::function<bool()>& holds) { return holds(); }};
                         }));

}  // namespace
}  // namespace tarvix
